#pragma once

#include <cstddef>
#include <stop_token>
#include <string_view>
#include <vector>

#include "documents/diff/SequenceDiff.h"

namespace tme {

struct DiffLine {
  DiffChange change = DiffChange::Same;
  std::string_view text;  ///< points into the text that it came from, without its line end
};

/// More lines that differ are not looked at for the shortest way.
inline constexpr std::size_t kMostChangedLines = 2000;

/// Returns what leads from one text to another, line by line, as DiffSequences does. Lines that differ in their ends
/// only count as the same. Gives any part of it once it is asked to stop.
std::vector<DiffLine> DiffLines(std::string_view before, std::string_view after,
                                std::size_t max_changes = kMostChangedLines, const std::stop_token& stop = {});

}  // namespace tme
