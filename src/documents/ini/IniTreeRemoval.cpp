#include <algorithm>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "documents/ini/IniLine.h"
#include "documents/ini/IniTree.h"

namespace tme {

namespace {

EditName RemovalOf(IniTag tag) {
  if (tag == IniTag::Section) return EditName::DeleteSection;
  return tag == IniTag::Value ? EditName::DeleteEntry : EditName::Delete;
}

/// False for most lines that have another key, found at their first characters.
bool MayBegin(std::string_view line, std::string_view key) {
  const std::size_t first = line.find_first_not_of(" \t");
  if (first == line.npos || key.empty()) return true;
  constexpr char kCaseBit = 'a' - 'A';
  const auto is_letter = [](char c) { return (c | kCaseBit) >= 'a' && (c | kCaseBit) <= 'z'; };
  return !is_letter(line[first]) || !is_letter(key.front()) || (line[first] | kCaseBit) == (key.front() | kCaseBit);
}

/// Calls visit for every node but the root.
template <typename Visit>
void ForEachNode(const IniNode& root, Visit visit) {
  for (int row = 0; row < root.ChildCount(); ++row) {
    IniNode* child = root.Child(row);
    visit(child);
    for (int entry = 0; entry < child->ChildCount(); ++entry) visit(child->Child(entry));
  }
}

}  // namespace

/// Returns the next sibling that is not marked, else the previous one, else the parent.
IniNode* IniTree::NextSelected(const IniNode* node) {
  const std::span siblings(*node->parent_->children_);
  const auto is_left = [](const IniNode* sibling) { return !sibling->removed_; };
  const auto after = siblings.subspan(node->row_ + 1), before = siblings.first(node->row_);
  if (const auto next = std::ranges::find_if(after, is_left); next != after.end()) return *next;
  const auto previous = std::find_if(before.rbegin(), before.rend(), is_left);
  return previous != before.rend() ? *previous : node->parent_;
}

void IniTree::Remove(IniNode* node) {
  if (node == root_.get()) return;
  const Step step(*this, RemovalOf(node->tag_));
  if (holding_ == Holding::Whole) RemoveLines(node);
  RemoveNode(node);
}

void IniTree::RemoveNode(IniNode* node) {
  IniNode* parent = node->parent_;
  const std::size_t row = node->row_;
  observer_->BeforeRemove(*node);
  if (selected_ == node || selected_->parent_ == node) MoveSelection(NextSelected(node));
  parent->children_->erase(parent->children_->begin() + static_cast<std::ptrdiff_t>(row));
  NumberChildren(parent, row);
  NoteRow(parent, node, row, IniChanges::Came::Out);
  CountGone(*node);
  NoteRevision();
  observer_->AfterRemove();
  TellIfSelectionMoved();
}

void IniTree::RemoveSelectedKey() {
  if (selected_->tag_ != IniTag::Value) return;
  const Step step(*this, EditName::DeleteFromAllSections);
  observer_->BeforeReset();
  if (holding_ == Holding::Whole) {
    RemoveEntriesWithKey(KeyOf(*selected_));
  } else {
    MarkWalkingBack(EntryKeyOf(selected_->Text()));
    RemoveMarked();
  }
  EndReset();
}

void IniTree::Clear() {
  if (node_count_ == 1 && lines_.First() == SourceLines::kEnds) return;
  const Step step(*this, EditName::Delete);
  observer_->BeforeReset();
  if (selected_ != root_.get()) MoveSelection(root_.get());
  if (root_->children_ != nullptr) {
    for (IniNode* child : *root_->children_) NoteRow(root_.get(), child, 0, IniChanges::Came::Out);
    root_->children_->clear();
  }
  if (lines_.First() != SourceLines::kEnds) lines_.Remove(lines_.First(), lines_.Last());
  node_count_ = 1;
  section_count_ = 0;
  NoteRevision();
  EndReset();
}

void IniTree::Reset(std::string_view root_text, tme::Holding holding) {
  const std::string kept(root_text);
  observer_->BeforeReset();
  if (selected_ != root_.get()) MoveSelection(root_.get());
  DiscardAll();
  holding_ = holding;
  arrangement_ = holding == Holding::Whole ? IniArrangement::AsInFile : IniArrangement::ByName;
  root_->SetTextView(texts_.Copy(kept));
  NoteRevision();
  ForgetSteps();
  EndReset();
}

void IniTree::CountGone(const IniNode& node) {
  node_count_ -= 1 + static_cast<std::size_t>(node.ChildCount());
  if (node.tag_ == IniTag::Section) --section_count_;
}

void IniTree::DiscardAll() {
  root_->children_ = nullptr;
  root_->children_sorted_ = true;
  root_->expanded_ = false;
  nodes_.Clear();
  lists_.release();
  lines_.Clear();
  node_of_.assign(1, root_.get());
  texts_.Clear();
  node_count_ = 1;
  section_count_ = 0;
  next_number_ = 1;
  arranged_ = last_arranged_ = 0;
}

std::size_t IniTree::MarkTextEqualTo(std::string_view text) {
  std::size_t marked = 0;
  ForEachNode(*root_, [&](IniNode* node) {
    if (node->Text() != text) return;
    node->removed_ = true;
    ++marked;
  });
  return marked;
}

/// Marks what begins with key, the last created first, as long as any entry is left that the selection could be on.
/// Children are younger than their section, so a section goes after those of its entries that go by themselves.
void IniTree::MarkWalkingBack(std::string_view key) {
  std::vector<std::pair<std::uint32_t, IniNode*>> matches;
  std::size_t entries_left = 0;
  const auto is_left = [](const IniNode* node) { return node->tag_ == IniTag::Value && !node->removed_; };
  ForEachNode(*root_, [&](IniNode* node) {
    if (node->Text().starts_with(key)) matches.emplace_back(node->number_, node);
    if (is_left(node)) ++entries_left;
  });
  std::ranges::sort(matches, std::ranges::greater());

  for (const auto& [number, node] : matches) {
    if (entries_left == 0) return;
    if (is_left(node)) --entries_left;
    node->removed_ = true;
    for (int row = 0; row < node->ChildCount(); ++row) entries_left -= is_left(node->Child(row)) ? 1 : 0;
  }
}

/// The selection's, in whole holding.
void IniTree::RemoveEntriesWithKey(std::string_view key) {
  const auto has_key = [&](const IniNode& node) {
    const std::string_view text = node.Text();
    // Most are written alike, and need not be taken apart.
    if (text.starts_with(key) && text.substr(key.size()).starts_with('=')) return true;
    return MayBegin(text, key) && CompareFolded(KeyOf(node), key) == 0;
  };
  std::vector<IniNode*> entries;
  ForEachNode(*root_, [&](IniNode* node) {
    if (node->tag_ != IniTag::Value || !has_key(*node)) return;
    node->removed_ = true;
    entries.push_back(node);
  });
  Noted().MakeRoom(entries.size());
  RemoveLinesOf(entries);
  MoveSelection(NextSelected(selected_));
  for (const IniNode* entry : entries)
    if (entry->removed_) CompactChildren(entry->parent_);
  NoteRevision();
}

/// Those that follow one another in the file go together.
void IniTree::RemoveLinesOf(std::span<IniNode* const> entries) {
  for (auto at = entries.begin(); at != entries.end();) {
    const Piece first = PieceOf(**at);
    Piece last = first;
    while (++at != entries.end() && PieceOf(**at) == lines_.Next(last)) last = lines_.Next(last);
    lines_.Remove(first, last);
  }
}

void IniTree::RemoveMarked() {
  IniNode* parent = selected_->parent_;
  IniNode* gone = parent != nullptr && parent->removed_ ? parent : selected_;
  if (parent != nullptr && gone->removed_) MoveSelection(NextSelected(gone));
  for (IniNode* child : *root_->children_) {
    if (!child->removed_) CompactChildren(child);
  }
  CompactChildren(root_.get());
  NoteRevision();
}

void IniTree::CompactChildren(IniNode* parent) {
  if (parent->children_ == nullptr) return;
  IniNode::Children& children = *parent->children_;
  const auto first = std::ranges::find_if(children, &IniNode::removed_);
  if (first == children.end()) return;
  const auto first_row = static_cast<std::size_t>(first - children.begin());
  std::size_t row = 0;
  std::erase_if(children, [&](IniNode* child) {
    if (!std::exchange(child->removed_, false)) return ++row, false;
    // What is below it goes with it, marked or not.
    for (int entry = 0; entry < child->ChildCount(); ++entry) child->Child(entry)->removed_ = false;
    NoteRow(parent, child, row, IniChanges::Came::Out);
    CountGone(*child);
    return true;
  });
  NumberChildren(parent, first_row);
}

}  // namespace tme
