// Keys and values of documents that are held by the rules, brought below another key.
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme {

/// Makes a node like each one from top downwards: owned(node, own).
template <typename Owned>
RegNode* RegDocument::AppendLike(const RegNode& top, RegNode* parent, Owned owned) {
  RegNode* first = nullptr;
  RegNode* at = parent;
  const auto enter = [&](const RegNode& node) {
    NoteSibling(at, node.Text());
    at = Append(at, texts_.Copy(node.Text()), node.Tag());
    if (first == nullptr) first = at;
    owned(node, at);
    return true;
  };
  WalkKeys(top, enter, [&at](const RegNode&) { at = at->parent_; });
  return first;
}

std::vector<RegNode*> RegDocument::MoveKeys(std::span<RegNode* const> nodes, RegNode* parent) {
  const Editing editing(*this, EditName::Move);
  RemoveKeys(nodes);
  observer_->BeforeReset();
  std::vector<RegNode*> moved;
  for (const RegNode* node : nodes)
    moved.push_back(AppendLike(
        *node, parent, [this](const RegNode& old, RegNode* own) { HandOverRecords(const_cast<RegNode*>(&old), own); }));
  if (!moved.empty()) selected_ = moved.front();
  NoteRevision();
  observer_->AfterReset();
  return moved;
}

/// They stay where they are in the table.
void RegDocument::HandOverRecords(RegNode* from, RegNode* to) {
  if (from->first_run_ == RegNode::kNoRun) return;
  for (std::uint32_t at = from->first_run_; at != RegNode::kNoRun; at = runs_[at].next) {
    EditedRun(at).owner = to;
    for (std::uint32_t i = 0; i < runs_[at].count; ++i) EditedRecord(std::size_t{runs_[at].first} + i).owner = to;
  }
  EditedNode(to).first_run_ = from->first_run_;
  to->last_run_ = from->last_run_;
  EditedNode(from).first_run_ = RegNode::kNoRun;
  from->last_run_ = RegNode::kNoRun;
}

std::vector<RegNode*> RegDocument::CopyKeys(const RegDocument& from, std::span<RegNode* const> nodes, RegNode* parent) {
  const Editing editing(*this, EditName::Copy);
  observer_->BeforeReset();
  std::vector<RegNode*> copies;
  const auto copy_values = [this, &from](const RegNode& node, RegNode* own) {
    from.ForEachValueOf(&node, [this, own](const RegValueRecord& value) {
      if (!value.deleted) AppendRecord(own, value.type, texts_.Copy(value.name), texts_.Copy(value.data));
    });
  };
  for (const RegNode* node : nodes) copies.push_back(AppendLike(*node, parent, copy_values));
  if (!copies.empty()) selected_ = copies.front();
  NoteRevision();
  observer_->AfterReset();
  return copies;
}

void RegDocument::CopyValues(const RegDocument& from, std::span<const std::size_t> records, RegNode* key) {
  const Editing editing(*this, EditName::Copy);
  for (const std::size_t record : records) {
    // The table may be the same one, and grow.
    const RegValueRecord value = from.values_[record];
    if (!value.deleted) AppendRecord(key, value.type, texts_.Copy(value.name), texts_.Copy(value.data));
  }
  NoteRevision();
  observer_->ValuesReset();
}

}  // namespace tme
