#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "documents/diff/SequenceDiff.h"

namespace tme {

struct DiffLine {
  DiffChange change = DiffChange::Same;
  std::string_view text;  ///< points into the text that it came from, without its line end
};

/// Returns what leads from one text to another, line by line, as DiffSequences does. Lines that differ in their ends
/// only count as the same.
std::vector<DiffLine> DiffLines(std::string_view before, std::string_view after, std::size_t max_changes = 2000);

}  // namespace tme
