#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory_resource>
#include <string_view>
#include <vector>

namespace tme {

/// Finds the number of a text; the texts themselves lie elsewhere, and text_of(number) gives them. A flat table of
/// hashes: 8 bytes a slot, two to four slots a text.
class TextTable {
 public:
  static constexpr std::uint32_t kNone = UINT32_MAX;

  explicit TextTable(std::pmr::memory_resource* memory = std::pmr::get_default_resource()) : slots_(memory) {}

  /// Forgets all texts and makes room for so many.
  void Reset(std::size_t texts) { slots_.assign(std::bit_ceil(2 * texts), Slot()); }
  /// Forgets all texts; there is room for none then.
  void Clear() { slots_.clear(); }
  /// How many texts there is room for.
  std::size_t Room() const { return slots_.size() / 2; }

  /// kNone when the text was not entered.
  template <typename TextOf>
  std::uint32_t Find(std::string_view text, TextOf text_of) const {
    return slots_.empty() ? kNone : slots_[Place(text, HashOf(text), text_of)].number;
  }

  /// The number that the text was entered with first. Not for more texts than there is room for.
  template <typename TextOf>
  std::uint32_t FindOrEnter(std::string_view text, std::uint32_t number, TextOf text_of) {
    const std::uint32_t hash = HashOf(text);
    Slot& slot = slots_[Place(text, hash, text_of)];
    if (slot.number == kNone) slot = {hash, number};
    return slot.number;
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    /// kNone in a free slot.
    std::uint32_t number = kNone;
  };

  static std::uint32_t HashOf(std::string_view text) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
  }

  /// The slot of the text, or the free one where it belongs.
  template <typename TextOf>
  std::size_t Place(std::string_view text, std::uint32_t hash, TextOf text_of) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].number != kNone && (slots_[at].hash != hash || text_of(slots_[at].number) != text)) {
      at = (at + 1) & mask;
    }
    return at;
  }

  /// A power of two, at most half of it in use.
  std::pmr::vector<Slot> slots_;
};

}  // namespace tme
