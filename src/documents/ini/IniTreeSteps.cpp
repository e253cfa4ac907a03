// IniTree: what the steps of edits changed, taken back and made again.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/Reversed.h"
#include "documents/ini/IniTree.h"

namespace tme {
namespace {

using Row = IniChanges::Row;

/// So many rows are shown one by one; a view gets over a reset sooner than over more.
constexpr std::size_t kFewRows = 16;

/// Of rows that lead nowhere any more.
constexpr std::uint32_t kNoArrangement = UINT32_MAX;

std::uint32_t Distance(std::uint32_t left, std::uint32_t right) { return left < right ? right - left : left - right; }

}  // namespace

void IniChanges::NoteRow(IniNode* parent, IniNode* node, std::size_t row, Came came) {
  auto place = static_cast<std::uint32_t>(row);
  const bool goes_on = !lists.empty() && lists.back().parent == parent && lists.back().came == came;
  // Those that went before this one stand above it in the list that has them all.
  if (goes_on && came == Came::Out) place += lists.back().count;
  if (goes_on && place > rows.back().row)
    ++lists.back().count;
  else {
    lists.push_back({parent, 1, came});
    place = static_cast<std::uint32_t>(row);
  }
  rows.push_back({node, place});
}

void IniChanges::MakeRoom(std::size_t count) {
  if (!rows.empty() || !lines.IsEmpty()) return;
  lists.reserve(count);
  rows.reserve(count);
  lines.Reserve(2 * count);
}

void IniTree::StepBegins(IniChanges& changes) {
  changes.before = Totals();
  changes.arrangement = arranged_;
}

void IniTree::NoteNode(IniNode* node) {
  if (IsInStep()) Noted().nodes.push_back({node, node->parent_, node->Text(), node->tag_, node->children_sorted_});
}

void IniTree::NoteUnsorted(IniNode* parent) {
  if (!parent->children_sorted_) return;
  NoteNode(parent);
  parent->children_sorted_ = false;
}

void IniTree::NoteAllRows() {
  if (IsInStep()) Noted().arrangement = kNoArrangement;
}

void IniTree::NoteRow(IniNode* parent, IniNode* node, std::size_t row, IniChanges::Came came) {
  if (IsInStep()) Noted().NoteRow(parent, node, row, came);
}

/// Of two that stand in each other's way, the one that went farther moved; so one text that changed is one row.
void IniTree::NoteMoved(IniNode* parent, const std::vector<IniNode*>& before) {
  const IniNode::Children& now = *parent->children_;
  std::vector<std::uint32_t> row_now(before.size());
  for (std::uint32_t row = 0; row < now.size(); ++row) row_now[now[row]->row_] = row;
  for (std::uint32_t from = 0, to = 0; from < before.size() && to < now.size();) {
    IniNode *left = before[from], *right = now[to];
    if (left == right || left->removed_ || right->removed_) {
      if (left == right || left->removed_) ++from;
      if (left == right || right->removed_) ++to;
      continue;
    }
    const bool left_moved = Distance(row_now[from], from) > Distance(right->row_, to);
    (left_moved ? left : right)->removed_ = true;
  }
  std::uint32_t gone = 0;
  for (std::uint32_t row = 0; row < before.size(); ++row)
    if (before[row]->removed_) NoteRow(parent, before[row], row - gone++, IniChanges::Came::Out);
  for (std::uint32_t row = 0; row < now.size(); ++row)
    if (std::exchange(now[row]->removed_, false)) NoteRow(parent, now[row], row, IniChanges::Came::In);
}

void IniTree::Take(IniChanges& changes, Way way) {
  const bool are_rows_known = changes.arrangement == arranged_;
  const bool row_by_row = are_rows_known && IsShownRowByRow(changes);
  if (!row_by_row) observer_->BeforeReset();

  const auto exchange = [](IniChanges::NodeState& state) {
    IniNode& node = *state.node;
    std::swap(state.parent, node.parent_);
    std::swap(state.tag, node.tag_);
    std::swap(state.children_sorted, node.children_sorted_);
    const std::string_view text = std::exchange(state.text, node.Text());
    node.SetTextView(text);
  };
  if (way == Way::Back) {
    lines_.Revert(changes.lines);
    std::ranges::for_each(Reversed(changes.nodes), exchange);
  } else {
    lines_.Reapply(changes.lines);
    std::ranges::for_each(changes.nodes, exchange);
  }
  const IniChanges::Totals& totals = way == Way::Back ? changes.before : changes.after;
  node_count_ = totals.nodes;
  section_count_ = totals.sections;
  if (are_rows_known) {
    TakeRows(changes, way, row_by_row);
  } else {
    Rearrange();
    // Nodes that are gone now keep the rows below them that they had.
    changes.arrangement = kNoArrangement;
  }

  if (row_by_row && changes.rows.empty())
    for (const IniChanges::NodeState& state : changes.nodes) observer_->TextChanged(*state.node);
  MoveSelection(totals.selected);
  if (row_by_row)
    TellIfSelectionMoved();
  else
    EndReset();
}

/// Nodes that changed and rows that came or went are not told together: a node may have done both.
bool IniTree::IsShownRowByRow(const IniChanges& changes) {
  const auto moves = [](const auto& state) { return state.parent != state.node->parent_; };
  const auto changes_text = [](const auto& state) { return state.text.data() != state.node->text_; };
  if (changes.rows.empty()) return changes.nodes.size() <= kFewRows && std::ranges::none_of(changes.nodes, moves);
  return changes.rows.size() <= kFewRows && std::ranges::none_of(changes.nodes, moves) &&
         std::ranges::none_of(changes.nodes, changes_text);
}

void IniTree::TakeRows(const IniChanges& changes, Way way, bool row_by_row) {
  const auto take = [&](const IniChanges::RowsChange& list, std::span<const Row> rows) {
    const bool comes = (list.came == IniChanges::Came::In) == (way == Way::Forth);
    if (!row_by_row) return comes ? PutIn(list.parent, rows) : TakeOut(list.parent, rows);
    for (std::size_t at = 0; at < rows.size(); ++at) {
      // Each row is that of the list that has all of them, so the first one comes first and the last one goes first.
      const std::span<const Row> one = rows.subspan(comes ? at : rows.size() - 1 - at, 1);
      if (comes) {
        observer_->BeforeInsert(*list.parent, static_cast<int>(one.front().row));
        PutIn(list.parent, one);
        observer_->AfterInsert();
      } else {
        observer_->BeforeRemove(*one.front().node);
        TakeOut(list.parent, one);
        observer_->AfterRemove();
      }
    }
  };
  const std::span<const Row> all(changes.rows);
  if (way == Way::Forth) {
    std::size_t first = 0;
    for (const auto& list : changes.lists)
      take(list, all.subspan(std::exchange(first, first + list.count), list.count));
    return;
  }
  std::size_t end = all.size();
  for (const auto& list : Reversed(changes.lists)) take(list, all.subspan(end -= list.count, list.count));
}

void IniTree::PutIn(IniNode* parent, std::span<const Row> rows) {
  IniNode::Children& list = ChildrenOf(parent);
  std::size_t from = list.size(), to = from + rows.size();
  list.resize(to);
  for (const Row& row : Reversed(rows)) {
    while (to > row.row + std::size_t{1}) list[--to] = list[--from];
    list[--to] = row.node;
  }
  NumberChildren(parent, rows.front().row);
}

void IniTree::TakeOut(IniNode* parent, std::span<const Row> rows) {
  IniNode::Children& list = *parent->children_;
  std::size_t to = rows.front().row;
  auto next = rows.begin();
  for (std::size_t from = to; from < list.size(); ++from) {
    if (next != rows.end() && next->row == from)
      ++next;
    else
      list[to++] = list[from];
  }
  list.resize(to);
  NumberChildren(parent, rows.front().row);
}

}  // namespace tme
