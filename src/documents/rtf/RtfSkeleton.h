#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "documents/rtf/RtfSource.h"

namespace tme::rtf {

/// A stretch of a file's bytes without its text.
struct RtfStretch {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  std::size_t first_piece = 0;  ///< of those that stand in it
  std::size_t end_piece = 0;
  bool has_tables = false;  ///< their cells and rows are a part of its text
};

/// What is left of a stretch when its text is taken out: what says how text behind it looks, and what holds for the
/// whole file. Groups that say neither go with their text.
std::string SkeletonOf(std::string_view bytes, const RtfSource& source, const RtfStretch& stretch);

}  // namespace tme::rtf
