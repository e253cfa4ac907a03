#include "documents/ini/IniTreeLoad.h"

#include <algorithm>
#include <utility>

namespace tme {

IniTree::Load::Load(IniTree& tree, std::string text)
    : tree_(tree), text_(tree.texts_.Keep(std::move(text))), first_number_(tree.next_number_) {
  // The reading of a file is no edit.
  if (tree.NodeCount() > 1 || tree.CanUndo() || tree.CanRedo()) step_.emplace(tree, EditName::Paste);
  if (IsWhole()) {
    const auto count = [this](char end) { return static_cast<std::size_t>(std::ranges::count(text_, end)); };
    const std::size_t lines = std::max(count('\n'), count('\r')) + 1;
    tree_.lines_.Reserve(lines);
    tree_.node_of_.reserve(lines + 1);
  }
  tree_.observer_->BeforeReset();
}

IniTree::Load::~Load() {
  if (is_open_) {
    tree_.NoteRevision();
    tree_.EndReset();
  }
  if (!IsWhole() && tree_.next_number_ == first_number_) tree_.texts_.GiveBackLast();
}

void IniTree::Load::AppendSection(std::string_view name) {
  FinishSection();
  section_ = tree_.Append(tree_.Root(), tree_.ByRules(name, IniTag::Section));
}

void IniTree::Load::AppendEntry(std::string_view text, IniTag tag) { AppendNode(tree_.ByRules(text, tag)); }

void IniTree::Load::AppendLines(std::string_view lines, IniLine kind) {
  const Piece piece = tree_.lines_.Append(lines, static_cast<std::uint8_t>(kind));
  if (kind == IniLine::Blank) return;
  const NodeSource source = tree_.SourceOfNode(piece);
  if (kind != IniLine::Header) return AppendNode(source);
  FinishSection();
  section_ = tree_.Append(tree_.Root(), source);
}

void IniTree::Load::AppendNode(const NodeSource& source) {
  if (section_ == nullptr) {
    tree_.Append(tree_.Root(), source);
    return;
  }
  IniNode* entry = tree_.NewNode(section_, source);
  entry->row_ = static_cast<std::uint32_t>(entries_.size());
  entries_.push_back(entry);
}

void IniTree::Load::Commit() {
  FinishSection();
  // What edits left out of order is put in order, too.
  const bool has_moved = !IsWhole() && tree_.SortChildren(tree_.Root(), sorter_);
  if (IsWhole() || has_moved || tree_.next_number_ != first_number_) tree_.NoteRevision();
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
  std::uint32_t last_number = 0;
  for (int row = 0; row < root->ChildCount(); ++row) {
    const IniNode* child = root->Child(row);
    if (child->Tag() != IniTag::Section || child->number_ < first_number_) continue;
    if (child->number_ < last_number) return true;
    last_number = child->number_;
  }
  return false;
}

void IniTree::Load::FinishSection() {
  if (section_ != nullptr && !entries_.empty()) {
    tree_.ChildrenOf(section_).assign(entries_.begin(), entries_.end());
    if (!IsWhole() && SortNew(section_, sorter_)) entries_reordered_ = true;
    entries_.clear();
  }
  section_ = nullptr;
}

}  // namespace tme
