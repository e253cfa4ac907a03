#pragma once

#include <cstddef>
#include <memory_resource>
#include <string_view>
#include <vector>

#include "base/HashIndex.h"

namespace tme {

class RegNode;

/// The children of one node, in order. Few are found by comparing each, many by a table, which is made when it is first
/// needed. 100,000 children of one node are ordinary (class identifiers).
class RegChildren {
 public:
  explicit RegChildren(std::pmr::memory_resource* memory) : nodes_(memory), rows_(memory) {}

  std::size_t Count() const { return nodes_.size(); }
  RegNode* At(std::size_t row) const { return nodes_[row]; }
  void Append(RegNode* node);
  void Erase(std::size_t row);
  /// Returns the first with exactly this text, or null.
  RegNode* Find(std::string_view text);
  /// Must be called before a child gets another text.
  void ForgetTexts() { rows_.Clear(); }

 private:
  void MakeTable();
  void Enter(std::uint32_t row);

  std::pmr::vector<RegNode*> nodes_;
  /// The first row of each text; no room when not in use.
  TextTable rows_;
};

}  // namespace tme
