#include "documents/ini/IniTree.h"

#include <algorithm>
#include <utility>

#include "documents/ini/IniLine.h"
#include "documents/ini/IniOrder.h"
#include "documents/ini/IniSourceLine.h"

namespace tme {

static_assert(sizeof(IniNode) <= 40);
static_assert(std::is_trivially_destructible_v<IniNode>, "nodes are given up by the chunk");

namespace {

IniTreeObserver silent_observer;

/// Returns where a new text belongs among sorted children: after those that are equal.
std::size_t RowFor(const IniNode& parent, std::string_view text) {
  int first = 0;
  for (int last = parent.ChildCount(); first < last;) {
    const int middle = first + (last - first) / 2;
    if (CompareFolded(text, parent.Child(middle)->Text()) < 0)
      last = middle;
    else
      first = middle + 1;
  }
  return static_cast<std::size_t>(first);
}

bool StandsInOrder(const IniNode& node) {
  const IniNode& parent = *node.Parent();
  const int row = node.Row();
  if (row > 0 && CompareFolded(parent.Child(row - 1)->Text(), node.Text()) > 0) return false;
  return row + 1 == parent.ChildCount() || CompareFolded(node.Text(), parent.Child(row + 1)->Text()) <= 0;
}

std::string EntryText(std::string_view key, std::string_view value) {
  return std::string(key).append("=").append(value);
}

IniTag TagOfKey(std::string_view key) { return KindOf(key) == IniLine::Comment ? IniTag::Comments : IniTag::Value; }

}  // namespace

IniTree::IniTree(std::string_view root_text)
    : observer_(&silent_observer),
      root_(new IniNode(nullptr, texts_.Copy(root_text), IniTag::OpenedFile, 0)),
      selected_(root_.get()) {
  lines_.NoteIn(&Noted().lines);
}

IniTree::~IniTree() = default;

void IniTree::SetObserver(IniTreeObserver* observer) { observer_ = observer == nullptr ? &silent_observer : observer; }

std::string_view IniTree::KeyOf(const IniNode& entry) const {
  return holding_ == Holding::Whole ? EntryPartsOf(entry.Text()).key : EntryKeyOf(entry.Text());
}

std::string_view IniTree::ValueOf(const IniNode& entry) const {
  return holding_ == Holding::Whole ? EntryPartsOf(entry.Text()).value : EntryValueOf(entry.Text());
}

bool IniTree::IsUniqueSectionName(std::string_view name) const {
  return root_->children_ == nullptr ||
         std::ranges::none_of(*root_->children_, [name](const IniNode* child) { return child->Text() == name; });
}

IniNode* IniTree::AddSection(std::string_view name) {
  const Step step(*this, EditName::AddSection);
  if (holding_ == Holding::Whole) return AddSectionLine(name);
  root_->expanded_ = true;
  return Add(root_.get(), ByRules(texts_.Copy(name), IniTag::Section));
}

IniNode* IniTree::AddEntry(IniNode* parent, std::string_view key, std::string_view value) {
  const Step step(*this, EditName::AddEntry);
  if (holding_ == Holding::Whole) return AddEntryLine(parent, key, value);
  return AddLine(parent, EntryText(key, value), TagOfKey(key));
}

bool IniTree::AddEntryToAllSections(std::string_view key, std::string_view value) {
  const Step step(*this, EditName::AddToAllSections);
  if (holding_ == Holding::Whole) return AddEntryLines(key, value);
  AddLineToAllSections(EntryText(key, value), TagOfKey(key));
  return true;
}

IniNode* IniTree::AddLine(IniNode* parent, std::string_view text, IniTag tag) {
  const Step step(*this, EditName::AddEntry);
  return Add(parent, ByRules(texts_.Copy(text), tag));
}

void IniTree::AddLineToAllSections(std::string_view text, IniTag tag) {
  if (section_count_ == 0) return;
  const Step step(*this, EditName::AddToAllSections);
  observer_->BeforeReset();
  const std::string_view shared = texts_.Copy(text);
  for (IniNode* section : *root_->children_) {
    if (section->tag_ != IniTag::Section) continue;
    section->expanded_ = true;
    if (section->children_sorted_) {
      InsertAt(section, RowFor(*section, shared), ByRules(shared, tag));
    } else {
      AppendAndSort(section, ByRules(shared, tag));
    }
  }
  NoteRevision();
  EndReset();
}

bool IniTree::SetText(IniNode* node, std::string_view text) {
  if (node->Text() == text) return true;
  if (node->parent_ == nullptr) {  // the file's name, not content
    node->SetTextView(texts_.Copy(text));
    observer_->TextChanged(*node);
    return true;
  }
  const Step step(*this, node->tag_ == IniTag::Section ? EditName::Rename : EditName::Edit);
  if (holding_ == Holding::Whole) return SetLineText(node, text);
  NoteNode(node);
  node->SetTextView(texts_.Copy(text));
  ShowText(node);
  return true;
}

IniNode* IniTree::SetEntry(IniNode* node, std::string_view key, std::string_view value) {
  const Step step(*this, EditName::Edit);
  if (holding_ == Holding::Whole) return SetEntryLine(node, key, value) ? node : nullptr;
  const std::string text = EntryText(key, value);
  if (TagOfKey(key) == IniTag::Comments) return ReplaceWithComment(node, text);
  SetText(node, text);
  return node;
}

IniNode* IniTree::ReplaceWithComment(IniNode* node, std::string_view text) {
  IniNode* comment = AddLine(node->parent_, text, IniTag::Comments);
  if (selected_ == node) MoveSelection(comment);
  Remove(node);
  return comment;
}

void IniTree::SetAllExpanded(bool expanded) {
  root_->expanded_ = true;
  for (int row = 0; row < root_->ChildCount(); ++row) root_->Child(row)->expanded_ = expanded;
}

IniNode* IniTree::NewNode(IniNode* parent, const NodeSource& source) {
  ++node_count_;
  if (source.tag == IniTag::Section) ++section_count_;
  auto* node = new (nodes_.Take()) IniNode(parent, source.text, source.tag, source.number);
  if (holding_ == Holding::Whole) {
    if (node_of_.size() <= source.number) node_of_.resize(source.number + 1);
    node_of_[source.number] = node;
  }
  return node;
}

IniNode::Children& IniTree::ChildrenOf(IniNode* parent) {
  if (parent->children_ == nullptr) {
    void* memory = lists_.allocate(sizeof(IniNode::Children), alignof(IniNode::Children));
    parent->children_ = new (memory) IniNode::Children(&lists_);
  }
  return *parent->children_;
}

IniNode* IniTree::Append(IniNode* parent, const NodeSource& source) {
  IniNode* node = InsertAt(parent, static_cast<std::size_t>(parent->ChildCount()), source);
  NoteUnsorted(parent);
  return node;
}

IniNode* IniTree::InsertAt(IniNode* parent, std::size_t row, const NodeSource& source) {
  IniNode* node = NewNode(parent, source);
  IniNode::Children& children = ChildrenOf(parent);
  children.insert(children.begin() + static_cast<std::ptrdiff_t>(row), node);
  NumberChildren(parent, row);
  NoteRow(parent, node, row, IniChanges::Came::In);
  return node;
}

IniNode* IniTree::AppendAndSort(IniNode* parent, const NodeSource& source) {
  IniNode* node = Append(parent, source);
  IniSorter sorter;
  SortChildren(parent, sorter);
  return node;
}

IniNode* IniTree::Add(IniNode* parent, const NodeSource& source, std::size_t row) {
  NoteRevision();
  const bool by_name = arrangement_ == IniArrangement::ByName;
  if (by_name && !parent->children_sorted_) {
    observer_->BeforeReset();
    IniNode* node = AppendAndSort(parent, source);
    EndReset();
    return node;
  }
  if (by_name) row = RowFor(*parent, source.text);
  observer_->BeforeInsert(*parent, static_cast<int>(row));
  IniNode* node = InsertAt(parent, row, source);
  observer_->AfterInsert();
  return node;
}

void IniTree::ShowText(IniNode* node) {
  NoteRevision();
  if (!StandsInOrder(*node)) NoteUnsorted(node->parent_);
  observer_->TextChanged(*node);
}

bool IniTree::SortChildren(IniNode* parent, IniSorter& sorter) {
  if (!IsInStep() || parent->children_ == nullptr) return SortNew(parent, sorter);
  if (!parent->children_sorted_) NoteNode(parent);
  parent->children_sorted_ = true;
  const std::vector<IniNode*> before(parent->children_->begin(), parent->children_->end());
  if (!sorter.Sort(*parent->children_)) return false;
  NoteMoved(parent, before);
  NumberChildren(parent, 0);
  return true;
}

bool IniTree::SortNew(IniNode* parent, IniSorter& sorter) {
  parent->children_sorted_ = true;
  if (parent->children_ == nullptr || !sorter.Sort(*parent->children_)) return false;
  NumberChildren(parent, 0);
  return true;
}

void IniTree::NumberChildren(IniNode* parent, std::size_t first_row) {
  IniNode::Children& children = *parent->children_;
  for (std::size_t row = first_row; row < children.size(); ++row) children[row]->row_ = static_cast<std::uint32_t>(row);
}

void IniTree::MoveSelection(IniNode* node) {
  selected_ = node;
  selection_moved_ = true;
}

void IniTree::EndReset() {
  observer_->AfterReset();
  TellIfSelectionMoved();
}

void IniTree::TellIfSelectionMoved() {
  if (std::exchange(selection_moved_, false)) observer_->SelectionMoved();
}

}  // namespace tme
