#include "shell/DocumentWindow.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QMdiSubWindow>
#include <QShortcut>
#include <QVBoxLayout>

#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"
#include "platform/ShellUtilities.h"
#include "shell/Global.h"
#include "shell/NoticeBar.h"
#include "shell/RecentFiles.h"
#include "shell/mdform_TMEditor.h"

using namespace Qt::StringLiterals;

namespace tme {

DocumentWindow::DocumentWindow(Global& global, DocumentKind kind, int slot)
    : global_(global), kind_(kind), slot_number_(slot) {}

DocumentSlot& DocumentWindow::Slot() const { return global_.documents.At(kind_, slot_number_); }

QMdiSubWindow* DocumentWindow::SubWindow() const { return qobject_cast<QMdiSubWindow*>(parentWidget()); }

void DocumentWindow::Form_Activate() {
  global_.frame->SetActiveDocument(this);
  global_.frame->RefreshMenus(kind_);
  UpdateCommands();
}

void DocumentWindow::TakeSlot() {
  tag_ = QString::number(slot_number_);
  if (!layout_) {
    layout_ = new QVBoxLayout(this);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(0);
    notice_bar_ = new NoticeBar(this);
    layout_->addWidget(notice_bar_);
    // A pad takes the Tab, so its notice needs a key of its own.
    auto* close_notice = new QShortcut(u"Shift+Esc"_s, this);
    close_notice->setContext(Qt::WidgetWithChildrenShortcut);
    connect(close_notice, &QShortcut::activated, notice_bar_, &NoticeBar::Clear);
    auto* client = new QWidget(this);
    client->setObjectName(u"client"_s);
    layout_->addWidget(client, 1);
    BuildControls(*client);
  }
  ClearNotice();
}

std::optional<std::string> DocumentWindow::TakeSlotBytes() {
  DocumentSlot& slot = Slot();
  std::string bytes;
  if (const std::optional<FileFailure> failure = ReadFileBytes(FilePath(slot.path), bytes)) {
    ShowReadFailure(slot.path, *failure);
    slot.path.clear();
    slot.title.clear();
    return std::nullopt;
  }
  TakeSlot();
  setWindowTitle(slot.title);
  return bytes;
}

std::optional<DecodedText> DocumentWindow::TakeSlotFile() {
  std::optional<std::string> bytes = TakeSlotBytes();
  if (!bytes) return std::nullopt;
  return DecodeText(std::move(*bytes));
}

void DocumentWindow::ReleaseSlot() {
  tag_.clear();
  DocumentSlot& slot = Slot();
  slot.path.clear();
  slot.title.clear();
  slot.changed = false;
  if (QWidget* sub_window = SubWindow()) sub_window->hide();
  global_.frame->DocumentClosed(this);
}

void DocumentWindow::RecordOpened() {
  if (std::exchange(global_.skip_recent_once, false)) return;
  RecentFiles& recent_files = global_.frame->Recent();
  recent_files.AddRecentFile(QDir::toNativeSeparators(QFileInfo(Slot().path).absoluteFilePath()));
  recent_files.RebuildRecentMenu();
}

void DocumentWindow::ShowInFrame() { global_.frame->ShowDocument(this); }

void DocumentWindow::SetChanged(bool changed) {
  Slot().changed = changed;
  const QLatin1StringView marker(kChangedMarker);
  QString caption = windowTitle();
  if (changed == caption.endsWith(marker)) return;
  if (changed)
    caption += marker;
  else
    caption.chop(marker.size());
  setWindowTitle(caption);
}

void DocumentWindow::AddNotice(const QString& sentence) { notice_bar_->Add(sentence); }

void DocumentWindow::ClearNotice() { notice_bar_->Clear(); }

void DocumentWindow::AddEncodingNotice(TextEncoding before, TextEncoding after) {
  if (before == after) return;
  AddNotice(tr("The file is now written as UTF-8, because %1 has no place for some of its characters.")
                .arg(QString::fromUtf8(EncodingName(before))));
}

void DocumentWindow::ShowReadFailure(const QString& path, const FileFailure& failure) {
  global_.dialogs.MsgBox(
      u"TME could not open the file\r( "_s + path + u" )\r"_s + QString::fromStdString(failure.reason) + u'.',
      MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

void DocumentWindow::ShowWriteFailure(const QString& path, const FileFailure& failure) {
  global_.dialogs.MsgBox(u"TME could not save the file\r( "_s + path + u" )\r"_s +
                             QString::fromStdString(failure.reason) + u".  The file on disk is unchanged."_s,
                         MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

QString DocumentWindow::AskForSavePath(const QString& title, const QString& filter, const QString& default_ext) {
  CommonDialog& dialog = global_.common_dialog;
  while (true) {
    dialog.title = title;
    dialog.filter = filter;
    dialog.filter_index = 1;
    dialog.default_ext = default_ext;
    dialog.file_name.clear();
    dialog.init_dir = LastSaveFolder(global_.registry);
    QString path = dialog.ShowSave();
    if (path.isEmpty() || !global_.shell_utilities.FileExists(path)) return path;
    switch (global_.dialogs.MsgBox(u"Overwrite existing file?"_s, MsgButtons::YesNoCancel, MsgIcon::Question,
                                   u"File Exists"_s)) {
      case MsgAnswer::Yes:
        return path;
      case MsgAnswer::No:
        break;
      default:
        return {};
    }
  }
}

bool DocumentWindow::ConfirmClose(const std::function<SaveOutcome()>& save,
                                  const std::function<SaveOutcome()>& save_elsewhere) {
  if (!Slot().changed) return true;
  const QString question = u"Save this file?\r"_s + Slot().path;
  switch (global_.dialogs.MsgBox(question, MsgButtons::YesNoCancel, MsgIcon::Question, u"Document Changed"_s)) {
    case MsgAnswer::Yes: {
      SaveOutcome outcome = save();
      while (outcome == SaveOutcome::Failed && global_.frame->IsLeaving()) outcome = save_elsewhere();
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
  event->setAccepted(tag_.isEmpty() || CloseDocument());
}

std::filesystem::path FilePath(const QString& path) { return path.toStdU16String(); }

}  // namespace tme
