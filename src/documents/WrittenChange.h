#pragma once

#include <cstdint>
#include <string>

namespace tme {

/// Lines of what a document writes that are others than before, as far as anybody has to look.
struct WrittenChange {
  /// Lines that stand before and behind them, the same as before.
  std::uint64_t before = 0;
  std::uint64_t behind = 0;
  /// What stands between now: whole lines.
  std::string lines;
  /// The line right behind, without its end; empty where there is none.
  std::string next;
};

/// More lines between are sooner found by comparing all.
inline constexpr std::uint64_t kMostWrittenChange = 20'000;

}  // namespace tme
