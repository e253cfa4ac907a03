// Edits of many keys at once.
#include <algorithm>
#include <functional>
#include <vector>

#include "documents/reg/RegDocument.h"

namespace tme {

void RegDocument::RemoveKeys(std::span<RegNode* const> nodes) {
  std::vector<RegNode*> gone;
  for (RegNode* node : nodes)
    if (node != root_.get()) gone.push_back(node);
  if (gone.empty()) return;
  const Editing editing(*this, EditName::DeleteKey);
  observer_->BeforeReset();
  // From below, so that the rows above stay what they are.
  std::ranges::sort(gone, [](const RegNode* one, const RegNode* other) {
    return one->parent_ != other->parent_ ? std::less()(one->parent_, other->parent_) : one->row_ > other->row_;
  });
  RegNode* const selected = SelectedWithout(gone);
  std::vector<RegChanges::ListChange> rows;
  for (std::size_t at = 0; at < gone.size(); ++at) {
    RegNode* node = gone[at];
    if (holding_ == Holding::Whole) RemoveBlocks(node, HeaderComments::Go);
    NoteRow(node, node->row_, RegChanges::ListChange::Kind::Removed);
    rows.push_back({node, node->row_, 0, RegChanges::ListChange::Kind::Removed});
    if (at + 1 < gone.size() && gone[at + 1]->parent_ == node->parent_) continue;
    TurnRun(rows, RegChanges::ListChange::Kind::Removed);
    rows.clear();
  }
  selected_ = selected;
  NoteRevision();
  observer_->AfterReset();
}

/// What is selected once these nodes are gone: the next sibling that is left, else the previous one, else the parent.
/// gone: those of one parent together, from below.
RegNode* RegDocument::SelectedWithout(std::span<RegNode* const> gone) const {
  const auto is_above_selected = [this](const RegNode* node) {
    const RegNode* at = selected_;
    while (at != nullptr && at != node) at = at->parent_;
    return at != nullptr;
  };
  const auto top = std::ranges::find_if(gone, is_above_selected);
  if (top == gone.end()) return selected_;
  RegNode* parent = (*top)->parent_;
  std::vector<bool> is_gone(parent->children_->Count());
  for (const RegNode* node : gone)
    if (node->parent_ == parent) is_gone[node->row_] = true;
  for (std::size_t row = (*top)->row_ + std::size_t{1}; row < is_gone.size(); ++row)
    if (!is_gone[row]) return parent->children_->At(row);
  for (std::size_t row = (*top)->row_; row-- > 0;)
    if (!is_gone[row]) return parent->children_->At(row);
  return parent;
}

}  // namespace tme
