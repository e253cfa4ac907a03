// The commands of form_INI that edit its document, and its clipboard.
#include <QClipboard>
#include <QGuiApplication>
#include <QTreeView>

#include "documents/ini/IniLine.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/ini/IniWriter.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "shell/WaitCursor.h"
#include "system/Dialogs.h"
#include "windows/ini/IniItemModel.h"
#include "windows/ini/IniNotice.h"
#include "windows/ini/KeyValueDialog.h"
#include "windows/ini/form_INI.h"
#include "windows/tree/DocumentTreeView.h"
#include "windows/tree/LinesClipboard.h"
#include "windows/tree/TreeSelection.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// By the rules the words in the value box alone tell.
form_ADE::Outcome OutcomeOf(const form_ADE& dialog, Holding holding) {
  return holding == Holding::Whole ? dialog.ByButton() : dialog.ByText();
}

/// In whole holding blanks are no key, since they would be read as none.
bool HasNoKey(const KeyValueDialog& dialog, Holding holding) {
  return (holding == Holding::Whole ? TrimBlanks(dialog.Key()) : dialog.Key()).isEmpty();
}

/// Lines end in CR LF, LF or CR; the last one may have no end.
QStringList LinesOf(QString text) {
  text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
  if (text.endsWith(u'\n')) text.chop(1);
  return text.split(u'\n');
}

}  // namespace

void form_INI::AddSection() {
  QString prompt = tr("Enter the name for the new section.");
  QString name;
  while (true) {
    name = global_.dialogs.InputBox(prompt, tr("Add New Section"));
    if (name.isEmpty()) return;
    if (tree_.IsUniqueSectionName(name.toStdString())) break;
    prompt = tr("This name already exists in the INI file.  Please enter a unique name for the new section.");
  }
  const IniTree::Step step(tree_, EditName::AddSection);
  IniNode* section = tree_.AddSection(name.toStdString());
  if (!section) return SayRefused();
  tree_.Select(section);
  TV->expand(model_->IndexOf(tree_.Root()));
  ShowSelection();
  SetChanged(true);
}

/// What the tree would not take, because its line would be read as something else.
QString form_INI::RefusedText() const {
  return tr(
      "The file cannot hold this.  Read again, it would be something else: a line that begins with "
      "\"[\" is a section, the name of a section ends at its \"]\", a key at its \"=\", and a line has no end within.");
}

void form_INI::SayRefused() {
  global_.dialogs.MsgBox(RefusedText(), MsgButtons::Ok, MsgIcon::Warning, tr("Whole File"));
}

void form_INI::AddValue() {
  IniNode* section = tree_.Selected();
  if (section->Tag() == IniTag::Value || section->Tag() == IniTag::Comments) section = section->Parent();
  const bool on_section = section->Tag() == IniTag::Section;
  if (!on_section && !IsWhole()) return;
  form_ADE dialog(this,
                  on_section
                      ? tr("Add Key/Value to section %1").arg(DisplayText(section->Text(), kMaxCharactersInMessage))
                      : tr("Add Key/Value before the first section"),
                  form_ADE::DeleteButton::Hidden);
  dialog.exec();
  if (HasNoKey(dialog, GetHolding()) || OutcomeOf(dialog, GetHolding()) == form_ADE::Outcome::Cancelled) return;
  const IniTree::Step step(tree_, EditName::AddEntry);
  IniNode* entry = tree_.AddEntry(section, dialog.Key().toStdString(), dialog.Value().toStdString());
  if (!entry) return SayRefused();
  tree_.Select(entry);
  TV->expand(model_->IndexOf(section));
  ShowSelection();
  SetChanged(true);
}

void form_INI::AddSectionToAll() {
  form_INIAddValue dialog(this);
  dialog.exec();
  if (HasNoKey(dialog, GetHolding())) return;
  const WaitCursor wait_cursor;
  if (!tree_.AddEntryToAllSections(dialog.Key().toStdString(), dialog.Value().toStdString())) return SayRefused();
  SetChanged(true);
}

void form_INI::cmd_Edit_Click() {
  IniNode* node = tree_.Selected();
  switch (node->Tag()) {
    case IniTag::Value:
      return EditEntry(node);
    case IniTag::Section:
      return EditText(node, tr("New name for this section"), tr("Section Name Change"));
    case IniTag::Comments:
      return EditText(node, tr("Alter the comment:"), tr("Comments"));
    case IniTag::OpenedFile:
      return;
  }
}

