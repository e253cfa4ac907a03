// What form_REG does when its document is held whole.
#include <algorithm>
#include <span>

#include "documents/reg/RegWholeReader.h"
#include "documents/reg/RegWholeWriter.h"
#include "files/EncodingEvidence.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/LongWork.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "system/Dialogs.h"
#include "windows/reg/RegClipboard.h"
#include "windows/reg/RegKeyModel.h"
#include "windows/reg/RegValueModel.h"
#include "windows/reg/RegValueText.h"
#include "windows/reg/RegWholeCommands.h"
#include "windows/reg/form_REG.h"
#include "windows/tree/DocumentTreeView.h"
#include "windows/tree/LinesClipboard.h"
#include "windows/tree/TreeSelection.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Items that whole holding adds to the menus.
constexpr const char* kWholeItems[] = {
    "menu_EditNewExpandString", "menu_EditNewMultiString", "menu_EditNewQword",
    "menu_EditRegClipboard",    "menu_EditRegCut",         "menu_EditRegCopy",
    "menu_EditRegPaste",        "menu_EditWriteDeletion",  "menu_ViewShowComments",
};

}  // namespace

form_REG::ReadEnd form_REG::ReadWhole(std::string text) {
  {
    LongWork work(&global_.frame, tr("Opening %1").arg(file_.Title()));
    RegWholeOptions options;
    if (TraitsOf(file_.Format().encoding).utf16_order) options.unsaid = RegVersion::Version5;
    options.progress = [this, &work](std::uint64_t done, std::uint64_t all) {
      return work.GoOn(done, all) || !MayStopReading();
    };
    // Nothing of a document that is half read is painted.
    TV->hide();
    values_->ShowKey(nullptr);
    const RegWholeResult result = ReadWholeReg(document_, std::move(text), options);
    TV->show();
    if (!IsOpen() || result.cancelled) return ReadEnd::Refused;
    MarkRead(QString());
    if (result.not_understood > 0)
      AddNotice(Counted(result.not_understood, tr("1 line is not understood and stays as it is: line %2."),
                        tr("%1 lines are not understood and stay as they are. The first one is line %2."))
                    .replace(u"%2"_s, QLocale().toString(static_cast<qulonglong>(result.first_not_understood))),
                HoldingButton(), NoticeLife::Document);
  }
  EndProgress();
  RestoreView();
  TV->setFocus();
  return ReadEnd::Taken;
}

void form_REG::UpdateWholeCommands() {
  GlobalMenus& menus = global_.menus;
  for (const char* item : kWholeItems) menus.SetHidden(QLatin1StringView(item), !IsWhole());
  if (!IsWhole()) return;
  const bool is_in_list = FocusMarker == Focus::LV;
  const int rows = is_in_list ? SelectedRowCount() : 0;
  const RegTag tag = document_.Selected()->Tag();
  const bool has_any = is_in_list ? rows > 0 : tag != RegTag::File;
  const bool is_key = tag == RegTag::Hive || tag == RegTag::Branch;
  menus.SetAvailable("menu_EditModify", is_in_list ? rows == 1 : tag == RegTag::Comment);
  menus.SetAvailable("menu_EditNewKey", !is_in_list && whole_->CanAddValue());
  for (const char* item : {"menu_EditNewString", "Menu_EditNewDword", "menu_EditNewBinary", "menu_EditNewExpandString",
                           "menu_EditNewMultiString", "menu_EditNewQword"})
    menus.SetAvailable(item, whole_->CanAddValue());
  menus.SetAvailable("menu_EditRegCut", has_any);
  menus.SetAvailable("menu_EditRegCopy", has_any || !is_in_list);
  menus.SetAvailable("menu_EditRegPaste", whole_->CanPaste());
  menus.SetAvailable("menu_EditDelete", has_any);
  menus.SetAvailable("menu_EditWriteDeletion", whole_->CanHaveDeletions() && (is_in_list ? has_any : is_key));
  menus.SetAvailable("menu_EditRename", is_in_list ? rows == 1 && whole_->CanHaveDeletions() : tag != RegTag::File);
  menus.SetChecked("menu_ViewShowComments", document_.Comments() == RegComments::Shown);
}

int form_REG::SelectedRowCount() const {
  // By ranges: a list of a million rows may be selected.
  int count = 0;
  for (const QItemSelectionRange& range : LV->selectionModel()->selection()) count += range.height();
  return count;
}

RegTarget form_REG::Target() { return TargetIn(FocusMarker); }

RegTarget form_REG::TargetIn(Focus focus) {
  RegTarget target;
  target.is_in_list = focus == Focus::LV;
  if (!target.is_in_list) {
    target.nodes = SelectedTops<RegKeyModel>(*TV->selectionModel());
    // Commands on one node are on the document's selected one.
    if (target.nodes.size() == 1 && target.nodes.front() != document_.Selected())
      TV->setCurrentIndex(keys_->IndexOf(target.nodes.front()));
    return target;
  }
  QModelIndexList rows = LV->selectionModel()->selectedRows();
  std::ranges::sort(rows, {}, &QModelIndex::row);
  for (const QModelIndex& row : rows) target.records.push_back(values_->RecordOf(row));
  return target;
}

