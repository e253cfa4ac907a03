// Rows of form_REG's tree and list: edited in place, copied in other forms, expanded.
#include <QClipboard>
#include <QGuiApplication>
#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "documents/reg/RegAddLine.h"
#include "documents/reg/RegKeyWalk.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "shell/WaitCursor.h"
#include "windows/reg/RegKeyModel.h"
#include "windows/reg/RegValueModel.h"
#include "windows/reg/RegValueText.h"
#include "windows/reg/RegWholeCommands.h"
#include "windows/reg/form_REG.h"
#include "windows/tree/DocumentTreeView.h"
#include "windows/tree/RowEditor.h"
#include "windows/tree/TreeSelection.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// The data of a record, decoded; null for a deletion and for what is not understood.
std::optional<RegData> DataOf(const RegDocument& document, const RegValueRecord& record) {
  RegCoding coding = CodingOf(document);
  if (document.HeldAs() == Holding::Whole) return DecodeAssignment(record.data, coding);
  const RegTypeTraits& traits = TraitsOf(record.type);
  // The first two characters end the name.
  std::string assignment(traits.before.substr(std::min<std::size_t>(traits.before.size(), 2)));
  coding.version = RegVersion::Regedit4;
  return DecodeAssignment(assignment.append(record.data).append(traits.after), coding);
}

bool IsDeletion(const RegDocument& document, const RegValueRecord& record) {
  return document.HeldAs() == Holding::Whole && document.Version() != RegVersion::Regedit && record.data == "-";
}

std::string_view NameIn(const RegDocument& document, const RegValueRecord& record) {
  return document.HeldAs() == Holding::ByRules && record.name == "[default]" ? std::string_view() : record.name;
}

/// Lines for cmd, and how many things they cannot say.
class RegAddLines {
 public:
  void Add(const std::optional<std::string>& line, std::string_view instead) {
    if (line) {
      text_ += TextOf(*line);
    } else {
      ++unsaid_;
      text_ += u"rem "_s + DisplayText(instead, kMaxCharactersInMessage);
    }
    text_ += u"\r\n"_s;
  }
  const QString& Text() const { return text_; }
  std::size_t Unsaid() const { return unsaid_; }

 private:
  QString text_;
  std::size_t unsaid_ = 0;
};

}  // namespace

void form_REG::BuildRowEditors() {
  RowEditor::Texts keys;
  keys.shown = [](const QModelIndex& index) { return EditableText(RegKeyModel::NodeOf(index)->Text()); };
  keys.take = [this](const QModelIndex& index, const QString& name) {
    const QString reason = whole_->Rename(RegKeyModel::NodeOf(index), name);
    if (reason.isEmpty()) FollowEdit({});
    return reason;
  };
  TV->setItemDelegate(new RowEditor(tr("Name of the key"), std::move(keys), TV));
  RowEditor::Texts values;
  values.shown = [this](const QModelIndex& index) {
    return EditableText(document_.Values()[values_->RecordOf(index)].name);
  };
  values.take = [this](const QModelIndex& index, const QString& name) {
    const QString reason = whole_->Rename(values_->RecordOf(index), name);
    if (reason.isEmpty()) FollowEdit({.records = {}, .is_in_list = true});
    return reason;
  };
  LV->setItemDelegate(new RowEditor(tr("Name of the value"), std::move(values), LV));
}

void form_REG::RenameInRow() {
  const RegTarget target = Target();
  if (!whole_->CanRename(target)) return;
  if (target.is_in_list)
    LV->edit(values_->index(values_->RowOf(target.records.front()), RegValueModel::Name));
  else
    TV->edit(keys_->IndexOf(document_.Selected()));
}

void form_REG::RemoveTarget(const RegTarget& target, EditName name) {
  const RegDocument::Step step(document_, name);
  for (const std::size_t record : target.records) document_.DeleteValue(record);
  if (target.nodes.size() > 1)
    document_.RemoveKeys(target.nodes);
  else if (!target.is_in_list)
    document_.RemoveKey(document_.Selected());
  FollowEdit(target);
}

void form_REG::DeleteMany(const RegTarget& target) {
  if (target.is_in_list) {
    const RegDocument::Step step(document_, EditName::DeleteValue);
    const int row = values_->RowOf(target.records.front());
    for (const std::size_t record : target.records) document_.DeleteValue(record);
    // The records come back as empty rows when the key is shown again; intended.
    values_->TakeRecords(target.records);
    GoToRow(row);
  } else {
    document_.RemoveKeys(target.nodes);
  }
  SetChanged(true);
}

void form_REG::CopyKeyPath() {
  QStringList paths;
  for (const RegNode* node : SelectedNodes<RegKeyModel>(*TV->selectionModel())) {
    if (node->Tag() == RegTag::Comment) node = node->Parent();
    paths += TextOf(node->KeyPath());
  }
  paths.removeDuplicates();
  QGuiApplication::clipboard()->setText(paths.join(u'\n'));
}

