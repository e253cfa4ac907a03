#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <string_view>
#include <vector>

#include "base/HashIndex.h"
#include "documents/reg/RegNames.h"

namespace tme {

class RegNode;

/// The children of one node, in order. Few are found by comparing each, many by a table, which is made when it is first
/// needed. 100,000 children of one node are ordinary (class identifiers).
class RegChildren {
 public:
  /// letters: how Find compares.
  RegChildren(std::pmr::memory_resource* memory, RegLetters letters)
      : nodes_(memory), rows_(memory), letters_(letters) {}

  std::size_t Count() const { return nodes_.size(); }
  RegNode* At(std::size_t row) const { return nodes_[row]; }
  void Append(RegNode* node);
  void Insert(std::size_t row, RegNode* node);
  void Erase(std::size_t row);
  struct Place {
    std::size_t row;
    RegNode* node;
  };
  /// places: in the order of their rows, which they have in the longer list. Linear.
  void InsertAll(std::span<const Place> places);
  void EraseAll(std::span<const Place> places);
  void InsertFirst(std::span<RegNode* const> nodes);
  void EraseFirst(std::size_t count);
  /// Returns the first key with this text, or null. Deletions and comments are no keys.
  RegNode* Find(std::string_view text);
  /// Must be called before a child gets another text.
  void ForgetTexts() { rows_.Clear(); }

 private:
  bool IsIt(std::uint32_t row, std::string_view text) const;
  std::uint32_t HashOf(std::string_view text) const;
  void MakeTable();
  void Enter(std::uint32_t row);

  std::pmr::vector<RegNode*> nodes_;
  /// The first row of each text; no room when not in use.
  HashIndex rows_;
  RegLetters letters_;
};

}  // namespace tme