void form_INI::EditEntry(IniNode* node) {
  const QString section = DisplayText(node->Parent()->Text(), kMaxCharactersInMessage);
  form_ADE dialog(
      this,
      node->Parent() == tree_.Root() ? tr("Edit Line Before the First Section") : tr("Edit %1 Section").arg(section),
      form_ADE::DeleteButton::Shown);
  const QString old_key = EditableText(tree_.KeyOf(*node)), old_value = EditableText(tree_.ValueOf(*node));
  dialog.SetEntry(old_key, old_value);
  dialog.exec();
  const QString value = dialog.Value();
  // A file that is held whole may have keys without values.
  if (value.isEmpty() && (!IsWhole() || dialog.Key().isEmpty())) {
    if (global_.dialogs.MsgBox(tr("There is no value listed for the Key.  Delete this entry?"), MsgButtons::YesNo,
                               MsgIcon::Question, tr("Entry Delete")) != MsgAnswer::Yes)
      return;
    tree_.Remove(node);
    SetChanged(true);
    return;
  }
  const form_ADE::Outcome outcome = OutcomeOf(dialog, GetHolding());
  if (outcome == form_ADE::Outcome::Cancelled) return;
  if (outcome == form_ADE::Outcome::Deleted) return DeleteValue();
  // Quotes that are not shown may keep blanks.
  const QString new_key = TrimBlanks(dialog.Key()), new_value = IsWhole() ? value : TrimBlanks(value);
  // The same boxes again change nothing.
  if (new_key == old_key && new_value == old_value) return;
  const std::uint64_t before = tree_.Revision();
  if (!tree_.SetEntry(node, EditedBytes(new_key), EditedBytes(new_value))) return SayRefused();
  // Blanks around a value without quotes are no part of it.
  if (IsWhole() && tree_.Revision() == before) return;
  SetChanged(true);
  ShowSelection();
}

void form_INI::EditText(IniNode* node, const QString& prompt, const QString& title) {
  const QString old_text = EditableText(node->Text());
  const QString text = global_.dialogs.InputBox(prompt, title, old_text);
  if (text.isEmpty() || text == old_text) return;
  if (!tree_.SetText(node, EditedBytes(text))) return SayRefused();
  SetChanged(true);
  TV_NodeClick();
}

void form_INI::DeleteWhenConfirmed(IniNode* node, const QString& label) {
  const QString question =
      tr("Are you sure you want to delete %1 %2?").arg(label, DisplayText(node->Text(), kMaxCharactersInMessage));
  if (global_.dialogs.MsgBox(question, MsgButtons::YesNo, MsgIcon::Question, tr("Deletion Confirmation")) !=
      MsgAnswer::Yes)
    return;
  tree_.Remove(node);
  SetChanged(true);
}

void form_INI::DeleteValue() {
  IniNode* node = tree_.Selected();
  const bool comment = node->Tag() == IniTag::Comments;
  if (!comment && node->Tag() != IniTag::Value) return;
  DeleteWhenConfirmed(node, comment ? tr("Comment") : tr("Key / Value"));
}

void form_INI::DeleteSection() {
  IniNode* node = tree_.Selected();
  if (node->Tag() != IniTag::Section) {
    global_.dialogs.MsgBox(tr("You must first select (highlight) a section before you can delete it."), MsgButtons::Ok,
                           MsgIcon::None, tr("Section Deletion"));
    return;
  }
  DeleteWhenConfirmed(node, tr("Section"));
}

void form_INI::EditDelete() {
  const std::vector<IniNode*> nodes = SelectedForCommand();
  if (nodes.size() > 1) return DeleteManyWhenConfirmed(nodes);
  const IniTag tag = tree_.Selected()->Tag();
  if (tag == IniTag::OpenedFile || tag == IniTag::Section)
    DeleteSection();
  else
    DeleteValue();
}

void form_INI::DeleteAllNodes() {
  if (tree_.Selected()->Tag() != IniTag::Value) return;
  const WaitCursor wait_cursor;
  tree_.RemoveSelectedKey();
  SetChanged(true);
}

void form_INI::EditRename() {
  if (!IsWhole()) return cmd_Edit_Click();
  if (tree_.Selected() != tree_.Root()) TV->edit(TV->currentIndex());
}

