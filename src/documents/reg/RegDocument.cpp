#include "documents/reg/RegDocument.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegValueIndex.h"

namespace tme {

static_assert(sizeof(RegNode) <= 56);
static_assert(sizeof(RegValueRecord) <= 48);
static_assert(std::is_trivially_destructible_v<RegNode>, "nodes are given up by the chunk");

namespace {

RegDocumentObserver silent_observer;

bool IsBelow(const RegNode* node, const RegNode* top) {
  while (node != nullptr && node != top) node = node->Parent();
  return node == top;
}

}  // namespace

bool IsHiveName(std::string_view text) { return std::ranges::find(HiveNames, text) != std::end(HiveNames); }

std::string RegNode::KeyPath() const {
  if (parent_ == nullptr) return {};
  std::size_t size = 0;
  for (const RegNode* node = this; node->parent_ != nullptr; node = node->parent_) size += node->size_ + 1;
  std::string path(size - 1, '\\');
  std::size_t at = size;
  for (const RegNode* node = this; node->parent_ != nullptr; node = node->parent_) {
    at -= node->size_ + 1;
    node->Text().copy(path.data() + at, node->size_);
  }
  return path;
}

std::size_t RegNode::CommentCount() const {
  int count = 0;
  while (count < ChildCount() && Child(count)->Tag() == RegTag::Comment) ++count;
  return static_cast<std::size_t>(count);
}

RegDocument::RegDocument(std::string_view title)
    : observer_(&silent_observer),
      root_(new RegNode(nullptr, texts_.Copy(title), RegTag::File)),
      selected_(root_.get()) {}

RegDocument::~RegDocument() = default;

void RegDocument::SetObserver(RegDocumentObserver* observer) {
  observer_ = observer == nullptr ? &silent_observer : observer;
}

RegNode* RegDocument::FindChild(const RegNode* parent, std::string_view text) const {
  return parent->children_ == nullptr ? nullptr : parent->children_->Find(text);
}

std::vector<std::size_t> RegDocument::ValuesOfPath(const RegNode* node) const {
  std::vector<std::size_t> records;
  if (holding_ == Holding::Whole) {
    CollectRecords(node, records);
    std::erase_if(records, [this](std::size_t record) { return values_[record].deleted; });
    return records;
  }
  if (paths_are_unique_ || node == root_.get()) {
    CollectRecords(node, records);
    return records;
  }
  for (const RegNode* same : NodesOfPath(node->KeyPath())) CollectRecords(same, records);
  std::ranges::sort(records);
  return records;
}

bool RegDocument::HasValueNamed(const RegNode* node, std::string_view name) const {
  return std::ranges::any_of(runs_, [this, node, name](const RegRun& run) {
    if (run.owner->Text() != node->Text()) return false;
    const RegValueRecord* first = &values_[run.first];
    return std::any_of(first, first + run.count, [name](const RegValueRecord& record) { return record.name == name; });
  });
}

std::size_t RegDocument::KeysSharingAName() const {
  const RegValueIndex index(*this);
  const std::vector<const RegNode*> sole_owners = index.SoleOwners();
  std::size_t sharing = 0;
  const auto count = [&](const RegNode& node) {
    const bool written = node.tag_ == RegTag::Branch && node.Text() != root_->Text();
    const std::uint32_t group = written ? index.GroupOf(node) : RegValueIndex::kNoGroup;
    if (group != RegValueIndex::kNoGroup && sole_owners[group] != &node) ++sharing;
    return true;
  };
  WalkKeys(*root_, count);
  return sharing;
}

bool RegDocument::SharesItsName(const RegNode* node) const {
  const auto is_namesake = [node](const RegNode& other) {
    return &other != node && other.tag_ == RegTag::Branch && other.Text() == node->Text();
  };
  if (node->tag_ != RegTag::Branch || node->Text() == root_->Text()) return false;
  if (std::ranges::any_of(runs_,
                          [&](const RegRun& run) { return run.owner != node && run.owner->Text() == node->Text(); }))
    return true;
  if (node->first_run_ == RegNode::kNoRun) return false;
  return !WalkKeys(*root_, [&](const RegNode& other) { return !is_namesake(other); });
}

RegNode* RegDocument::AddHiveNode(std::string_view name) { return Add(root_.get(), name, RegTag::Hive); }

RegNode* RegDocument::AddBranch(RegNode* parent, std::string_view text) { return Add(parent, text, RegTag::Branch); }

std::size_t RegDocument::AddValueRecord(RegNode* node, RegType type, std::string_view name, std::string_view data) {
  const Editing editing(*this, EditName::AddValue);
  const std::size_t record = values_.size();
  AppendRecord(node, type, texts_.Copy(name), texts_.Copy(data));
  NoteRevision();
  observer_->ValueAdded(record);
  return record;
}

void RegDocument::SetValueData(std::size_t record, std::string_view data) {
  if (values_[record].data == data) return;
  const Editing editing(*this, EditName::Edit);
  EditedRecord(record).data = texts_.Copy(data);
  ValueHasChanged(record);
}

void RegDocument::DeleteValue(std::size_t record) {
  if (holding_ == Holding::Whole) return DeleteValueLines(record);
  const RegValueRecord& value = values_[record];
  if (value.deleted && value.data.empty()) return;
  const Editing editing(*this, EditName::DeleteValue);
  EditedRecord(record) = {.owner = value.owner, .name = {}, .data = {}, .type = RegType::None, .deleted = true};
  ValueHasChanged(record);
}

void RegDocument::RenameValue(std::size_t record, std::string_view name) {
  if (values_[record].name == name) return;
  if (holding_ == Holding::Whole) return RenameInLine(record, name);
  const Editing editing(*this, EditName::Rename);
  EditedRecord(record).name = texts_.Copy(name);
  ValueHasChanged(record);
}

void RegDocument::SetText(RegNode* node, std::string_view text) {
  if (node->Text() == text) return;
  const Editing editing(*this, EditName::Rename);
  if (node->parent_ != nullptr) {
    NoteSibling(node->parent_, text);
    node->parent_->children_->ForgetTexts();
  }
  EditedNode(node).SetTextView(texts_.Copy(text));
  NoteRevision();
  observer_->TextChanged(*node);
}

void RegDocument::SetTitle(std::string_view title) {
  root_->SetTextView(texts_.Copy(title));
  observer_->TextChanged(*root_);
}

void RegDocument::RemoveKey(RegNode* node, HeaderComments comments) {
  if (node == root_.get()) return;
  const Editing editing(*this, IsKey(node->tag_) ? EditName::DeleteKey : EditName::Delete);
  RegNode* parent = node->parent_;
  RegChildren& siblings = *parent->children_;
  const std::size_t row = node->row_;
  observer_->BeforeRemove(*node);
  if (holding_ == Holding::Whole) RemoveBlocks(node, comments);
  const bool selection_moves = IsBelow(selected_, node);
  NoteRow(node, row, RegChanges::ListChange::Kind::Removed);
  TakeRow(node);
  if (selection_moves) selected_ = siblings.Count() == 0 ? parent : siblings.At(std::min(row, siblings.Count() - 1));
  NoteRevision();
  observer_->AfterRemove();
  if (selection_moves) observer_->SelectionMoved();
}

void RegDocument::Reset(std::string_view title) {
  observer_->BeforeReset();
  const std::string kept(title);
  values_ = {};
  runs_ = {};
  headers_.assign(1, RegHeader{});
  comment_of_piece_ = {};
  lines_.Clear();
  holding_ = Holding::ByRules;
  comments_ = RegComments::Hidden;
  nodes_.Clear();
  lists_.release();
  texts_.Clear();
  *root_ = RegNode(nullptr, texts_.Copy(kept), RegTag::File);
  selected_ = root_.get();
  node_count_ = 1;
  paths_are_unique_ = true;
  NoteRevision();
  ForgetSteps();
  observer_->AfterReset();
}

void RegDocument::RenumberFrom(const RegNode* parent, std::size_t row) {
  RegChildren& children = *parent->children_;
  for (; row < children.Count(); ++row) children.At(row)->row_ = static_cast<std::uint32_t>(row);
}

RegChildren& RegDocument::ChildrenOf(RegNode* parent) {
  if (parent->children_ == nullptr) {
    void* memory = lists_.allocate(sizeof(RegChildren), alignof(RegChildren));
    const RegLetters letters = holding_ == Holding::Whole ? RegLetters::AnyCase : RegLetters::Exact;
    parent->children_ = new (memory) RegChildren(&lists_, letters);
  }
  return *parent->children_;
}

RegNode* RegDocument::MakeNode(RegNode* parent, std::string_view text, RegTag tag) {
  ChildrenOf(parent);
  return new (nodes_.Take()) RegNode(parent, text, tag);
}

RegNode* RegDocument::Append(RegNode* parent, std::string_view text, RegTag tag) {
  RegNode* node = MakeNode(parent, text, tag);
  node->row_ = static_cast<std::uint32_t>(parent->children_->Count());
  NoteRow(node, node->row_, RegChanges::ListChange::Kind::Added);
  parent->children_->Append(node);
  ++node_count_;
  return node;
}

void RegDocument::StartRun(RegNode* owner) {
  const auto run = static_cast<std::uint32_t>(runs_.size());
  EditedNode(owner);
  if (owner->first_run_ == RegNode::kNoRun) {
    owner->first_run_ = run;
  } else {
    EditedRun(owner->last_run_).next = run;
  }
  owner->last_run_ = run;
  runs_.push_back({owner, static_cast<std::uint32_t>(values_.size()), 0, RegNode::kNoRun});
}

RegNode* RegDocument::Add(RegNode* parent, std::string_view text, RegTag tag) {
  const Editing editing(*this, EditName::AddKey);
  NoteSibling(parent, text);
  observer_->BeforeInsert(*parent, parent->ChildCount());
  RegNode* node = Append(parent, texts_.Copy(text), tag);
  NoteRevision();
  observer_->AfterInsert();
  return node;
}

/// Must be called before a child of this text comes.
void RegDocument::NoteSibling(const RegNode* parent, std::string_view text) {
  if (text.find('\\') != std::string_view::npos || FindChild(parent, text) != nullptr) paths_are_unique_ = false;
}

void RegDocument::CollectRecords(const RegNode* node, std::vector<std::size_t>& records) const {
  for (std::uint32_t at = node->first_run_; at != RegNode::kNoRun; at = runs_[at].next) {
    for (std::uint32_t i = 0; i < runs_[at].count; ++i) records.push_back(runs_[at].first + i);
  }
}

/// Returns every node in the tree with this KeyPath: with equal siblings, or texts that hold a backslash, more than
/// one.
std::vector<const RegNode*> RegDocument::NodesOfPath(std::string_view path) const {
  struct Reached {
    const RegNode* node;
    std::string_view rest;
  };
  std::vector<const RegNode*> found;
  std::vector<Reached> open = {{root_.get(), path}};
  while (!open.empty()) {
    const auto [parent, rest] = open.back();
    open.pop_back();
    for (int row = 0; row < parent->ChildCount(); ++row) {
      const RegNode* child = parent->Child(row);
      const std::string_view text = child->Text();
      if (!rest.starts_with(text)) continue;
      if (rest.size() == text.size()) {
        found.push_back(child);
      } else if (rest[text.size()] == '\\') {
        open.push_back({child, rest.substr(text.size() + 1)});
      }
    }
  }
  return found;
}

void RegDocument::ValueHasChanged(std::size_t record) {
  NoteRevision();
  observer_->ValueChanged(record);
}

}  // namespace tme
