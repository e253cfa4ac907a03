#pragma once

#include <functional>
#include <string_view>

#include "base/HashIndex.h"

namespace tme {

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
