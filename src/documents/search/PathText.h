#pragma once

#include <cstddef>
#include <string_view>

#include "documents/search/TextSearch.h"

namespace tme {

/// Between the parts of a path.
inline constexpr char kPathSeparator = '\\';

/// Whether a match ends in the last part of a path, or in the separator behind it, and takes more than that part.
inline bool ReachesOverParts(std::string_view path, const TextMatch& match) {
  if (path.ends_with(kPathSeparator)) path.remove_suffix(1);
  const std::size_t before = path.rfind(kPathSeparator);
  const std::size_t start = before == std::string_view::npos ? 0 : before + 1;
  return match.end > start && (match.start < start || match.end > path.size());
}

}  // namespace tme