void form_REG::RunWhole(bool (RegWholeCommands::*command)(const RegTarget&)) {
  const RegTarget target = Target();
  if ((whole_.get()->*command)(target)) FollowEdit(target);
}

void form_REG::FollowEdit(const RegTarget& target) {
  const bool are_gone = !target.records.empty() && document_.Values()[target.records.front()].deleted;
  if (are_gone) {
    const int row = values_->RowOf(target.records.front());
    // A list of a million rows is filled sooner than many of them are taken away one by one.
    if (target.records.size() == 1)
      values_->TakeRow(row);
    else
      values_->ShowKey(document_.Selected());
    GoToRow(row);
  }
  ShowPath();
  SetFocusMarker(target.is_in_list ? Focus::LV : Focus::TV);
  SetChanged(true);
}

void form_REG::GoToRow(int row) const {
  // Ctrl may be held for the shortcut of a command.
  LV->selectionModel()->setCurrentIndex(values_->index(std::min(row, values_->rowCount() - 1), 0),
                                        QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  LV->scrollTo(LV->currentIndex());
}

void form_REG::NewWholeKey() {
  const RegNode* parent = document_.Selected();
  if (!whole_->NewKey()) return;
  TV->expand(keys_->IndexOf(parent));
  TV->scrollTo(keys_->IndexOf(parent->Child(parent->ChildCount() - 1)));
  FollowEdit({});
}

void form_REG::NewWholeValue(std::uint32_t type) {
  const Focus focus = FocusMarker;
  if (!whole_->NewValue(type)) return;
  values_->Append(document_.Values().size() - 1);
  FollowEdit({.records = {}, .is_in_list = focus == Focus::LV});
  GoToRow(values_->rowCount() - 1);
}

void form_REG::EditNewExpandString() { NewWholeValue(reg_type::kExpandString); }

void form_REG::EditNewMultiString() { NewWholeValue(reg_type::kMultiString); }

void form_REG::EditNewQword() { NewWholeValue(reg_type::kQword); }

void form_REG::EditWriteDeletion() {
  if (IsWhole()) RunWhole(&RegWholeCommands::WriteDeletion);
}

void form_REG::EditCopy() {
  const RegTarget target = Target();
  if (!IsWhole() || (target.is_in_list && target.records.empty())) return;
  CopyLines(target.is_in_list || target.nodes.size() > 1 ? LinesOf(target)
                                                         : ClipboardText(document_, *document_.Selected()));
}

std::string form_REG::LinesOf(const RegTarget& target) const {
  if (!IsWhole()) return {};
  if (target.is_in_list) return ClipboardText(document_, std::span<const std::size_t>(target.records));
  return ClipboardText(document_, std::span<RegNode* const>(target.nodes));
}

void form_REG::EditCut() {
  const RegTarget target = Target();
  const bool has_any = target.is_in_list ? !target.records.empty() : document_.Selected()->Tag() != RegTag::File;
  if (!IsWhole() || !has_any) return;
  EditCopy();
  RemoveTarget(target, EditName::Cut);
}

void form_REG::EditPaste() {
  if (!IsWhole() || !whole_->CanPaste()) return;
  const std::string text = CopiedLines();
  const std::uint64_t revision = document_.Revision();
  RegNode* node = document_.Selected();
  const int row_count = values_->rowCount();
  const std::size_t record_count = document_.Values().size();
  const Focus focus = FocusMarker;
  const RegPasteResult result = PasteLines(node, text);
  if (document_.Revision() == revision) {
    if (!text.empty() && result.left_out == 0) AddNotice(tr("The clipboard holds no keys and no values."));
    return;
  }
  TV->expand(keys_->IndexOf(node));
  FollowEdit({.records = {}, .is_in_list = focus == Focus::LV});
  if (values_->rowCount() > row_count) GoToRow(std::max(values_->RowOf(record_count), 0));
}

RegPasteResult form_REG::PasteLines(RegNode* key, const std::string& lines) {
  RegPasteResult result;
  {
    const WaitCursor wait_cursor;
    result = document_.Paste(key, WithFreeNames(document_, key, lines), CodingOf(document_));
  }
  if (result.not_understood > 0)
    AddNotice(Counted(result.not_understood, tr("1 line that came in is not understood and stays as it is."),
                      tr("%1 lines that came in are not understood and stay as they are.")));
  if (result.keys + result.values == 0 && result.comments > 0)
    AddNotice(Counted(result.comments, tr("1 comment came in. View, Show Comments shows it."),
                      tr("%1 comments came in. View, Show Comments shows them.")));
  if (result.left_out > 0)
    AddNotice(
        key->Tag() == RegTag::File
            ? tr("Values of the clipboard that belong to no key were not taken: select the key that is to have them.")
            : Counted(result.left_out, tr("1 value was not taken, since this kind of file cannot say it."),
                      tr("%1 values were not taken, since this kind of file cannot say them.")));
  return result;
}

void form_REG::ShowComments() {
  if (!IsWhole()) return;
  const bool is_shown = document_.Comments() == RegComments::Shown;
  document_.ShowComments(is_shown ? RegComments::Hidden : RegComments::Shown);
  UpdateCommands();
}

}  // namespace tme
