// What changes in a document when lines come in the place of others.
#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegLineEdit.h"

namespace tme {

namespace {

/// More new keys stand behind all others of their parents, since each place between them costs a pass over these.
constexpr std::size_t kMostPlacedKeys = 100;
/// So many headers are looked at for the place of a new key.
constexpr int kNearHeaders = 1000;

bool AreLines(const SourceLines& lines, SourceLines::Piece first, SourceLines::Piece last, std::string_view text) {
  for (const SourceLines::Piece end = lines.Next(last); first != end; first = lines.Next(first)) {
    if (!text.starts_with(lines.Text(first))) return false;
    text.remove_prefix(lines.Text(first).size());
  }
  return text.empty();
}

bool HasValue(RegPiece kind) { return kind == RegPiece::Value || kind == RegPiece::Pair; }

}  // namespace

void RegDocument::LineEdit::FindOld() {
  std::uint32_t header = header_;
  for (Old& old : old_) {
    if (IsHeader(document_.KindOf(old.piece))) old.header = header = document_.headers_[header].next;
    old.owner = header == 0 ? nullptr : document_.headers_[header].node;
  }
  for (std::size_t i = 0; i < same_first_; ++i) {
    items_[i].piece = old_[i].piece;
    if (old_[i].header != 0) header_ = old_[i].header;
  }
  for (std::size_t i = 0; i < same_last_; ++i) items_[NewEnd() + i].piece = old_[OldEnd() + i].piece;
  while (changes_headers_ && following_ < same_last_ && old_[OldEnd() + following_].header == 0) ++following_;
  FindRecords();
}

void RegDocument::LineEdit::FindRecords() {
  std::unordered_map<Piece, Old*> values;
  std::unordered_set<const RegNode*> owners;
  for (std::size_t i = same_first_; i < OldEnd() + following_; ++i) {
    if (!HasValue(document_.KindOf(old_[i].piece))) continue;
    values[old_[i].piece] = &old_[i];
    owners.insert(old_[i].owner);
  }
  for (const RegNode* owner : owners) {
    document_.ForEachRecordOf(owner, [this, &values](std::size_t record) {
      if (document_.values_[record].deleted) return;
      if (const auto found = values.find(document_.values_[record].piece); found != values.end())
        found->second->record = record;
    });
  }
}

void RegDocument::LineEdit::PutLines() {
  SourceLines& lines = document_.lines_;
  Piece place = same_first_ == 0 ? before_ : old_[same_first_ - 1].piece;
  if (same_first_ < OldEnd()) lines.Remove(old_[same_first_].piece, old_[OldEnd() - 1].piece);
  for (std::size_t i = same_first_; i < NewEnd(); ++i) {
    Item& item = items_[i];
    item.piece = place = lines.InsertBehind(place, item.lines, static_cast<std::uint8_t>(item.kind));
    if (lines.Text(place) != item.lines) lines.Replace(place, item.lines);  // the last one has no line end
  }
}

void RegDocument::LineEdit::PutHeaders() {
  for (std::size_t i = same_first_; i < OldEnd(); ++i) {
    if (old_[i].header == 0) continue;
    document_.UnlinkHeader(old_[i].header);
    UnlinkFromNode(old_[i].header);
    gone_.push_back(old_[i].owner);
  }
  std::uint32_t behind = header_;
  for (std::size_t i = same_first_; i < NewEnd(); ++i) {
    if (!IsHeader(items_[i].kind)) continue;
    RegNode* key = KeyOf(items_[i], behind);
    if (key->place_ != 0) unordered_.insert(key);
    document_.LinkHeader(key, items_[i].piece, behind);
    behind = key->place_;
    come_.push_back(key);
  }
  OrderHeaders();
}

/// Those of a node that go one after the other, from the first one on, are found at once.
void RegDocument::LineEdit::UnlinkFromNode(std::uint32_t header) {
  RegNode* node = document_.headers_[header].node;
  const std::uint32_t next = document_.headers_[header].next_of_node;
  std::uint32_t before = node->place_;
  while (document_.headers_[before].next_of_node != header) before = document_.headers_[before].next_of_node;
  if (before != header) document_.EditedHeader(before).next_of_node = next;
  if (node->place_ == header) document_.EditedNode(node).place_ = before == header ? 0 : before;
}

void RegDocument::LineEdit::OrderHeaders() {
  if (unordered_.empty()) return;
  std::unordered_map<RegNode*, std::vector<std::uint32_t>> headers;
  for (std::uint32_t at = document_.headers_[0].next; at != 0; at = document_.headers_[at].next)
    if (unordered_.contains(document_.headers_[at].node)) headers[document_.headers_[at].node].push_back(at);
  for (const auto& [node, own] : headers) {
    for (std::size_t i = 0; i < own.size(); ++i)
      document_.EditedHeader(own[i]).next_of_node = own[(i + 1) % own.size()];
    document_.EditedNode(node).place_ = own.back();
  }
}

RegNode* RegDocument::LineEdit::KeyOf(const Item& item, std::uint32_t behind) {
  std::string_view path = item.path;
  const bool is_deletion = item.kind == RegPiece::KeyDeletion;
  if (is_deletion) path = path.substr(0, path.find_last_not_of('\\') + 1);
  RegNode* key = document_.Root();
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find('\\', start), path.size());
    const std::string_view name = path.substr(start, end - start);
    start = end + 1;
    if (name.empty()) continue;
    const bool is_last = is_deletion && end == path.size();
    RegNode* child = is_last ? nullptr : document_.FindChild(key, name);
    const RegTag key_tag = key == document_.Root() ? RegTag::Hive : RegTag::Branch;
    if (child != nullptr && child->Text() != name && !HasLines(*child)) {
      key->children_->ForgetTexts();
      document_.EditedNode(child).SetTextView(document_.texts_.Copy(name));
    }
    key = child != nullptr ? child : NewChild(key, name, is_last ? RegTag::Deletion : key_tag, behind);
  }
  return key;
}

