#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tme {

/// What may stand at one byte: no letter has more forms.
struct ScanBytes {
  static constexpr std::size_t kMost = 4;

  void Add(std::uint8_t value);

  std::array<std::uint8_t, kMost> values{};
  std::size_t count = 0;
};

/// Two bytes with a fixed distance; the same byte twice when the distance is 0.
struct ScanPair {
  ScanBytes first, second;
  std::size_t distance = 0;
};

/// How many characters of a search text are looked at to choose a pair, which keeps the distance small.
inline constexpr std::size_t kScanReach = 256;

/// Where the next pair begins, at `from` or later; the text's size when there is none.
std::size_t ScanFor(const ScanPair& pair, std::string_view text, std::size_t from);

}  // namespace tme
