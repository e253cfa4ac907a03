#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory_resource>
#include <string_view>
#include <utility>
#include <vector>

namespace tme {

/// Finds the number of an entry by its hash; the entries themselves lie elsewhere. A flat table: 8 bytes a slot, two to
/// four slots an entry. What is asked is handed over as is_it(number): whether the entry of that number is the one.
class HashIndex {
 public:
  static constexpr std::uint32_t kNone = UINT32_MAX;

  explicit HashIndex(std::pmr::memory_resource* memory = std::pmr::get_default_resource()) : slots_(memory) {}

  /// Forgets all entries and makes room for so many.
  void Reset(std::size_t entries) { slots_.assign(std::bit_ceil(2 * entries), Slot()); }
  /// Forgets all entries; there is room for none then.
  void Clear() { slots_.clear(); }
  /// How many entries there is room for.
  std::size_t Room() const { return slots_.size() / 2; }
  /// Doubles the room and keeps the entries.
  void Grow() {
    const std::pmr::vector<Slot> old = std::move(slots_);
    Reset(old.empty() ? kFirstRoom : old.size());
    for (const Slot& slot : old) {
      if (slot.number != kNone) slots_[Place(slot.hash, [](std::uint32_t) { return false; })] = slot;
    }
  }

  /// kNone when the entry was not entered.
  template <typename IsIt>
  std::uint32_t Find(std::uint32_t hash, IsIt is_it) const {
    return slots_.empty() ? kNone : slots_[Place(hash, is_it)].number;
  }

  /// The number that the entry was entered with first. Not for more entries than there is room for.
  template <typename IsIt>
  std::uint32_t FindOrEnter(std::uint32_t hash, std::uint32_t number, IsIt is_it) {
    Slot& slot = slots_[Place(hash, is_it)];
    if (slot.number == kNone) slot = {hash, number};
    return slot.number;
  }

 private:
  static constexpr std::size_t kFirstRoom = 32;
  struct Slot {
    std::uint32_t hash = 0;
    /// kNone in a free slot.
    std::uint32_t number = kNone;
  };

  /// The slot of the entry, or the free one where it belongs.
  template <typename IsIt>
  std::size_t Place(std::uint32_t hash, IsIt is_it) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].number != kNone && (slots_[at].hash != hash || !is_it(slots_[at].number))) at = (at + 1) & mask;
    return at;
  }

  /// A power of two, at most half of it in use.
  std::pmr::vector<Slot> slots_;
};

/// Finds the number of a text; the texts themselves lie elsewhere, and text_of(number) gives them.
class TextTable : private HashIndex {
 public:
  using HashIndex::Clear;
  using HashIndex::HashIndex;
  using HashIndex::kNone;
  using HashIndex::Reset;
  using HashIndex::Room;

  /// kNone when the text was not entered.
  template <typename TextOf>
  std::uint32_t Find(std::string_view text, TextOf text_of) const {
    return HashIndex::Find(HashOf(text), [&](std::uint32_t number) { return text_of(number) == text; });
  }

  /// The number that the text was entered with first. Not for more texts than there is room for.
  template <typename TextOf>
  std::uint32_t FindOrEnter(std::string_view text, std::uint32_t number, TextOf text_of) {
    return HashIndex::FindOrEnter(HashOf(text), number, [&](std::uint32_t other) { return text_of(other) == text; });
  }

 private:
  static std::uint32_t HashOf(std::string_view text) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
  }
};

}  // namespace tme