void form_REG::CopyRegAdd() {
  RegAddLines lines;
  const RegTarget target = Target();
  const WaitCursor wait_cursor;
  const std::string path = document_.Selected()->KeyPath();
  for (const std::size_t index : target.records) {
    const RegValueRecord& record = document_.Values()[index];
    if (record.deleted) continue;
    const std::optional<RegData> decoded = DataOf(document_, record);
    const std::string_view name = NameIn(document_, record);
    const bool is_said = decoded.has_value() || IsDeletion(document_, record);
    lines.Add(is_said ? RegAddValueLine(path, name, decoded) : std::nullopt,
              path + ' ' + QuotedRegName(name) + '=' + std::string(record.data));
  }
  if (!target.is_in_list) {
    for (const RegNode* node : SelectedNodes<RegKeyModel>(*TV->selectionModel())) {
      if (node->Tag() == RegTag::File || node->Tag() == RegTag::Comment) continue;
      const std::string of_node = node->KeyPath();
      lines.Add(node->Tag() == RegTag::Deletion ? RegDeleteKeyLine(of_node) : RegAddKeyLine(of_node), of_node);
    }
  }
  if (lines.Text().isEmpty()) return;
  QGuiApplication::clipboard()->setText(lines.Text());
  if (lines.Unsaid() > 0)
    AddNotice(Counted(lines.Unsaid(), tr("1 value cannot be said by a reg add line, and is a comment there."),
                      tr("%1 values cannot be said by reg add lines, and are comments there.")));
}

void form_REG::CopyAsText() {
  if (FocusMarker == Focus::TV) return CopyRowTexts(SelectedNodes<RegKeyModel>(*TV->selectionModel()), *keys_);
  QModelIndexList rows = LV->selectionModel()->selectedRows();
  std::ranges::sort(rows, {}, &QModelIndex::row);
  QString text;
  for (const QModelIndex& row : rows) {
    for (int column = 0; column < RegValueModel::ColumnCount; ++column)
      text += (column == 0 ? u""_s : u"\t"_s) + row.siblingAtColumn(column).data().toString();
    if (rows.size() > 1) text += u'\n';
  }
  if (!rows.isEmpty()) QGuiApplication::clipboard()->setText(text);
}

void form_REG::ExpandAll() {
  const WaitCursor wait_cursor;
  TV->ExpandBelow(keys_->IndexOf(document_.Root()));
}

void form_REG::CollapseAll() {
  RegNode* top = document_.Selected();
  while (top->Parent() != nullptr && top->Parent() != document_.Root()) top = top->Parent();
  // What is selected stays in sight.
  TV->setCurrentIndex(keys_->IndexOf(top));
  TV->collapseAll();
  TV->expand(keys_->IndexOf(document_.Root()));
  TV->scrollTo(TV->currentIndex());
}

std::function<void()> form_REG::SelectionAgain() const {
  auto ranges = SelectedRanges<RegKeyModel>(*TV->selectionModel());
  std::vector<std::size_t> records;
  for (const QItemSelectionRange& range : LV->selectionModel()->selection())
    for (int row = range.top(); row <= range.bottom(); ++row)
      records.push_back(values_->RecordOf(values_->index(row, 0)));
  std::ranges::sort(records);
  // Those of a key mostly follow one another.
  struct Run {
    std::size_t first;
    std::size_t end;
  };
  std::vector<Run> runs;
  for (const std::size_t record : records) {
    if (runs.empty() || runs.back().end != record) runs.push_back({record, record});
    ++runs.back().end;
  }
  return [this, ranges = std::move(ranges), runs = std::move(runs), key = document_.Selected()] {
    SelectRanges(*TV->selectionModel(), ranges, *keys_,
                 [this](const RegNode* node) { return document_.IsInTree(node); });
    if (document_.Selected() != key) return;
    LV->clearSelection();
    std::vector<std::size_t> selected;
    for (const auto& [first, end] : runs)
      for (std::size_t record = first; record < end; ++record) selected.push_back(record);
    SelectRecords(selected);
  };
}

void form_REG::SelectRecords(const std::vector<std::size_t>& records) const {
  std::vector<int> rows;
  for (const std::size_t record : records)
    if (const int row = values_->RowOf(record); row >= 0) rows.push_back(row);
  if (rows.empty()) return;
  std::ranges::sort(rows);
  QItemSelection selection;
  for (std::size_t first = 0, next = 0; first < rows.size(); first = next) {
    for (next = first + 1; next < rows.size() && rows[next] == rows[next - 1] + 1;) ++next;
    selection.append(QItemSelectionRange(values_->index(rows[first], 0),
                                         values_->index(rows[next - 1], RegValueModel::ColumnCount - 1)));
  }
  GoToRow(rows.front());
  if (rows.size() > 1) LV->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void form_REG::SelectFirstKeyWithValues() {
  const RegNode* first = nullptr;
  WalkKeys(*document_.Root(), [&](const RegNode& node) {
    if (IsKey(node.Tag()) && !document_.ValuesOfPath(&node).empty()) first = &node;
    return first == nullptr;
  });
  if (first == nullptr || document_.Selected() != document_.Root()) return;
  TV->setCurrentIndex(keys_->IndexOf(first));
  TV->scrollTo(TV->currentIndex(), QAbstractItemView::PositionAtCenter);
}

}  // namespace tme
