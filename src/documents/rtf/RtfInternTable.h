#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/HashIndex.h"
#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Mixes a value into a hash.
constexpr std::size_t MixHash(std::size_t hash, std::uint64_t value) {
  hash ^= value;
  hash *= 0x9E3779B97F4A7C15u;
  return hash ^ (hash >> 29);
}

std::size_t HashOf(const CharFormat& format);
std::size_t HashOf(const ParagraphFormat& format);
inline std::size_t HashOf(const std::string& text) { return std::hash<std::string>()(text); }

/// Finds equal items of a vector that it does not own: formats, and control words that are kept.
class InternTable {
 public:
  static constexpr std::uint32_t kNone = HashIndex::kNone;

  /// The index of `item` in `items`, to which it is added when it is new. kNone for a new one when there are `limit`
  /// items already.
  template <typename Item>
  std::uint32_t Intern(std::vector<Item>& items, const Item& item, std::size_t limit = kNone) {
    const auto is_it = [&](std::uint32_t index) { return items[index] == item; };
    const auto hash = static_cast<std::uint32_t>(HashOf(item));
    if (items.size() >= limit) return index_.Find(hash, is_it);
    if (items.size() >= index_.Room()) index_.Grow();
    const auto next = static_cast<std::uint32_t>(items.size());
    const std::uint32_t found = index_.FindOrEnter(hash, next, is_it);
    if (found == next) items.push_back(item);
    return found;
  }

  /// Makes known what `items` holds already; of equal ones the first counts.
  template <typename Item>
  void Learn(const std::vector<Item>& items) {
    index_.Reset(items.size());
    for (std::uint32_t index = 0; index < items.size(); ++index) {
      index_.FindOrEnter(static_cast<std::uint32_t>(HashOf(items[index])), index,
                         [&](std::uint32_t other) { return items[other] == items[index]; });
    }
  }

 private:
  HashIndex index_;
};

}  // namespace tme::rtf
