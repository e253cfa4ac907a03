#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tme {

class IniNode;

/// Sorts lists of nodes as the tree shows them (CompareFolded). The scratch memory is kept from one list to the next.
class IniSorter {
 public:
  /// The sort is stable. It takes each node's Row() for its place in the list, and leaves the rows for the caller to
  /// renew. Returns false when the list was in order and is as it was.
  bool Sort(std::span<IniNode*> nodes);

 private:
  struct Item {
    std::uint64_t prefix;
    IniNode* node;
  };

  static bool IsBefore(const Item& left, const Item& right);
  static void SortFrom(std::span<Item> items, std::size_t depth);
  static void ResolveTie(std::span<Item> items, std::size_t depth);

  std::vector<Item> items_;
};

/// Returns the first eight bytes of the folded text as a number: two texts whose prefixes differ compare as these do. A
/// folded code point beyond ASCII ends the prefix with the byte 0xFF.
std::uint64_t FoldedPrefix(std::string_view text);

}  // namespace tme
