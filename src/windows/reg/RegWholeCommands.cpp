#include "windows/reg/RegWholeCommands.h"

#include <QLocale>
#include <algorithm>

#include "documents/reg/RegNames.h"
#include "shell/DisplayText.h"
#include "system/Dialogs.h"
#include "windows/reg/RegTypeChange.h"
#include "windows/reg/RegValueText.h"
#include "windows/reg/form_AddHK.h"
#include "windows/reg/form_REGName.h"
#include "windows/reg/form_REGValue.h"

using namespace Qt::StringLiterals;

namespace tme {

bool RegWholeCommands::CanAddValue() const { return IsKey(document_.Selected()->Tag()); }

bool RegWholeCommands::CanRename(const RegTarget& target) const {
  if (target.is_in_list) return target.records.size() == 1 && document_.Version() != RegVersion::Regedit;
  return document_.Selected()->Tag() != RegTag::File;
}

bool RegWholeCommands::AskWhetherTo(const QString& question, const QString& title) {
  return dialogs_.MsgBox(question, MsgButtons::YesNo, MsgIcon::Question, title) == MsgAnswer::Yes;
}

QString RegWholeCommands::ReasonAgainstKey(const RegNode* parent, const QString& name, const RegNode* renamed) const {
  if (name.contains(u'\\')) return tr("The name of a key has no backslash.");
  const RegNode* same = document_.FindChild(parent, EditedBytes(name));
  return same != nullptr && same != renamed ? tr("There is a key of this name already.") : QString();
}

QString RegWholeCommands::ReasonAgainstValue(const RegNode* key, const QString& name,
                                             const RegValueRecord* renamed) const {
  const std::string text = EditedBytes(name);
  bool is_there = false;
  document_.ForEachValueOf(key, [&](const RegValueRecord& record) {
    is_there = is_there || (!record.deleted && &record != renamed && SameRegName(record.name, text));
  });
  if (!is_there) return {};
  return name.isEmpty() ? tr("This key has its default value already.")
                        : tr("This key has a value of this name already.");
}

QString RegWholeCommands::NewValueName(const RegNode* key) const {
  if (document_.Version() == RegVersion::Regedit) return {};
  for (int number = 1;; ++number)
    if (QString name = tr("New Value #%1").arg(number); ReasonAgainstValue(key, name, nullptr).isEmpty()) return name;
}

bool RegWholeCommands::NewKey() {
  RegNode* parent = document_.Selected();
  if (!IsKey(parent->Tag())) return false;
  if (parent->Tag() == RegTag::File) {
    QStringList present;
    for (const std::string_view hive : HiveNames)
      if (document_.FindChild(parent, hive) != nullptr) present += TextOf(hive);
    form_AddHK dialog(&window_, present);
    dialog.exec();
    const RegDocument::Step step(document_, EditName::AddKey);
    for (const QString& hive : dialog.Checked()) document_.AddKey(parent, hive.toStdString());
    return !dialog.Checked().isEmpty();
  }
  const auto check = [this, parent](const QString& name) { return ReasonAgainstKey(parent, name, nullptr); };
  form_REGName dialog(&window_, tr("Add Key"), tr("Key &name:"), {}, check);
  if (dialog.exec() != QDialog::Accepted) return false;
  document_.AddKey(parent, EditedBytes(dialog.Text()));
  return true;
}

bool RegWholeCommands::NewValue(std::uint32_t type) {
  RegNode* key = document_.Selected();
  if (key->Tag() == RegTag::File) {
    dialogs_.MsgBox(tr("You can not add values to this section of the registry. You can only add values to the hives "
                       "or the branches."),
                    MsgButtons::Ok, MsgIcon::None, tr("Can't Add Value"));
    return false;
  }
  if (!IsKey(key->Tag())) return false;
  const RegCoding coding = CodingOf(document_);
  if (coding.version == RegVersion::Regedit) type = reg_type::kString;
  form_REGValue dialog(&window_, tr("Add Value"), coding);
  dialog.SetValue(NewValueName(key), EmptyRegData(type));
  dialog.SetNameCheck([this, key](const QString& name) { return ReasonAgainstValue(key, name, nullptr); });
  dialog.EditName();
  if (dialog.exec() != QDialog::Accepted) return false;
  const std::optional<std::string> assignment = EncodeAssignment(dialog.Data(), coding);
  if (assignment) document_.AddValue(key, EditedBytes(dialog.Name()), *assignment);
  return assignment.has_value();
}

bool RegWholeCommands::Modify(const RegTarget& target) {
  if (target.is_in_list) return target.records.size() == 1 && ModifyValue(target.records.front());
  RegNode* node = document_.Selected();
  return node->Tag() == RegTag::Comment && ModifyComment(node);
}

bool RegWholeCommands::ModifyValue(std::size_t index) {
  const RegCoding coding = CodingOf(document_);
  const RegValueRecord& record = document_.Values()[index];
  // Null for a deletion.
  const std::optional<RegData> before = DecodeAssignment(record.data, coding);
  form_REGValue dialog(&window_, tr("Edit Value"), coding);
  before ? dialog.SetValue(EditableText(record.name), *before) : dialog.SetDeletion(EditableText(record.name));
  const std::string name_before(record.name);
  const RegNode* key = record.owner;
  dialog.SetNameCheck([this, key, index](const QString& name) {
    const RegValueRecord& renamed = document_.Values()[index];
    // What stands twice in the file may stay so.
    return EditableText(renamed.name) == name ? QString() : ReasonAgainstValue(key, name, &renamed);
  });
  if (dialog.exec() != QDialog::Accepted) return false;
  const std::uint64_t revision = document_.Revision();
  const RegDocument::Step step(document_, EditName::Edit);
  if (dialog.Name() != EditableText(name_before)) document_.RenameValue(index, EditedBytes(dialog.Name()));
  // The same data again change nothing, however the file writes them.
  const std::optional<RegData> after = dialog.IsDeletion() ? std::nullopt : std::optional(dialog.Data());
  if (after && after != before)
    if (const auto assignment = EncodeAssignment(*after, coding)) document_.SetAssignment(index, *assignment);
  return document_.Revision() != revision;
}

QString RegWholeCommands::ReasonAgainstComment(const QString& text) {
  return text.startsWith(u';') ? QString() : tr("A comment begins with a semicolon.");
}

bool RegWholeCommands::ModifyComment(RegNode* comment) {
  const QString before = EditableText(comment->Text());
  form_REGName dialog(&window_, tr("Edit Comment"), tr("&Comment:"), before, ReasonAgainstComment);
  if (dialog.exec() != QDialog::Accepted || dialog.Text() == before) return false;
  document_.SetComment(comment, EditedBytes(dialog.Text()));
  return true;
}

QString RegWholeCommands::LabelOf(const RegTarget& target) const {
  if (target.is_in_list) return Counted(target.records.size(), tr("this value?"), tr("these %1 values?"));
  if (target.nodes.size() > 1)
    return Counted(target.nodes.size(), QString(),
                   tr("these %1 items, all branches under them, and all values associated with them?"));
  switch (document_.Selected()->Tag()) {
    case RegTag::Comment:
      return tr("this comment?");
    case RegTag::Deletion:
      return tr("this deletion?");
    default:
      return tr(
          "this branch, all branches under it, and all values associated with this branch and all branches under "
          "it?");
  }
}

bool RegWholeCommands::ConfirmDeletion(const RegTarget& target) {
  return AskWhetherTo(tr("Are you sure you want to permanently delete %1").arg(LabelOf(target)),
                      tr("Deletion Confirmation"));
}

bool RegWholeCommands::Delete(const RegTarget& target) {
  RegNode* node = document_.Selected();
  const bool has_any = target.is_in_list ? !target.records.empty() : node->Tag() != RegTag::File;
  if (!has_any || !ConfirmDeletion(target)) return false;
  const RegDocument::Step step(document_, target.is_in_list ? EditName::DeleteValue : EditName::DeleteKey);
  for (const std::size_t record : target.records) document_.DeleteValue(record);
  if (target.nodes.size() > 1)
    document_.RemoveKeys(target.nodes);
  else if (!target.is_in_list)
    document_.RemoveKey(node);
  return true;
}

bool RegWholeCommands::WriteDeletion(const RegTarget& target) {
  RegNode* node = document_.Selected();
  const bool is_key = node->Tag() == RegTag::Hive || node->Tag() == RegTag::Branch;
  if (!CanHaveDeletions() || (target.is_in_list ? target.records.empty() : !is_key)) return false;
  const RegTarget one{.records = target.records, .is_in_list = target.is_in_list};
  if (!AskWhetherTo(tr("Are you sure you want to put a deletion in place of %1").arg(LabelOf(one)),
                    tr("Write a Deletion")))
    return false;
  const RegDocument::Step step(document_, EditName::WriteDeletion);
  for (const std::size_t record : target.records) document_.WriteDeletion(record);
  if (!target.is_in_list) document_.WriteDeletion(node);
  return true;
}

QString RegWholeCommands::Rename(RegNode* node, const QString& name) {
  if (node->Tag() == RegTag::Comment) {
    const QString reason = ReasonAgainstComment(name);
    if (reason.isEmpty()) document_.SetComment(node, EditedBytes(name));
    return reason;
  }
  if (name.isEmpty()) return tr("A key has a name.");
  // Next to a deletion a key of the same name may stand.
  const RegNode* may_have_it = IsKey(node->Tag()) ? node : document_.FindChild(node->Parent(), EditedBytes(name));
  const QString reason = ReasonAgainstKey(node->Parent(), name, may_have_it);
  if (reason.isEmpty()) document_.RenameKey(node, EditedBytes(name));
  return reason;
}

QString RegWholeCommands::Rename(std::size_t index, const QString& name) {
  const RegValueRecord& record = document_.Values()[index];
  const QString reason = ReasonAgainstValue(record.owner, name, &record);
  if (reason.isEmpty()) document_.RenameValue(index, EditedBytes(name));
  return reason;
}

}  // namespace tme
