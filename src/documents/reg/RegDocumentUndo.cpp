// What edits note, and how it is taken back and made again.
#include <algorithm>
#include <utility>
#include <vector>

#include "base/Reversed.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme {

namespace {

/// More are told as one reset.
constexpr std::size_t kFewRows = 100;

using Row = RegChanges::ListChange;
using NodeChange = RegChanges::NodeChange;

}  // namespace

void RegDocument::BeginNotes() {
  if (notes_ != nullptr) return;
  notes_ = &Noted();
  lines_.NoteIn(&notes_->lines);
  if (std::exchange(notes_->has_begun, true)) return;
  notes_->selected_before = selected_;
  notes_->version = version_;
  notes_->paths_are_unique = paths_are_unique_;
  notes_->arrangement = Arrangement();
  notes_->records.Begin(values_);
  notes_->runs.Begin(runs_);
  notes_->headers.Begin(headers_);
}

void RegDocument::EndNotes() {
  notes_->selected_after = selected_;
  lines_.NoteIn(nullptr);
  const bool has_any = !notes_->lines.IsEmpty() || !notes_->nodes.empty() || !notes_->lists.empty() ||
                       !notes_->deleted.empty() || notes_->records.HasAny(values_);
  // What did nothing is no part of the next step.
  if (!has_any) *notes_ = {};
  notes_ = nullptr;
}

RegNode& RegDocument::EditedNode(RegNode* node) {
  const bool is_noted = notes_ == nullptr || (!notes_->nodes.empty() && notes_->nodes.back().node == node);
  if (!is_noted)
    notes_->nodes.push_back({node, node->text_, node->size_, node->first_run_, node->last_run_, node->place_});
  return *node;
}

void RegDocument::NoteRow(RegNode* node, std::size_t row, Row::Kind kind) {
  if (notes_ == nullptr) return;
  const std::size_t comments = comments_ == RegComments::Shown ? std::min(row, node->parent_->CommentCount()) : 0;
  if (notes_->arrangement != Arrangement()) notes_->arrangement = RegChanges::kSeveral;
  notes_->lists.push_back({node, static_cast<std::uint32_t>(row), static_cast<std::uint32_t>(comments), kind});
}

void RegDocument::MarkDeleted(std::size_t record) {
  if (std::exchange(values_[record].deleted, true) || notes_ == nullptr) return;
  std::vector<RegChanges::Deleted>& deleted = notes_->deleted;
  if (!deleted.empty() && deleted.back().first + deleted.back().count == record)
    ++deleted.back().count;
  else
    deleted.push_back({record, 1});
}

void RegDocument::TurnChanges(RegChanges& changes, Turn turn) {
  if (!changes.has_begun) return;
  const bool is_same_arrangement = changes.arrangement == Arrangement();
  const bool is_by_row = is_same_arrangement && changes.lists.size() <= kFewRows;
  const RegNode* const selected = selected_;
  if (!is_by_row) observer_->BeforeReset();
  const bool are_comments_new = !is_same_arrangement && comments_ == RegComments::Shown;
  if (are_comments_new) DropComments();
  TurnTables(changes, turn);
  TurnNodes(changes.nodes, turn);
  is_by_row ? TurnRows(changes, turn) : TurnManyRows(changes, turn);
  if (are_comments_new) MakeComments();
  selected_ = InTree(turn == Turn::Back ? changes.selected_before : changes.selected_after);
  if (!is_by_row) return observer_->AfterReset();
  for (const NodeChange& change : changes.nodes)
    if (change.text != change.node->text_ && IsInTree(change.node)) observer_->TextChanged(*change.node);
  observer_->ValuesReset();
  if (selected_ != selected) observer_->SelectionMoved();
}

void RegDocument::TurnTables(RegChanges& changes, Turn turn) {
  const auto mark = [this, &changes](bool deleted) {
    for (const auto& [first, count] : changes.deleted)
      for (std::size_t record = first; record < first + count; ++record) values_[record].deleted = deleted;
  };
  if (turn == Turn::Back) {
    mark(false);
    changes.records.Revert(values_);
    changes.runs.Revert(runs_);
    changes.headers.Revert(headers_);
    lines_.Revert(changes.lines);
  } else {
    changes.records.Reapply(values_);
    mark(true);
    changes.runs.Reapply(runs_);
    changes.headers.Reapply(headers_);
    lines_.Reapply(changes.lines);
  }
  std::swap(version_, changes.version);
  std::swap(paths_are_unique_, changes.paths_are_unique);
}

