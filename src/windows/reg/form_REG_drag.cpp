// Keys and values of form_REG that are dragged, and what is dropped on its keys.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegValueConflict.h"
#include "shell/DisplayText.h"
#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "shell/WaitCursor.h"
#include "windows/reg/RegKeyModel.h"
#include "windows/reg/RegValueModel.h"
#include "windows/reg/RegWholeCommands.h"
#include "windows/reg/form_REG.h"
#include "windows/tree/DocumentTreeView.h"
#include "windows/tree/RowDrag.h"
#include "windows/tree/TreeSelection.h"

using namespace Qt::StringLiterals;

namespace tme {

/// Keys, or values of one key, that are dragged.
class RegDraggedRows : public DraggedRows {
 public:
  RegDraggedRows(form_REG& from, RegTarget what, std::function<std::string()> lines)
      : DraggedRows(from, what.is_in_list ? what.records.size() : what.nodes.size(), std::move(lines)),
        document_(from.Document()),
        key_(document_.Selected()),
        what_(std::move(what)) {}

  const RegDocument& Document() const { return document_; }
  const RegTarget& What() const { return what_; }
  /// Whose values they are.
  const RegNode* Key() const { return key_; }
  /// What stands in the way of the keys in a document, wherever they are dropped there. It is sought once.
  const std::optional<std::string>& InTheWayOf(const RegDocument& document) const {
    if (sought_in_ != &document || sought_revision_ != document.Revision())
      in_the_way_ = ValueInTheWay(document, document_, what_.nodes);
    sought_in_ = &document;
    sought_revision_ = document.Revision();
    return in_the_way_;
  }

