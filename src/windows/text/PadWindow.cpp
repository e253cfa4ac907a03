#include "windows/text/PadWindow.h"

#include <QAbstractScrollArea>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDateTime>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLocale>

#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/PlainText.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "system/CommonDialog.h"
#include "system/Twips.h"
#include "windows/text/PadKeys.h"
#include "windows/text/form_SR.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr const char* kWordWrapItem = "menu_EditWordWrap";
/// Twips between the place where lines wrap and the right edge of the editing area.
constexpr int kWrapMargin = 500;

bool IsTab(const QKeyEvent& key) { return key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab; }

/// Menus have these keys too; whoever gets the key first, the command runs once.
bool IsClipboardKey(const QKeyEvent& key) {
  return key.matches(QKeySequence::Cut) || key.matches(QKeySequence::Copy) || key.matches(QKeySequence::Paste);
}

}  // namespace

void PadWindow::DocumentCloses() {
  if (form_SR* search = form_SR::Opened(global_); search && search->IsBoundTo(*this)) search->cmd_Cance_Click();
  title_at_save_as_.clear();
}

void PadWindow::PathNotChosen() {
  if (global_.common_dialog.file_name.isEmpty()) return;
  file_.SetTitle(title_at_save_as_);
  const bool has_title = !title_at_save_as_.isEmpty();
  setWindowTitle(has_title ? CaptionText(Caption()) : QString());
}

PadWindow::SaveOutcome PadWindow::Save(const SaveRequest& request) {
  if (request.path == SaveRequest::Path::AskedAlways) title_at_save_as_ = file_.Title();
  return DocumentWindow::Save(request);
}

void PadWindow::PrintDoc(QPrinter& printer) {
  const WaitCursor wait_cursor;
  EditingArea().Print(printer);
}

void PadWindow::EditUndo() {
  EditingArea().Undo();
  ShowUndoState();
}

void PadWindow::EditRedo() {
  EditingArea().Redo();
  ShowUndoState();
}

void PadWindow::ShowUndoState() {
  if (global_.area.ActiveDocument() != this || !IsOpen()) return;
  global_.menus.SetAvailable("menu_EditUndo", EditingArea().CanUndo());
  global_.menus.SetAvailable("menu_EditRedo", EditingArea().CanRedo());
}

void PadWindow::EditCut() {
  EditCopy();
  EditDelete();
}

void PadWindow::EditCopy() {
  QClipboard* clipboard = QGuiApplication::clipboard();
  clipboard->clear();
  const QString text = EditingArea().SelectedText();
  if (!text.isEmpty()) clipboard->setText(text);
}

void PadWindow::EditPaste() {
  const QString text = QGuiApplication::clipboard()->text();
  if (!text.isEmpty()) EditingArea().ReplaceSelection(text);
}

void PadWindow::EditSelectAll() { EditingArea().Select(0, EditingArea().End()); }

void PadWindow::EditDelete() { EditingArea().ReplaceSelection({}); }

void PadWindow::EditTimeDate() {
  const QLocale locale = QLocale::system();
  const QDateTime now = QDateTime::currentDateTime();
  EditingArea().ReplaceSelection(locale.toString(now.time(), QLocale::ShortFormat) + u" - "_s +
                                 locale.toString(now.date(), QLocale::ShortFormat));
}

void PadWindow::EditWW() {
  global_.settings.SetFlag(&Settings::word_wrap, !global_.settings.word_wrap, global_.registry);
  global_.menus.SetChecked(kWordWrapItem, global_.settings.word_wrap);
  ApplyWordWrap();
  EditingArea().Widget().update();
}

void PadWindow::UpdateCommands() {
  global_.menus.SetChecked(kWordWrapItem, global_.settings.word_wrap);  // off too, it looks like a check mark
  ApplyWordWrap();
  ShowUndoState();
}

