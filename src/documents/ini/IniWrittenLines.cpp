#include "documents/ini/IniWrittenLines.h"

#include <algorithm>
#include <utility>

#include "base/Reversed.h"
#include "documents/ini/IniTree.h"
#include "documents/ini/IniWriter.h"

namespace tme {
namespace {

/// More nodes and rows are sooner found by comparing all that is written.
constexpr std::size_t kMostNoted = 1000;

std::uint64_t LinesOf(const IniNode& section) { return static_cast<std::uint64_t>(section.ChildCount()) + 2; }

/// Which children of the root are as before a step, from the first and from the last one on.
class SameSections {
 public:
  using Came = IniChanges::Came;

  explicit SameSections(const IniNode& root)
      : root_(root), count_(root.ChildCount()), before_(count_), behind_(count_) {}

  /// Returns false where other lines than those of sections changed.
  bool Take(const IniChanges& changes, EditableDocument::StepWay way) {
    for (const IniChanges::NodeState& state : changes.nodes)
      if (state.tag != state.node->Tag() || state.parent != state.node->Parent() || !TakeNode(*state.node))
        return false;
    const bool is_done = way == EditableDocument::StepWay::Done;
    std::size_t row = is_done ? changes.rows.size() : 0;
    const auto take = [&](const IniChanges::RowsChange& list) {
      if (is_done) row -= list.count;
      const std::span rows = std::span(changes.rows).subspan(row, list.count);
      if (!is_done) row += list.count;
      return TakeList(list, rows, (list.came == Came::In) == is_done);
    };
    return is_done ? std::ranges::all_of(Reversed(changes.lists), take) : std::ranges::all_of(changes.lists, take);
  }
  int First() const { return before_; }
  /// Behind the last one that is another.
  int End() const { return std::max(root_.ChildCount() - behind_, before_); }

 private:
  bool TakeNode(const IniNode& node) {
    if (&node == &root_) return true;
    const IniNode* top = node.Parent() == &root_ ? &node : node.Parent();
    const bool is_in_tree = top->Row() < root_.ChildCount() && root_.Child(top->Row()) == top;
    if (is_in_tree) TakeRow(top->Row(), root_.ChildCount());
    return top->Tag() == IniTag::Section;
  }
  /// From the present back. has_come: the rows are there, and were not before.
  bool TakeList(const IniChanges::RowsChange& list, std::span<const IniChanges::Row> rows, bool has_come) {
    if (list.parent != &root_) return TakeNode(*list.parent);
    const int count = static_cast<int>(list.count);
    const int longer = has_come ? count_ : count_ + count;
    count_ = has_come ? count_ - count : longer;
    return std::ranges::all_of(rows, [&](const IniChanges::Row& row) {
      TakeRow(static_cast<int>(row.row), longer);
      return row.node->Tag() == IniTag::Section;
    });
  }
  /// count: of the list that the row is of.
  void TakeRow(int row, int count) {
    before_ = std::min(before_, row);
    behind_ = std::min(behind_, count - 1 - row);
  }

  const IniNode& root_;
  int count_;
  int before_;
  int behind_;
};

/// Visits what stands at the left edge of the tree in the order of the file: visit(node, first line, lines). True ends.
template <typename Visit>
void ForEachWritten(const IniTree& tree, Visit visit) {
  const IniNode& root = *tree.Root();
  std::uint64_t line = 0;
  for (const IniTag tag : {IniTag::Comments, IniTag::Section})
    for (int row = 0; row < root.ChildCount(); ++row) {
      IniNode* child = root.Child(row);
      if (child->Tag() != tag) continue;
      // The header, what is below it, and a blank line.
      const std::uint64_t lines = tag == IniTag::Section ? LinesOf(*child) : 1;
      if (visit(child, line, lines)) return;
      line += lines;
    }
}

}  // namespace

std::optional<std::uint64_t> WrittenLineOf(const IniTree& tree, const IniNode& node) {
  const bool is_below = node.Parent() != nullptr && node.Parent() != tree.Root();
  const IniNode* top = is_below ? node.Parent() : &node;
  std::optional<std::uint64_t> found;
  ForEachWritten(tree, [&](const IniNode* at, std::uint64_t line, std::uint64_t) {
    if (at != top) return false;
    found = line + (is_below ? static_cast<std::uint64_t>(node.Row()) + 1 : 0);
    return true;
  });
  return found;
}

IniNode* NodeAtWrittenLine(const IniTree& tree, std::uint64_t wanted) {
  IniNode* found = nullptr;
  ForEachWritten(tree, [&](IniNode* at, std::uint64_t line, std::uint64_t lines) {
    found = at;
    if (wanted >= line + lines) return false;
    const bool is_below = wanted > line && wanted < line + lines - 1;
    if (is_below) found = at->Child(static_cast<int>(wanted - line - 1));
    return true;
  });
  return found;
}

std::optional<WrittenChange> WrittenChangeSince(const IniTree& tree, std::uint64_t revision) {
  const std::optional<EditableDocument::TakenStep> step = tree.OnlyStepSince(revision);
  if (!step) return std::nullopt;
  const IniChanges& changes = tree.ChangesOf(*step);
  SameSections same(*tree.Root());
  if (changes.nodes.size() + changes.rows.size() > kMostNoted || changes.arrangement != 0 ||
      !same.Take(changes, step->way))
    return std::nullopt;
  WrittenChange change;
  std::uint64_t between = 0;
  const IniNode* next = nullptr;
  for (int row = 0; row < tree.Root()->ChildCount(); ++row) {
    const IniNode& child = *tree.Root()->Child(row);
    if (child.Tag() == IniTag::Comments) ++change.before;
    if (child.Tag() != IniTag::Section) continue;
    if (row >= same.End() && next == nullptr) next = &child;
    (row < same.First() ? change.before : row < same.End() ? between : change.behind) += LinesOf(child);
  }
  if (between > kMostWrittenChange) return std::nullopt;
  change.lines = WriteIniSections(tree, same.First(), same.End());
  if (next != nullptr) change.next.append("[").append(next->Text()).append("]");
  return change;
}

}  // namespace tme
