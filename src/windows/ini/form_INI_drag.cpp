// Rows of form_INI that are dragged, and rows that are dropped on them.
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/LineReader.h"
#include "documents/ini/IniReader.h"
#include "shell/DisplayText.h"
#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "shell/WaitCursor.h"
#include "windows/ini/IniItemModel.h"
#include "windows/ini/IniNotice.h"
#include "windows/ini/form_INI.h"
#include "windows/tree/DocumentTreeView.h"
#include "windows/tree/RowDrag.h"
#include "windows/tree/TreeSelection.h"

using namespace Qt::StringLiterals;

namespace tme {

/// Sections, entries and comments that are dragged, none below another one.
class IniDraggedRows : public DraggedRows {
 public:
  IniDraggedRows(TreeDocumentWindow& from, std::vector<IniNode*> nodes, std::function<std::string()> lines)
      : DraggedRows(from, nodes.size(), std::move(lines)), nodes_(std::move(nodes)) {
    are_lines_ = std::ranges::all_of(nodes_, IsReadAsItIs);
  }

  const std::vector<IniNode*>& Nodes() const { return nodes_; }
  /// A reader takes each line for what it is. Edits by the rules can make others.
  bool AreLines() const { return are_lines_; }

 private:
  static bool IsReadAsItIs(const IniNode* node) {
    if (node->Tag() != IniTag::Section) return IsLine(*node);
    for (int row = 0; row < node->ChildCount(); ++row)
      if (!IsLine(*node->Child(row))) return false;
    return true;
  }
  static bool IsLine(const IniNode& node) {
    const IniLine kind = KindOf(node.Text());
    return kind == IniLine::Entry || kind == IniLine::Comment;
  }

