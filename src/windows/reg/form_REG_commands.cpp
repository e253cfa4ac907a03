// The commands of form_REG that edit its document.
#include <QLabel>

#include "documents/reg/RegLosses.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "system/Dialogs.h"
#include "windows/reg/RegKeyModel.h"
#include "windows/reg/RegValueModel.h"
#include "windows/reg/RegWholeCommands.h"
#include "windows/reg/form_AddHK.h"
#include "windows/reg/form_REG.h"
#include "windows/reg/form_REGEdit.h"
#include "windows/tree/DocumentTreeView.h"

using namespace Qt::StringLiterals;

namespace tme {

void form_REG::EditNewKey() {
  if (FocusMarker != Focus::TV) return;
  if (IsWhole()) return NewWholeKey();
  RegNode* node = document_.Selected();
  if (node->Tag() == RegTag::File) {
    QStringList present;
    for (int row = 0; row < node->ChildCount(); ++row) present += TextOf(node->Child(row)->Text());
    form_AddHK dialog(this, present);
    dialog.exec();
    const RegDocument::Step step(document_, EditName::AddKey);
    for (const QString& hive : dialog.Checked()) {
      document_.AddHiveNode(hive.toStdString());
      SetChanged(true);
    }
    TV->expand(keys_->IndexOf(node));
    return;
  }
  const QString name = global_.dialogs.InputBox(tr("Enter Desired Branch Name:"), tr("Add Branch / Key"));
  if (name.isEmpty()) return;
  const std::string text = TrimBlanks(name).toStdString();
  if (document_.FindChild(node, text)) return;
  const RegNode* branch = document_.AddBranch(node, text);
  TV->expand(keys_->IndexOf(node));
  TV->scrollTo(keys_->IndexOf(branch));
  TellWhatASaveMakesOf(*branch);
  SetChanged(true);
}

void form_REG::EditNewString() {
  if (IsWhole()) return NewWholeValue(reg_type::kString);
  AddValueOfType(RegType::String, tr("Add New StringValue"));
}

void form_REG::EditNewDword() {
  if (IsWhole()) return NewWholeValue(reg_type::kDword);
  AddValueOfType(RegType::Dword, tr("Add New DWORD Value"));
}

void form_REG::EditNewBinary() {
  if (IsWhole()) return NewWholeValue(reg_type::kBinary);
  AddValueOfType(RegType::Hex, tr("Add New Binary Value"));
}

void form_REG::AddValueOfType(RegType type, const QString& caption) {
  RegNode* node = document_.Selected();
  if (node->Tag() == RegTag::File) {
    global_.dialogs.MsgBox(tr("You can not add values to this section of the registry. You can only add values to the "
                              "hives or the branches."),
                           MsgButtons::Ok, MsgIcon::None, tr("Can't Add Value"));
    return;
  }
  form_REGEdit dialog(this, caption);
  if (type == RegType::Hex) dialog.SetDataFont(u"COURIER NEW"_s);
  dialog.exec();
  if (dialog.Data() == form_REGEdit::kCancelled || dialog.Name().isEmpty()) return;
  const std::string name = TrimBlanks(dialog.Name()).toStdString();
  if (document_.HasValueNamed(node, name)) {
    global_.dialogs.MsgBox(tr("This value already exists in this key.  Please edit the existing value instead."),
                           MsgButtons::Ok, MsgIcon::None, tr("Already Exists"));
    return;
  }
  values_->Append(document_.AddValueRecord(node, type, name, dialog.Data().toStdString()));
  LV->scrollToBottom();
  TellWhatASaveMakesOf(*node);
  SetChanged(true);
}

void form_REG::EditModify() {
  if (IsWhole()) return RunWhole(&RegWholeCommands::Modify);
  if (FocusMarker != Focus::LV || SelectedRow() < 0) return;
  const std::size_t index = values_->RecordOf(LV->currentIndex());
  const RegValueRecord& record = document_.Values()[index];
  const std::array<QString, kRegTypes.size()> captions{tr("Edit String Value"), tr("Edit String Value"),
                                                       tr("Edit DWORD Value"), tr("Edit Binary Value")};
  form_REGEdit dialog(this, captions[static_cast<std::size_t>(record.type)]);
  if (record.type == RegType::Hex) dialog.SetDataFont(u"COURIER"_s);
  const QString before = TextOf(record.data);
  dialog.SetValue(TextOf(record.name), before);
  dialog.exec();
  if (dialog.Data() == form_REGEdit::kCancelled) return;
  // The same text again changes nothing, bytes that are not text included.
  if (dialog.Data() != before) document_.SetValueData(index, dialog.Data().toStdString());
  if (record.owner->Tag() != RegTag::Branch) TellWhatASaveMakesOf(*record.owner);
  SetChanged(true);
}

void form_REG::TellWhatASaveMakesOf(const RegNode& node) {
  if (document_.SharesItsName(&node))
    AddNotice(tr("Other keys are named \"%1\" too: saving writes the values of all of them under each.")
                  .arg(DisplayText(node.Text(), kMaxCharactersInMessage)));
  if (node.Tag() != RegTag::Branch && !document_.ValuesOfPath(&node).empty())
    AddNotice(tr("What stands directly under the file or a hive is not saved."));
  const RegLosses losses = LossesOf(document_, RegLayout::Expanded);
  if (losses.keys_of_title + losses.values_of_title > 0)
    AddNotice(tr("A key that has the name of the tree's root is not saved, nor are its values."));
}

void form_REG::EditDelete() {
  if (IsWhole()) return RunWhole(&RegWholeCommands::Delete);
  const bool in_list = FocusMarker == Focus::LV;
  if (in_list && SelectedRow() < 0) return;
  const RegTarget target = Target();
  if (std::max(target.records.size(), target.nodes.size()) > 1) {
    if (whole_->ConfirmDeletion(target)) DeleteMany(target);
    return;
  }
  const QString what = in_list ? tr("this value?")
                               : tr("this branch, all branches under it, and all values associated with this branch "
                                    "and all branches under it?");
  if (global_.dialogs.MsgBox(tr("Are you sure you want to permanently delete %1").arg(what), MsgButtons::YesNo,
                             MsgIcon::Question, tr("Deletion Confirmation")) != MsgAnswer::Yes)
    return;
  if (in_list) {
    const int row = SelectedRow();
    document_.DeleteValue(values_->RecordOf(LV->currentIndex()));
    // The record comes back as an empty row when the key is shown again; intended.
    values_->TakeRow(row);
  } else {
    if (document_.Selected()->Tag() == RegTag::File) return;
    document_.RemoveKey(document_.Selected());
  }
  SetChanged(true);
}

void form_REG::EditRename() {
  if (IsWhole()) return RenameInRow();
  RegNode* node = document_.Selected();
  const QString old_name = TextOf(node->Text());
  const QString name = global_.dialogs.InputBox(tr("Rename this Key"), tr("Branch Rename"), old_name);
  if (name.isEmpty()) return;
  if (name != old_name) document_.SetText(node, name.toStdString());
  ShowKey();
  TellWhatASaveMakesOf(*node);
  SetChanged(true);
}

}  // namespace tme
