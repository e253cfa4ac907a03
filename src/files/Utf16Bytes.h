#pragma once

#include <bit>
#include <optional>
#include <string>
#include <string_view>

namespace tme {

/// Gives UTF-8 for UTF-16 bytes without a mark. Lone surrogates become three bytes each; an odd byte at the end is left
/// out.
std::string DecodeUtf16(std::string_view bytes, std::endian order);
/// Gives the mark, then the text. Three bytes of a lone surrogate are taken. Returns null when the text is not UTF-8.
std::optional<std::string> EncodeUtf16(std::string_view text, std::endian order, std::string_view mark);

}  // namespace tme
