#include "shell/DocumentWindow.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QMdiSubWindow>
#include <QShortcut>
#include <QVBoxLayout>
#include <exception>

#include "shell/DocumentArea.h"
#include "shell/FileMessages.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/KindTraits.h"
#include "shell/PlainText.h"
#include "shell/RecentFiles.h"
#include "shell/RecoverySnapshots.h"
#include "shell/StatusLine.h"
#include "shell/mdform_TMEditor.h"
#include "system/Dialogs.h"

using namespace Qt::StringLiterals;

namespace tme {

DocumentWindow::DocumentWindow(Global& global, DocumentKind kind, int slot)
    : global_(global), file_(kind, global.history), slot_number_(slot), figures_([this] { StateChanged(); }) {}

QMdiSubWindow* DocumentWindow::SubWindow() const { return qobject_cast<QMdiSubWindow*>(parentWidget()); }

void DocumentWindow::Form_Activate() {
  global_.area.SetActiveDocument(this);
  global_.menus.RefreshMenus(Kind());
  UpdateCommands();
  StateChanged();
  CheckDisk();
  global_.frame.TellSettingsFailure();
}

void DocumentWindow::TakeSlot() {
  is_open_ = true;
  if (!layout_) {
    layout_ = new QVBoxLayout(this);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(0);
    notice_bar_ = new NoticeBar(this);
    layout_->addWidget(notice_bar_);
    // A pad takes the Tab, so its notice needs keys of its own.
    auto* close_notice = new QShortcut(u"Shift+Esc"_s, this);
    auto* focus_notice = new QShortcut(u"F6"_s, this);
    for (QShortcut* key : {close_notice, focus_notice}) key->setContext(Qt::WidgetWithChildrenShortcut);
    connect(close_notice, &QShortcut::activated, notice_bar_, &NoticeBar::Clear);
    connect(focus_notice, &QShortcut::activated, this, [this] {
      const bool is_there = notice_bar_->isAncestorOf(QApplication::focusWidget());
      if (is_there || !notice_bar_->FocusFirst()) global_.status.FocusFirst();
    });
    auto* client = new QWidget(this);
    client->setObjectName(u"client"_s);
    layout_->addWidget(client, 1);
    BuildControls(*client);
  }
  notice_bar_->Clear();
  figures_.Forget();
  misfit_.clear();
  UpdateCaption();
}

void DocumentWindow::TakeSlotForNew() {
  file_.BecomeNew(KindText(TraitsOf(Kind()).new_caption));
  TakeSlot();
}

std::optional<std::string> DocumentWindow::TakeSlotBytes() {
  std::string bytes;
  if (const std::optional<FileFailure> failure = file_.Read(bytes)) {
    // First: while the message stands, another launch may take the slot.
    const QString path = file_.Path();
    file_.Clear();
    ShowReadFailure(path, *failure);
    return std::nullopt;
  }
  TakeSlot();
  return bytes;
}

std::optional<std::string> DocumentWindow::TakeSlotText() {
  std::optional<std::string> bytes = TakeSlotBytes();
  if (!bytes) return std::nullopt;
  DecodedText decoded = DecodeText(std::move(*bytes));
  file_.SetFormat(decoded.format);
  return std::move(decoded.text);
}

void DocumentWindow::ShowKept(const ContentOrigin& origin, std::string content) {
  file_.BecomeKept(origin);
  TakeSlot();
  MarkUnmodified();
  PutContent(std::move(content), origin.holding);
  ShowInFrame();
}

void DocumentWindow::ReleaseSlot() {
  // What could not be kept stays a recovery snapshot, for the next start.
  if (KeepUnsaved())
    global_.snapshots.Forget(this);
  else
    global_.snapshots.LeaveForNextStart(*this);
  is_open_ = false;
  file_.Clear();
  if (QWidget* sub_window = SubWindow()) sub_window->hide();
  global_.area.DocumentClosed(this);
  StateChanged();
}

void DocumentWindow::MarkUnmodified() {
  file_.MarkUnmodified(Revision());
  // At once: a crash before the next check would bring back what is older than the file.
  global_.snapshots.Forget(this);
}

void DocumentWindow::ShowNew() {
  SetChanged(false);
  MarkUnmodified();
  ShowInFrame();
  setFocus();
}

void DocumentWindow::MarkOpened(const std::optional<QString>& left_out) {
  SetChanged(false);
  MarkUnmodified();
  file_.SetLeftOut(left_out);
  if (!file_.JoinsRecentFiles()) return;
  RecentFiles& recent_files = global_.recent_files;
  recent_files.AddRecentFile(QDir::toNativeSeparators(QFileInfo(file_.Path()).absoluteFilePath()));
  recent_files.RebuildRecentMenu();
}

void DocumentWindow::ShowInFrame() { global_.area.ShowDocument(this); }

void DocumentWindow::SetChanged(bool changed) {
  file_.SetChanged(changed);
  UpdateCaption();
}

QString DocumentWindow::Caption() const { return file_.IsChanged() ? file_.Title() + u" [CHANGED]"_s : file_.Title(); }

void DocumentWindow::UpdateCaption() {
  setWindowTitle(CaptionText(Caption()));
  StateChanged();
}

void DocumentWindow::AddNotice(const QString& sentence, std::vector<NoticeAction> actions, NoticeLife life) {
  notice_bar_->Add(sentence, std::move(actions), life);
}

void DocumentWindow::SetNotices(const std::vector<NoticeBar::Notice>& notices) {
  notice_bar_->Clear();
  for (const NoticeBar::Notice& notice : notices) AddNotice(notice.sentence, notice.actions, notice.life);
}

void DocumentWindow::WithdrawNotice(const QString& sentence) { notice_bar_->Remove(sentence); }

NoticeAction DocumentWindow::FileHistoryButton() {
  return {tr("File History"), [this] {
            global_.area.Activate(*this);
            global_.menus.Action(u"menu_ToolsHistory"_s)->trigger();
          }};
}

void DocumentWindow::CheckDisk() {
  if (const QString said = FileMessages::OfDiskChange(file_.CheckDisk()); !said.isEmpty()) AddNotice(said);
}

bool DocumentWindow::KeepUnsaved() { return !is_open_ || !IsModified() || KeepContent(); }

bool DocumentWindow::KeepContent() {
  try {
    return file_.Keep(Content());
  } catch (const std::exception&) {
    return false;
  }
}

std::string DocumentWindow::Content() {
  TextFormat format = FormatToWrite();
  return DocumentFile::BytesOf(&format, Producer());
}

void DocumentWindow::ShowReadFailure(const QString& path, const FileFailure& failure) {
  global_.dialogs.MsgBox(FileMessages::ReadFailed(path, failure), MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

void DocumentWindow::ShowWriteFailure(const QString& path, const FileFailure& failure) {
  global_.dialogs.MsgBox(FileMessages::WriteFailed(path, failure), MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

void DocumentWindow::FileClose() { CloseDocument(); }

bool DocumentWindow::CloseDocument() {
  CommitTyping();
  if (!ConfirmClose()) return false;
  DocumentCloses();
  ReleaseSlot();
  DropContent();
  return true;
}

bool DocumentWindow::ConfirmClose() {
  if (!file_.IsChanged()) return true;
  const QString question = tr("Save this file?") + u'\r' + file_.Path();
  switch (global_.dialogs.MsgBox(question, MsgButtons::YesNoCancel, MsgIcon::Question, tr("Document Changed"))) {
    case MsgAnswer::Yes: {
      SaveOutcome outcome = Save({});
      while (outcome == SaveOutcome::Failed && global_.frame.IsLeaving())
        outcome = Save({.path = SaveRequest::Path::AskedAlways});
      if (outcome == SaveOutcome::Failed) return false;
      break;
    }
    case MsgAnswer::No:
      break;
    default:
      return false;
  }
  SetChanged(false);
  return true;
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
  // Hiding the frame's child is the shell's business, once the document is gone.
  event->setAccepted(!is_open_ || CloseDocument());
}

}  // namespace tme
