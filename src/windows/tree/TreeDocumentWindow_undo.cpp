// Undo and redo in the window of a tree.
#include <QAbstractItemView>
#include <QScrollBar>
#include <array>
#include <utility>

#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/WaitCursor.h"
#include "windows/tree/TreeDocumentWindow.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

struct NameText {
  EditName name;
  const char* text;
};
constexpr std::array kNameTexts{
    NameText{EditName::Edit, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Edit")},
    NameText{EditName::AddSection, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Add Section")},
    NameText{EditName::AddEntry, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Add Entry")},
    NameText{EditName::AddToAllSections, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Add to All Sections")},
    NameText{EditName::AddKey, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Add Key")},
    NameText{EditName::AddValue, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Add Value")},
    NameText{EditName::Delete, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Delete")},
    NameText{EditName::DeleteSection, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Delete Section")},
    NameText{EditName::DeleteEntry, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Delete Entry")},
    NameText{EditName::DeleteFromAllSections, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Delete from All Sections")},
    NameText{EditName::DeleteKey, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Delete Key")},
    NameText{EditName::DeleteValue, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Delete Value")},
    NameText{EditName::WriteDeletion, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Write a Deletion")},
    NameText{EditName::Rename, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Rename")},
    NameText{EditName::Cut, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Cut")},
    NameText{EditName::Paste, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Paste")},
    NameText{EditName::Move, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Move")},
    NameText{EditName::Copy, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Copy")},
    NameText{EditName::Replace, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Replace")},
    NameText{EditName::EditSource, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Edit Source")},
    NameText{EditName::Convert, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Convert")},
    NameText{EditName::ChangeEncoding, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Change Encoding")},
    NameText{EditName::ChangeLineEnds, QT_TRANSLATE_NOOP("TreeDocumentWindow", "Change Line Ends")},
};

const char* TextOf(EditName name) {
  for (const NameText& row : kNameTexts)
    if (row.name == name) return row.text;
  return kNameTexts.front().text;
}

}  // namespace

void TreeDocumentWindow::FollowSteps(QAbstractItemView& view) {
  stepped_view_ = &view;
  Document().SetStepObserver(this);
}

void TreeDocumentWindow::AddFormatStep(std::function<void()> undo, std::function<void()> redo) {
  Document().AddOutsideStep(EditName::ChangeEncoding, std::move(undo), std::move(redo));
  SetChanged(true);
}

std::function<void()> TreeDocumentWindow::FormatAgain() {
  return [this, format = file_.Format()] { file_.SetFormat(format); };
}

void TreeDocumentWindow::EditUndo() {
  CommitTyping();
  const WaitCursor wait_cursor;
  NotePosition();
  Document().Undo();
  ShowPosition();
}

void TreeDocumentWindow::EditRedo() {
  CommitTyping();
  const WaitCursor wait_cursor;
  NotePosition();
  Document().Redo();
  ShowPosition();
}

void TreeDocumentWindow::NotePosition() {
  const std::size_t at = Document().EditPosition();
  if (positions_.size() <= at) positions_.resize(at + 1);
  positions_[at] = {file_.IsChanged(), file_.FileRevision(), stepped_view_->verticalScrollBar()->value(),
                    SelectionAgain(), FormatAgain()};
}

void TreeDocumentWindow::ShowPosition() {
  const std::size_t at = Document().EditPosition();
  if (at >= positions_.size()) return SetChanged(IsModified());
  const Position& position = positions_[at];
  SetChanged(position.file_revision == file_.FileRevision() ? position.is_changed : IsModified());
  // A save in between may have given the file another encoding.
  position.format_again();
  StateChanged();
  if (position.select_again) position.select_again();
  // Once the rows are laid out, and what is selected stays in sight all the same.
  stepped_view_->scrollTo(stepped_view_->currentIndex());
  stepped_view_->verticalScrollBar()->setValue(position.scrolled);
  stepped_view_->scrollTo(stepped_view_->currentIndex());
}

void TreeDocumentWindow::ShowSteps() {
  if (global_.area.ActiveDocument() != this) return;
  const EditableDocument& document = Document();
  const bool is_registry = Kind() == DocumentKind::Reg;
  const auto show = [this](const char* item, bool can, const QString& named, const QString& plain) {
    global_.menus.SetAvailable(item, can);
    global_.menus.SetCaption(item, can ? named : plain);
  };
  const auto name = [](bool can, EditName (EditableDocument::*of)() const, const EditableDocument& steps) {
    return can ? tr(TextOf((steps.*of)())) : QString();
  };
  show(is_registry ? "menu_EditRegUndo" : "menu_EditUndo", document.CanUndo(),
       tr("&Undo %1").arg(name(document.CanUndo(), &EditableDocument::UndoName, document)), tr("&Undo"));
  show(is_registry ? "menu_EditRegRedo" : "menu_EditRedo", document.CanRedo(),
       tr("R&edo %1").arg(name(document.CanRedo(), &EditableDocument::RedoName, document)), tr("R&edo"));
}

}  // namespace tme