RowEditor::Texts form_INI::RowTexts() {
  RowEditor::Texts texts;
  texts.shown = [](const QModelIndex& index) { return EditableText(IniItemModel::NodeOf(index)->Text()); };
  // Of an entry the key, which is its name.
  texts.selected = [this](const QModelIndex& index) {
    const IniNode& node = *IniItemModel::NodeOf(index);
    return EditableText(node.Tag() == IniTag::Value ? tree_.KeyOf(node) : node.Text()).size();
  };
  texts.take = [this](const QModelIndex& index, const QString& text) {
    if (!tree_.SetText(IniItemModel::NodeOf(index), EditedBytes(text))) return RefusedText();
    SetChanged(true);
    TV_NodeClick();
    return QString();
  };
  return texts;
}

void form_INI::CopyAsText() { CopyRowTexts(SelectedNodes<IniItemModel>(*TV->selectionModel()), *model_); }

void form_INI::ExpandAll() {
  const WaitCursor wait_cursor;
  tree_.SetAllExpanded(true);
  TV->expandAll();
}

void form_INI::CollapseAll() {
  // What is selected stays in sight.
  if (const IniNode* selected = tree_.Selected(); selected->Parent() && selected->Parent() != tree_.Root())
    tree_.Select(selected->Parent());
  ShowSelection();
  tree_.SetAllExpanded(false);
  TV->collapseAll();
  TV->expand(model_->IndexOf(tree_.Root()));
  ShowSelection();
}

void form_INI::SortByName() {
  if (!IsWhole()) return;
  const WaitCursor wait_cursor;
  tree_.Arrange(tree_.Arrangement() == IniArrangement::AsInFile ? IniArrangement::ByName : IniArrangement::AsInFile);
}

void form_INI::EditCopy() {
  QClipboard* clipboard = QGuiApplication::clipboard();
  clipboard->clear();
  const std::vector<IniNode*> nodes = SelectedForCommand();
  if (nodes.size() > 1) return CopyManyLines(LinesOfMany(nodes));
  const std::string bytes = ClipboardText(tree_, *tree_.Selected());
  if (bytes.empty()) return;
  if (IsWhole())
    CopyLines(bytes);
  else
    clipboard->setText(QString::fromStdString(bytes));
}

void form_INI::EditCut() {
  EditCopy();
  const IniTree::Step step(tree_, EditName::Cut);
  const std::vector<IniNode*> nodes = SelectedForCommand();
  if (nodes.size() > 1) return RemoveMany(nodes, IniComments::GoAlong);
  const IniTag tag = tree_.Selected()->Tag();
  // By the rules a comment is neither copied nor removed; intended.
  if (tag == IniTag::Value || tag == IniTag::Section || (tag == IniTag::Comments && IsWhole())) {
    tree_.RemoveWithComments(tree_.Selected());
    SetChanged(true);
  } else if (tag == IniTag::OpenedFile && (IsWhole() ? tree_.NodeCount() > 1 : tree_.SectionCount() > 0)) {
    tree_.Clear();
    SetChanged(true);
  }
}

void form_INI::EditPaste() {
  const QString text = QGuiApplication::clipboard()->text();
  if (text.isEmpty()) return;
  if (IsWhole()) {
    const WaitCursor wait_cursor;
    tree_.Paste(CopiedLines());
    SetChanged(true);
    return;
  }
  IniReadResult result;
  if (HasManyLines()) {
    PutManyLines(CopiedLines(), result);
    return;
  }
  const IniTree::Step step(tree_, EditName::Paste);
  result = Read(text.toStdString());
  // Whoever refused a section knows.
  if (result.end == IniReadEnd::DuplicateRefused) result.ended_at_line = 0;
  AddNotice(NoticeOf(result, tr("The pasted text")));
}

void form_INI::PasteNewSection() {
  const QStringList lines = LinesOf(QGuiApplication::clipboard()->text());
  if (KindOf(lines.first().toStdString()) == IniLine::Header) return;
  const QString name = global_.dialogs.InputBox(tr("Enter New Section Name"), tr("Paste as New Section"));
  if (name.isEmpty()) return;
  if (IsWhole()) {
    const std::string header = '[' + name.toStdString() + ']';
    if (SourceHeaderName(header) != name.toStdString()) return SayRefused();
    tree_.Paste(header + '\n' + CopiedLines());
  } else {
    QGuiApplication::clipboard()->setText(u'[' + name + u"]\r\n"_s + lines.join(u"\r\n"_s) + u"\r\n"_s);
    EditPaste();
  }
  SetChanged(true);
}

}  // namespace tme