void RegDocument::TurnNodes(std::vector<NodeChange>& nodes, Turn turn) {
  const auto exchange = [](NodeChange& change) {
    RegNode& node = *change.node;
    if (change.text != node.text_ && node.parent_ != nullptr) node.parent_->children_->ForgetTexts();
    std::swap(node.text_, change.text);
    std::swap(node.size_, change.size);
    std::swap(node.first_run_, change.first_run);
    std::swap(node.last_run_, change.last_run);
    std::swap(node.place_, change.place);
  };
  if (turn == Turn::Back)
    std::ranges::for_each(Reversed(nodes), exchange);
  else
    std::ranges::for_each(nodes, exchange);
}

void RegDocument::TurnRows(const RegChanges& changes, Turn turn) {
  const auto change_row = [this, turn](const Row& change) {
    const auto row = static_cast<int>(change.row);
    if ((change.kind == Row::Kind::Added) == (turn == Turn::Again)) {
      observer_->BeforeInsert(*change.node->parent_, row);
      PutRow(change.node, change.row);
      observer_->AfterInsert();
    } else {
      observer_->BeforeRemove(*change.node);
      TakeRow(change.node);
      observer_->AfterRemove();
    }
  };
  if (turn == Turn::Again)
    std::ranges::for_each(changes.lists, change_row);
  else
    std::ranges::for_each(Reversed(changes.lists), change_row);
}

/// Rows of one parent that come or go one behind the other, or one before the other, do so in one pass over its list.
void RegDocument::TurnManyRows(const RegChanges& changes, Turn turn) {
  const bool without_comments = changes.arrangement != Arrangement();
  std::vector<Row> open;
  const auto is_put = [turn](const Row& row) { return (row.kind == Row::Kind::Added) == (turn == Turn::Again); };
  const auto follows = [&open, &is_put](const Row& row) {
    const Row& last = open.back();
    if (row.node->parent_ != last.node->parent_ || is_put(row) != is_put(last)) return false;
    const bool is_down = is_put(row) ? row.row > last.row : row.row >= last.row;
    return open.size() == 1 || is_down == (is_put(row) ? last.row > open.front().row : last.row >= open.front().row);
  };
  const auto close = [this, &open, &is_put] {
    if (!open.empty()) TurnRun(open, is_put(open.front()) ? Row::Kind::Added : Row::Kind::Removed);
    open.clear();
  };
  const auto take = [&](Row row) {
    if (without_comments && row.node->tag_ == RegTag::Comment) return;
    if (without_comments) {
      row.row -= row.comments;
      // It may have gone with comments that are not up to date.
      if (is_put(row)) DropCommentsBelow(*row.node);
    }
    if (!open.empty() && !follows(row)) close();
    open.push_back(row);
  };
  if (turn == Turn::Again)
    std::ranges::for_each(changes.lists, take);
  else
    std::ranges::for_each(Reversed(changes.lists), take);
  close();
}

/// rows: of one parent, all rising or all falling. They become those of the longer list before anything is done.
void RegDocument::TurnRun(std::vector<Row>& rows, Row::Kind kind) {
  const bool is_put = kind == Row::Kind::Added;
  const bool rises = rows.size() > 1 && (is_put ? rows[1].row > rows[0].row : rows[1].row >= rows[0].row);
  if (!rises) std::ranges::reverse(rows);
  // What goes from the top, or comes above what came, has moved the rows behind it.
  if (rises != is_put)
    for (std::uint32_t i = 0; i < rows.size(); ++i) rows[i].row += i;
  RegNode* parent = rows.front().node->parent_;
  std::vector<RegChildren::Place> places;
  std::size_t count = 0;
  for (const Row& row : rows) {
    places.push_back({row.row, row.node});
    count += CountBelow(*row.node);
  }
  if (is_put)
    parent->children_->InsertAll(places);
  else
    parent->children_->EraseAll(places);
  node_count_ = is_put ? node_count_ + count : node_count_ - count;
  RenumberFrom(parent, rows.front().row);
}

void RegDocument::PutRow(RegNode* node, std::size_t row) {
  node->parent_->children_->Insert(row, node);
  RenumberFrom(node->parent_, row);
  node_count_ += CountBelow(*node);
}

void RegDocument::TakeRow(RegNode* node) {
  node->parent_->children_->Erase(node->row_);
  RenumberFrom(node->parent_, node->row_);
  node_count_ -= CountBelow(*node);
}

/// The node itself, or what is nearest above it, where it is out of the tree.
const RegNode* RegDocument::InTree(const RegNode* node) const {
  const RegNode* found = node;
  for (const RegNode* at = node; at->parent_ != nullptr; at = at->parent_) {
    const RegChildren& siblings = *at->parent_->children_;
    if (at->row_ >= siblings.Count() || siblings.At(at->row_) != at) found = at->parent_;
  }
  return found;
}

std::size_t RegDocument::CountBelow(const RegNode& node) const {
  std::size_t count = 0;
  WalkKeys(node, [&count](const RegNode&) {
    ++count;
    return true;
  });
  return count;
}

}  // namespace tme
