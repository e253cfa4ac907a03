#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tme {

enum class DiffChange : std::uint8_t { Same, Removed, Added };

struct DiffStep {
  DiffChange change = DiffChange::Same;
  /// Where the element stands: in the first sequence if Same or Removed, in the second one if Added.
  std::uint32_t at = 0;
};

/// Returns what leads from one sequence of numbers to another, element by element: the shortest way (Myers, "An O(ND)
/// Difference Algorithm", 1986) as long as at most max_changes elements differ, else a short one by way of elements
/// that stand once in each. Where there are none, everything between the common beginning and end is replaced.
std::vector<DiffStep> DiffSequences(std::span<const std::uint32_t> before, std::span<const std::uint32_t> after,
                                    std::size_t max_changes = 2000);

}  // namespace tme
