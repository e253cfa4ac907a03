#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace tme {

/// The same choices on every run and system: std::mt19937 gives the same numbers everywhere; the standard distributions
/// do not.
class Shuffle {
 public:
  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
  template <typename Words>
  std::string_view Pick(const Words& words) {
    return words[random_() % words.size()];
  }
  std::string Number(std::uint32_t below) { return std::to_string(Below(below)); }

 private:
  std::mt19937 random_{2024};
};

}  // namespace tme