 private:
  const RegDocument& document_;
  const RegNode* const key_;
  const RegTarget what_;
  mutable const RegDocument* sought_in_ = nullptr;
  mutable std::uint64_t sought_revision_ = 0;
  mutable std::optional<std::string> in_the_way_;
};

namespace {

/// The key of another document's key's path; null without one.
RegNode* KeyLike(const RegDocument& document, const RegNode* node) {
  std::vector<const RegNode*> path;
  for (; node->Parent() != nullptr; node = node->Parent()) path.push_back(node);
  RegNode* at = document.Root();
  for (; at != nullptr && !path.empty(); path.pop_back()) at = document.FindChild(at, path.back()->Text());
  return at;
}

}  // namespace

void form_REG::BuildDragging() {
  TV->SetDragging(DraggingIn(Focus::TV));
  LV->SetDragging(DraggingIn(Focus::LV));
}

RowDragging form_REG::DraggingIn(Focus focus) {
  RowDragging dragging;
  dragging.rows = [this, focus]() -> std::unique_ptr<DraggedRows> {
    CommitTyping();
    RegTarget what = TargetIn(focus);
    std::erase_if(what.records, [this](std::size_t record) { return document_.Values()[record].deleted; });
    // A line of the list of a REGEDIT file is a key.
    if (IsWhole() && !whole_->CanHaveDeletions()) what.records.clear();
    const bool has_root = !what.nodes.empty() && what.nodes.front() == document_.Root();
    if (has_root || what.records.size() + what.nodes.size() == 0) return nullptr;
    std::function<std::string()> lines;
    if (IsWhole()) lines = [this, what] { return LinesOf(what); };
    return std::make_unique<RegDraggedRows>(*this, std::move(what), std::move(lines));
  };
  dragging.answer = [this, focus](const DraggedRows& rows, Qt::DropAction action, const QModelIndex& at) {
    const auto* own_kind = dynamic_cast<const RegDraggedRows*>(&rows);
    if (own_kind == nullptr) return DropAnswer{.reason = tr("Sections and entries of an INI file have no place here.")};
    return AnswerTo(*own_kind, action, *KeyAt(focus, at));
  };
  dragging.take = [this, focus](const DraggedRows& rows, Qt::DropAction action, const QModelIndex& at) {
    TakeRows(static_cast<const RegDraggedRows&>(rows), action, KeyAt(focus, at));
  };
  return dragging;
}

/// The list belongs to the selected key as a whole, and the room beside the keys to the file.
RegNode* form_REG::KeyAt(Focus focus, const QModelIndex& at) const {
  if (focus == Focus::TV && !at.isValid()) return document_.Root();
  RegNode* node = focus == Focus::TV ? RegKeyModel::NodeOf(at) : document_.Selected();
  return node->Tag() == RegTag::Comment ? node->Parent() : node;
}

DropAnswer form_REG::AnswerTo(const RegDraggedRows& rows, Qt::DropAction action, const RegNode& key) const {
  const RegTarget& what = rows.What();
  const bool is_own = rows.From() == this, is_move = action == Qt::MoveAction, is_root = key.Tag() == RegTag::File;
  if (!IsKey(key.Tag())) return {.reason = tr("The deletion of a key holds nothing.")};
  // Of the rows, what is already there, and what would come below itself.
  if (what.is_in_list ? is_own && is_move && rows.Key() == &key : is_own && is_root) return {};
  for (const RegNode* node : what.nodes)
    if (is_own && (IsAtOrBelow(&key, node) || (is_move && node->Parent() == &key))) return {};
  if (rows.From()->GetHolding() != GetHolding())
    return {.reason = tr("One of the files is shown whole and the other one by the rules, which write values in "
                         "different ways: show both in the same way (View, Whole File).")};
  if (what.is_in_list && is_root) return {.reason = tr("Values belong to a key.")};
  const auto is_hive = [](const RegNode* node) { return node->Tag() == RegTag::Hive; };
  if (!is_root && std::ranges::any_of(what.nodes, is_hive)) return {.reason = tr("A hive stands below the file.")};
  if (!IsWhole()) return AnswerByRules(rows, action, key);
  if (!whole_->CanHaveDeletions()) return {.reason = tr("This kind of file has one value a key, and takes no others.")};
  return {.is_yes = true};
}

DropAnswer form_REG::AnswerByRules(const RegDraggedRows& rows, Qt::DropAction action, const RegNode& key) const {
  const RegTarget& what = rows.What();
  const bool is_own = rows.From() == this;
  for (const RegNode* node : what.nodes) {
    if (key.Tag() == RegTag::File && node->Tag() != RegTag::Hive)
      return {.reason = tr("Shown by the rules, only hives stand below the file.")};
    if (document_.FindChild(&key, node->Text()) != nullptr)
      return {.reason = tr("There is a key \"%1\" already.").arg(DisplayText(node->Text(), kMaxCharactersInMessage))};
  }
  if (is_own && !what.is_in_list) {
    if (action == Qt::MoveAction) return {.is_yes = true};
    return {.reason = tr("By the rules, a save gives the values of a key to all keys of its name, so a copy would have "
                         "each value twice. Drag without Ctrl to move it.")};
  }
  const std::optional<std::string> value = what.is_in_list
                                               ? ValueInTheWay(document_, key, rows.Document(), what.records)
                                               : ValueInTheWay(document_, rows.Document(), what.nodes);
  if (!value) return {.is_yes = true};
  return {.reason = tr("By the rules, a save gives the values of a key to all keys of its name, and one of these has a "
                       "value \"%1\" already.")
                        .arg(DisplayText(*value, kMaxCharactersInMessage))};
}

bool form_REG::TakeLines(const std::string& lines, const RegTarget& what, RegNode* key, std::vector<RegNode*>& came) {
  const auto keys_of = [key] { return key->ChildCount() - static_cast<int>(key->CommentCount()); };
  const int count = keys_of();
  const RegPasteResult result = PasteLines(key, lines);
  // Below the root they keep their paths.
  for (const RegNode* node : what.nodes)
    if (RegNode* own = key == document_.Root() ? KeyLike(document_, node) : nullptr) came.push_back(own);
  const int first_row = key->ChildCount() - (keys_of() - count);
  for (int row = first_row; key != document_.Root() && row < key->ChildCount(); ++row) came.push_back(key->Child(row));
  return result.left_out == 0 && (what.is_in_list ? result.values == what.records.size() : true);
}

void form_REG::TakeRows(const RegDraggedRows& rows, Qt::DropAction action, RegNode* key) {
  const WaitCursor wait_cursor;
  auto& from = static_cast<form_REG&>(*rows.From());
  const RegTarget& what = rows.What();
  const bool is_move = action == Qt::MoveAction, is_own = &from == this;
  const bool moves_nodes = is_own && !IsWhole() && !what.is_in_list;
  const EditName name = is_move ? EditName::Move : EditName::Copy;
  const std::string lines = from.LinesOf(what);
  const std::size_t first_record = document_.Values().size();
  std::vector<RegNode*> came;
  {
    const RegDocument::Step step(document_, name);
    bool is_all = true;
    if (IsWhole())
      is_all = TakeLines(lines, what, key, came);
    else if (what.is_in_list)
      document_.CopyValues(from.document_, what.records, key);
    else
      came = moves_nodes ? document_.MoveKeys(what.nodes, key) : document_.CopyKeys(from.document_, what.nodes, key);
    if (!is_all && is_move) AddNotice(tr("Not all could be taken as it was, so it also stays where it came from."));
    if (is_move && is_all && !moves_nodes) {
      const RegDocument::Step step_there(from.document_, name);
      from.DeleteMany(what);
    }
    SetChanged(true);
  }
  ShowDropped(key, came, first_record);
}

void form_REG::ShowDropped(RegNode* key, const std::vector<RegNode*>& came, std::size_t first_record) {
  global_.area.BringToFront(*this);
  TV->expand(keys_->IndexOf(key));
  document_.Select(came.empty() ? key : came.front());
  ShowSelection();
  if (!came.empty()) {
    TV->setFocus();
    SelectNodes(*TV->selectionModel(), came, *keys_);
  } else if (first_record < document_.Values().size()) {
    LV->setFocus();
    std::vector<std::size_t> records;
    for (std::size_t record = first_record; record < document_.Values().size(); ++record) records.push_back(record);
    SelectRecords(records);
    SetFocusMarker(Focus::LV);
  }
  TV->scrollTo(TV->currentIndex());
  if (!IsWhole()) TellWhatASaveMakesOf(*document_.Selected());
}

}  // namespace tme