bool RegDocument::LineEdit::HasLines(const RegNode& key) {
  return !WalkKeys(key, [](const RegNode& node) { return node.place_ == 0; });
}

RegNode* RegDocument::LineEdit::NewChild(RegNode* parent, std::string_view text, RegTag tag, std::uint32_t behind) {
  const std::string_view name = document_.texts_.Copy(text);
  const auto count = static_cast<std::size_t>(parent->ChildCount());
  const std::size_t row = come_.size() < kMostPlacedKeys ? RowFor(parent, behind) : count;
  if (row == count) return document_.Append(parent, name, tag);
  RegNode* node = document_.MakeNode(parent, name, tag);
  document_.NoteRow(node, row, RegChanges::ListChange::Kind::Added);
  document_.PutRow(node, row);
  return node;
}

/// Behind the child whose block stands next before it.
std::size_t RegDocument::LineEdit::RowFor(const RegNode* parent, std::uint32_t behind) const {
  std::uint32_t header = behind;
  for (int i = 0; header != 0 && i < kNearHeaders; ++i, header = document_.headers_[header].previous)
    for (const RegNode* at = document_.headers_[header].node; at->parent_ != nullptr; at = at->parent_)
      if (at->parent_ == parent) return at->row_ + std::size_t{1};
  return header == 0 ? 0 : static_cast<std::size_t>(parent->ChildCount());
}

void RegDocument::LineEdit::PutValue(const Item& item, RegNode* owner) {
  document_.AppendRecord(owner, item.type, document_.texts_.Copy(item.name),
                         item.assignment.Of(document_.lines_.Text(item.piece)));
  document_.values_.back().piece = item.piece;
}

void RegDocument::LineEdit::ReplaceValues() {
  std::vector<std::size_t> records;
  for (std::size_t i = same_first_; i < OldEnd(); ++i)
    if (old_[i].record != SIZE_MAX) records.push_back(old_[i].record);
  std::size_t used = 0;
  for (std::size_t i = same_first_; i < NewEnd(); ++i) {
    const Item& item = items_[i];
    if (item.kind != RegPiece::Value) continue;
    if (used == records.size()) {
      PutValue(item, document_.headers_[header_].node);
      continue;
    }
    RegValueRecord& value = document_.EditedRecord(records[used++]);
    if (value.name != item.name) value.name = document_.texts_.Copy(item.name);
    value.data = item.assignment.Of(document_.lines_.Text(item.piece));
    value.type = item.type;
    value.piece = item.piece;
  }
  for (; used < records.size(); ++used) document_.MarkDeleted(records[used]);
}

void RegDocument::LineEdit::MoveValues() {
  for (std::size_t i = same_first_; i < OldEnd(); ++i)
    if (old_[i].record != SIZE_MAX) document_.MarkDeleted(old_[i].record);
  RegNode* owner = header_ == 0 ? nullptr : document_.headers_[header_].node;
  std::size_t keys = 0;
  for (std::size_t i = same_first_; i < NewEnd(); ++i) {
    if (IsHeader(items_[i].kind)) owner = come_[keys++];
    if (HasValue(items_[i].kind)) PutValue(items_[i], owner);
  }
  for (std::size_t i = 0; i < following_; ++i) {
    const Old& old = old_[OldEnd() + i];
    if (old.record == SIZE_MAX || old.owner == owner) continue;
    document_.MarkDeleted(old.record);
    PutValue(items_[NewEnd() + i], owner);
  }
}

/// Takes keys that no line names or implies any more out of the tree, level by level.
void RegDocument::LineEdit::Prune(std::vector<RegNode*> nodes) {
  while (!nodes.empty()) {
    std::map<RegNode*, std::vector<RegChildren::Place>> places;
    std::unordered_set<const RegNode*> seen;
    for (RegNode* node : nodes) {
      const bool is_needed = node->parent_ == nullptr || node->place_ != 0 || node->ChildCount() > 0;
      if (!is_needed && seen.insert(node).second && document_.IsInTree(node))
        places[node->parent_].push_back({node->row_, node});
    }
    nodes.clear();
    for (auto& [parent, rows] : places) {
      std::ranges::sort(rows, std::ranges::greater(), &RegChildren::Place::row);
      for (const auto& [row, node] : rows) document_.NoteRow(node, row, RegChanges::ListChange::Kind::Removed);
      std::ranges::reverse(rows);
      parent->children_->EraseAll(rows);
      document_.RenumberFrom(parent, rows.front().row);
      document_.node_count_ -= rows.size();
      nodes.push_back(parent);
    }
  }
}

void RegDocument::LineEdit::Select(RegNode* selected) {
  RegNode* near = document_.InTree(selected);
  document_.selected_ = near != selected && !come_.empty() ? come_.front() : near;
}

void RegDocument::ReplaceLines(SourceLines::Piece first, SourceLines::Piece last, std::string_view text) {
  if (holding_ != Holding::Whole || AreLines(lines_, first, last, text)) return;
  LineEdit(*this, first, last, text).Run();
}

}  // namespace tme
