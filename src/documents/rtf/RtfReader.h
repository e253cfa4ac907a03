#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfSource.h"

namespace tme::rtf {

/// Text of an 8-bit or double-byte code page as UTF-8, U+FFFD for what has no character. Pages as Windows numbers them;
/// 10000 is Mac Roman. The system knows the tables, so the caller brings it.
using DecodeCodePage = std::function<std::string(int code_page, std::string_view bytes)>;

// Limits of what is read; what is over one is counted in Losses::limits and skipped.
inline constexpr int kMaxGroupDepth = 1000;
inline constexpr std::size_t kMaxPictureBytes = std::size_t{64} << 20;
inline constexpr std::size_t kMaxFonts = 10'000;
/// Tables inside each other; what is deeper stands in the innermost of these, and Losses::deep_tables is set.
inline constexpr int kMaxTableLevel = 100;

/// Reads any bytes without failing; what makes no sense is passed over and told in `losses`. One pass, never more than
/// 20 times the size of the bytes in memory.
/// source: where it stands, for bytes below 4 GB that are a rich-text file; stays empty else. Null for nobody.
RtfDocument ReadRtf(std::string_view bytes, const DecodeCodePage& decode, RtfSource* source = nullptr);

}  // namespace tme::rtf
