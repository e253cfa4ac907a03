#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tme {

enum class LineChange : std::uint8_t { Same, Removed, Added };

struct DiffLine {
  LineChange change = LineChange::Same;
  std::string_view text;  ///< points into the text that it came from, without its line end
};

/// Returns what leads from one text to another, line by line: the shortest way (Myers, "An O(ND) Difference Algorithm",
/// 1986) as long as at most max_changes lines differ, else a short one by way of lines that stand once in each text.
/// Where there are none, everything between the common beginning and end is replaced. Lines that differ in their ends
/// only count as the same.
std::vector<DiffLine> DiffLines(std::string_view before, std::string_view after, std::size_t max_changes = 2000);

}  // namespace tme
