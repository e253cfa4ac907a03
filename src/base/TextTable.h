#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory_resource>
#include <string_view>

#include "base/HashIndex.h"

namespace tme {

/// Finds the number of a text; the texts themselves lie elsewhere, and text_of(number) gives them.
class TextTable {
 public:
  static constexpr std::uint32_t kNone = HashIndex::kNone;

  explicit TextTable(std::pmr::memory_resource* memory = std::pmr::get_default_resource()) : index_(memory) {}

  /// Forgets all texts and makes room for so many.
  void Reset(std::size_t texts) { index_.Reset(texts); }
  /// Forgets all texts; there is room for none then.
  void Clear() { index_.Clear(); }
  /// How many texts there is room for.
  std::size_t Room() const { return index_.Room(); }

  /// kNone when the text was not entered.
  template <typename TextOf>
  std::uint32_t Find(std::string_view text, TextOf text_of) const {
    return index_.Find(HashOf(text), [&](std::uint32_t number) { return text_of(number) == text; });
  }

  /// The number that the text was entered with first. Not for more texts than there is room for.
  template <typename TextOf>
  std::uint32_t FindOrEnter(std::string_view text, std::uint32_t number, TextOf text_of) {
    return index_.FindOrEnter(HashOf(text), number, [&](std::uint32_t other) { return text_of(other) == text; });
  }

 private:
  static std::uint32_t HashOf(std::string_view text) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
  }

  HashIndex index_;
};

}  // namespace tme