  const std::vector<IniNode*> nodes_;
  bool are_lines_;
};

namespace {

/// Where rows go that are dropped on a row: below a section or the file. Beside the rows, sections go to the end of the
/// file, and lines to that of the last section.
IniNode* PlaceFor(const IniDraggedRows& rows, const QModelIndex& at, const IniTree& tree) {
  if (at.isValid()) {
    IniNode* node = IniItemModel::NodeOf(at);
    return node->Tag() == IniTag::Value || node->Tag() == IniTag::Comments ? node->Parent() : node;
  }
  IniNode* root = tree.Root();
  const bool has_sections =
      std::ranges::any_of(rows.Nodes(), [](const IniNode* node) { return node->Tag() == IniTag::Section; });
  IniNode* last = root->ChildCount() > 0 ? root->Child(root->ChildCount() - 1) : root;
  return has_sections || last->Tag() != IniTag::Section ? root : last;
}

/// Of the lines of a text, those that become nodes.
std::size_t FilledLines(std::string_view text) {
  LineReader lines(text);
  std::size_t count = 0;
  for (std::string_view line; lines.Next(line);) count += KindOf(line) == IniLine::Blank ? 0 : 1;
  return count;
}

}  // namespace

void form_INI::BuildDragging() {
  RowDragging dragging;
  dragging.rows = [this]() -> std::unique_ptr<DraggedRows> {
    CommitTyping();
    std::vector<IniNode*> nodes = SelectedTops<IniItemModel>(*TV->selectionModel());
    if (nodes.empty() || nodes.front() == tree_.Root()) return nullptr;
    const auto lines = [this, nodes] { return LinesOfMany(nodes); };
    return std::make_unique<IniDraggedRows>(*this, std::move(nodes), lines);
  };
  dragging.answer = [this](const DraggedRows& rows, Qt::DropAction action, const QModelIndex& at) {
    const auto* own_kind = dynamic_cast<const IniDraggedRows*>(&rows);
    if (own_kind == nullptr) return DropAnswer{.reason = tr("Keys and values of the registry have no place here.")};
    // Not on one of them.
    const bool has_place =
        !at.isValid() || std::ranges::find(own_kind->Nodes(), IniItemModel::NodeOf(at)) == own_kind->Nodes().end();
    return has_place ? AnswerTo(*own_kind, action, *PlaceFor(*own_kind, at, tree_)) : DropAnswer();
  };
  dragging.take = [this](const DraggedRows& rows, Qt::DropAction action, const QModelIndex& at) {
    const auto& own_kind = static_cast<const IniDraggedRows&>(rows);
    TakeRows(own_kind, action, PlaceFor(own_kind, at, tree_));
  };
  TV->SetDragging(std::move(dragging));
}

DropAnswer form_INI::AnswerTo(const IniDraggedRows& rows, Qt::DropAction action, const IniNode& target) const {
  const bool is_own = rows.From() == this;
  std::unordered_set<std::string_view> sections;
  bool has_lines = false, are_there = is_own && action == Qt::MoveAction;
  for (const IniNode* node : rows.Nodes()) {
    if (node == &target) return {};
    if (node->Tag() == IniTag::Section)
      sections.insert(node->Text());
    else
      has_lines = true;
    are_there = are_there && node->Parent() == &target && node->Tag() != IniTag::Section;
  }
  if (are_there) return {};
  if (IsWhole()) return {.is_yes = true};
  if (!rows.AreLines()) return {.reason = tr("A line of it would be read as something else.")};
  if (has_lines && &target == tree_.Root())
    return {.reason = tr("Shown by the rules, entries and comments stand in sections.")};
  if (!sections.empty() && is_own)
    return {.reason = tr("Shown by the rules, a file has each section once, and sections stand by name.")};
  for (int row = 0; !sections.empty() && row < tree_.Root()->ChildCount(); ++row)
    if (const std::string_view name = tree_.Root()->Child(row)->Text(); sections.contains(name))
      return {.reason = tr("There is a section \"%1\" already.").arg(DisplayText(name, kMaxCharactersInMessage))};
  return {.is_yes = true};
}

bool form_INI::TakeLines(const std::string& lines, IniNode* target, std::vector<IniNode*>& came) {
  tree_.Select(target);
  if (IsWhole()) {
    came = tree_.Paste(lines);
    return true;
  }
  const std::size_t count = tree_.NodeCount();
  IniReadResult result;
  came = PutManyLines(lines, result);
  // The sections that came were not there before.
  std::unordered_set<std::string_view> names;
  LineReader reader(lines);
  for (std::string_view line; reader.Next(line);)
    if (KindOf(line) == IniLine::Header) names.insert(line.substr(1, line.size() - 2));
  for (int row = 0; !names.empty() && row < tree_.Root()->ChildCount(); ++row)
    if (IniNode* child = tree_.Root()->Child(row); child->Tag() == IniTag::Section && names.contains(child->Text()))
      came.push_back(child);
  AddNotice(NoticeOf(result, tr("What was dropped")));
  return result.cut_headers == 0 && tree_.NodeCount() - count == FilledLines(lines);
}

void form_INI::TakeRows(const IniDraggedRows& rows, Qt::DropAction action, IniNode* target) {
  const WaitCursor wait_cursor;
  auto& from = static_cast<form_INI&>(*rows.From());
  const bool is_move = action == Qt::MoveAction, is_own = &from == this;
  const EditName name = is_move ? EditName::Move : EditName::Copy;
  const std::vector<IniNode*>& nodes = rows.Nodes();
  const std::string lines = from.LinesOfMany(nodes);
  std::vector<IniNode*> came;
  {
    const IniTree::Step step(tree_, name);
    // A file that is held whole takes every line, and what is gone is in no line's way.
    if (is_move && is_own && IsWhole()) RemoveMany(nodes, IniComments::GoAlong);
    const bool is_all = TakeLines(lines, target, came);
    if (IsWhole()) SetChanged(true);
    if (!is_all && is_move) AddNotice(tr("Not all could be taken as it was, so it also stays where it came from."));
    if (is_move && is_all && !(is_own && IsWhole())) {
      const IniTree::Step step_there(from.tree_, name);
      from.RemoveMany(nodes, IniComments::GoAlong);
    }
  }
  global_.area.BringToFront(*this);
  TV->setFocus();
  TV->expand(model_->IndexOf(target));
  if (!came.empty()) SelectNodes(*TV->selectionModel(), came, *model_);
  TV->scrollTo(TV->currentIndex());
}

}  // namespace tme
