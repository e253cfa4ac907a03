#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/CaseFold.h"

namespace tme {

/// Finds which of some key paths stand at or above another one, without regard to letter case. No path has empty
/// components. Costs the bytes of the path that is asked for, and a comparison for each that is found.
class KeyPaths {
 public:
  using Number = std::uint32_t;

  bool IsEmpty() const { return numbers_.empty(); }
  /// A path that was added before keeps its number, which is returned.
  Number Add(std::string_view path, Number number) {
    std::string folded = FoldedCase(path);
    std::uint64_t hash = kBasis;
    for (const char c : folded) hash = With(hash, c);
    const auto range = numbers_.equal_range(hash);
    for (auto at = range.first; at != range.second; ++at)
      if (at->second.path == folded) return at->second.number;
    numbers_.emplace(hash, Entry{std::move(folded), number});
    return number;
  }

  /// Calls visit(number) for each, from above.
  template <typename Visit>
  void ForEachAtOrAbove(std::string_view path, Visit visit) const {
    if (IsEmpty()) return;
    const std::string folded = FoldedCase(path);
    std::uint64_t hash = kBasis;
    for (std::size_t at = 0; at <= folded.size(); ++at) {
      if (at == folded.size() || folded[at] == '\\') {
        const auto range = numbers_.equal_range(hash);
        for (auto found = range.first; found != range.second; ++found)
          if (found->second.path == std::string_view(folded).substr(0, at)) visit(found->second.number);
      }
      if (at < folded.size()) hash = With(hash, folded[at]);
    }
  }

 private:
  struct Entry {
    std::string path;
    Number number;
  };

  // The FNV-1a hash, which grows letter by letter.
  static constexpr std::uint64_t kBasis = 0xCBF29CE484222325;
  static constexpr std::uint64_t kPrime = 0x100000001B3;
  static std::uint64_t With(std::uint64_t hash, char c) { return (hash ^ static_cast<unsigned char>(c)) * kPrime; }

  std::unordered_multimap<std::uint64_t, Entry> numbers_;
};

}  // namespace tme