void PadWindow::ApplyWordWrap() {
  Pad& pad = EditingArea();
  const bool wraps = global_.settings.word_wrap;
  pad.SetRightMargin(wraps ? PixelsToTwips(pad.Widget().width(), logicalDpiX()) - kWrapMargin : Pad::kNoWrap);
}

void PadWindow::SearchFind() { form_SR::Open(global_, *this, SearchMode::Find); }

void PadWindow::SearchReplace() { form_SR::Open(global_, *this, SearchMode::Replace); }

void PadWindow::SearchForLast() { form_SR::Open(global_, *this, SearchMode::Again); }

void PadWindow::WatchPad(QWidget& client) {
  client_ = &client;
  client.installEventFilter(this);
  QWidget& pad = EditingArea().Widget();
  pad.installEventFilter(this);
  if (auto* area = qobject_cast<QAbstractScrollArea*>(&pad)) area->viewport()->installEventFilter(this);
  setFocusProxy(&pad);
}

bool PadWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == client_) {
    if (event->type() == QEvent::Resize) ResizeForm();
    return DocumentWindow::eventFilter(watched, event);
  }
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      if (IsClipboardKey(*static_cast<QKeyEvent*>(event))) event->accept();
      return false;
    case QEvent::KeyPress:
      return PadKeyPressed(*static_cast<QKeyEvent*>(event));
    case QEvent::FocusIn:
      CloseForeignSearch();
      return false;
    case QEvent::MouseButtonRelease: {
      const auto& mouse = *static_cast<QMouseEvent*>(event);
      if (mouse.button() == Qt::RightButton) global_.frame.PopUpEditMenu(mouse.globalPosition().toPoint());
      return false;
    }
    case QEvent::ContextMenu: {
      const auto& menu = *static_cast<QContextMenuEvent*>(event);
      if (menu.reason() == QContextMenuEvent::Keyboard) global_.frame.PopUpEditMenu(menu.globalPos());
      return true;
    }
    default:
      return DocumentWindow::eventFilter(watched, event);
  }
}

bool PadWindow::PadKeyPressed(const QKeyEvent& key) {
  const bool control = key.modifiers().testFlag(Qt::ControlModifier) && !TypesText(key);
  const bool alt_alone = (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == Qt::AltModifier;
  // One that no menu took must not replace the selection with its letter.
  const bool for_a_menu = alt_alone && !key.text().isEmpty() && key.text().at(0).isPrint();
  if ((control && key.key() == Qt::Key_V) || key.matches(QKeySequence::Paste)) {
    EditPaste();
  } else if ((control && key.key() == Qt::Key_C) || key.matches(QKeySequence::Copy)) {
    EditCopy();
  } else if ((control && key.key() == Qt::Key_X) || key.matches(QKeySequence::Cut)) {
    EditCut();
  } else if (for_a_menu || SearchKeyPressed(key)) {
    return true;
  } else if (key.key() == Qt::Key_Backtab && !control) {
    EditingArea().ReplaceSelection(u"\t"_s);
  } else {
    return false;
  }
  return true;
}

bool PadWindow::SearchKeyPressed(const QKeyEvent& key) {
  form_SR* dialog = form_SR::Opened(global_);
  if (!dialog || !dialog->isVisible()) return false;
  const bool shift_held = (IsEnterKey(key.key()) || IsTab(key)) && key.modifiers().testFlag(Qt::ShiftModifier);
  if (shift_held || key.modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
    return false;
  if (IsEnterKey(key.key())) {
    dialog->cmd_FindNext_Click();
    return true;
  }
  if (key.key() == Qt::Key_Escape) {
    dialog->cmd_Cance_Click();
    return true;
  }
  // The pad gets the Tab all the same; intended.
  if (key.key() == Qt::Key_Tab) dialog->FocusSearchBox();
  return false;
}

void PadWindow::CloseForeignSearch() {
  form_SR* dialog = form_SR::Opened(global_);
  if (dialog && dialog->isVisible() && !dialog->IsBoundTo(*this)) dialog->cmd_Cance_Click();
}

}  // namespace tme
