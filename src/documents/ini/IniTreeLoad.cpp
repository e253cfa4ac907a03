#include "documents/ini/IniTreeLoad.h"

#include <utility>

namespace tme {

IniTree::Load::Load(IniTree& tree, std::string text)
    : tree_(tree), text_(tree.texts_.Keep(std::move(text))), first_created_(tree.next_created_) {
  tree_.observer_->BeforeReset();
}

IniTree::Load::~Load() {
  if (is_open_) tree_.EndReset();
  if (tree_.next_created_ == first_created_) tree_.texts_.GiveBackLast();
}

void IniTree::Load::AppendSection(std::string_view name) {
  FinishSection();
  section_ = tree_.Append(tree_.Root(), name, IniTag::Section);
}

void IniTree::Load::AppendEntry(std::string_view text, IniTag tag) {
  if (section_ == nullptr) {
    tree_.Append(tree_.Root(), text, tag);
    return;
  }
  IniNode* entry = tree_.NewNode(section_, text, tag);
  entry->row_ = static_cast<std::uint32_t>(entries_.size());
  entries_.push_back(entry);
}

void IniTree::Load::Commit() {
  FinishSection();
  SortChildren(tree_.Root(), sorter_);
  if (tree_.next_created_ != first_created_) ++tree_.revision_;
  is_open_ = false;
  tree_.EndReset();
}

void IniTree::Load::Reopen() {
  is_open_ = true;
  tree_.observer_->BeforeReset();
}

std::size_t IniTree::Load::RemoveTextEqualTo(std::string_view text) {
  FinishSection();
  const std::size_t nodes_before = tree_.NodeCount();
  if (tree_.MarkTextEqualTo(text) > 0) tree_.RemoveMarked();
  return nodes_before - tree_.NodeCount();
}

bool IniTree::Load::SectionsReordered() const {
  const IniNode* root = tree_.Root();
  std::uint32_t last_created = 0;
  for (int row = 0; row < root->ChildCount(); ++row) {
    const IniNode* child = root->Child(row);
    if (child->Tag() != IniTag::Section || child->created_ < first_created_) continue;
    if (child->created_ < last_created) return true;
    last_created = child->created_;
  }
  return false;
}

void IniTree::Load::FinishSection() {
  if (section_ != nullptr && !entries_.empty()) {
    tree_.ChildrenOf(section_).assign(entries_.begin(), entries_.end());
    if (SortChildren(section_, sorter_)) entries_reordered_ = true;
    entries_.clear();
  }
  section_ = nullptr;
}

}  // namespace tme
