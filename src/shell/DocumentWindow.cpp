#include "shell/DocumentWindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QMdiSubWindow>
#include <QShortcut>
#include <QVBoxLayout>
#include <new>

#include "files/FileBytes.h"
#include "files/TemporaryFile.h"
#include "files/TextFile.h"
#include "history/DigestingSteps.h"
#include "history/History.h"
#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/PlainText.h"
#include "shell/RecentFiles.h"
#include "shell/RecoverySnapshots.h"
#include "shell/mdform_TMEditor.h"
#include "system/Dialogs.h"
#include "system/FilePath.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString ReasonOf(const FileFailure& failure) { return QString::fromStdString(failure.reason); }

}  // namespace

DocumentWindow::DocumentWindow(Global& global, DocumentKind kind, int slot)
    : global_(global), kind_(kind), slot_number_(slot) {}

DocumentSlot& DocumentWindow::Slot() const { return global_.documents.At(kind_, slot_number_); }

QMdiSubWindow* DocumentWindow::SubWindow() const { return qobject_cast<QMdiSubWindow*>(parentWidget()); }

void DocumentWindow::Form_Activate() {
  global_.area.SetActiveDocument(this);
  global_.menus.RefreshMenus(kind_);
  UpdateCommands();
  CheckDisk();
  global_.frame.TellSettingsFailure();
}

void DocumentWindow::TakeSlot() {
  tag_ = QString::number(slot_number_);
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
    connect(focus_notice, &QShortcut::activated, notice_bar_, &NoticeBar::FocusFirst);
    auto* client = new QWidget(this);
    client->setObjectName(u"client"_s);
    layout_->addWidget(client, 1);
    BuildControls(*client);
  }
  ClearNotice();
  being_read_ = false;
  took_all_ = false;
  disk_stamp_.reset();
  own_digest_.clear();
  told_stamp_.reset();
  left_out_.clear();
  said_left_out_.clear();
}

std::optional<std::string> DocumentWindow::TakeSlotBytes() {
  DocumentSlot& slot = Slot();
  const std::optional<FileStamp> stamp = StampOf(FilePath(slot.path));
  std::string bytes;
  if (const std::optional<FileFailure> failure = ReadFileBytes(FilePath(slot.path), bytes)) {
    // First: while the message stands, another launch may take the slot.
    const QString path = std::exchange(slot.path, {});
    slot.title.clear();
    ShowReadFailure(path, *failure);
    return std::nullopt;
  }
  TakeSlot();
  being_read_ = true;
  disk_stamp_ = stamp;
  setWindowTitle(CaptionText(slot.title));
  return bytes;
}

std::optional<DecodedText> DocumentWindow::TakeSlotFile() {
  std::optional<std::string> bytes = TakeSlotBytes();
  if (!bytes) return std::nullopt;
  return DecodeText(std::move(*bytes));
}

void DocumentWindow::ReleaseSlot() {
  // What could not be kept stays aside, for the next start.
  if (KeepUnsaved())
    global_.snapshots.Forget(this);
  else
    global_.snapshots.LeaveForNextStart(*this);
  tag_.clear();
  DocumentSlot& slot = Slot();
  slot.path.clear();
  slot.title.clear();
  slot.changed = false;
  if (QWidget* sub_window = SubWindow()) sub_window->hide();
  global_.area.DocumentClosed(this);
}

void DocumentWindow::MarkClean() {
  clean_revision_ = Revision();
  being_read_ = false;
  // At once: a crash before the next look would bring back what is older than the file.
  global_.snapshots.Forget(this);
}

void DocumentWindow::RecordOpened() {
  if (std::exchange(global_.skip_recent_once, false)) return;
  global_.recent_files.AddRecentFile(QDir::toNativeSeparators(QFileInfo(Slot().path).absoluteFilePath()));
  global_.recent_files.RebuildRecentMenu();
}

void DocumentWindow::ShowInFrame() { global_.area.ShowDocument(this); }

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

void DocumentWindow::AddNotice(const QString& sentence, std::vector<NoticeAction> actions) {
  notice_bar_->Add(sentence, std::move(actions));
}

void DocumentWindow::WithdrawNotice(const QString& sentence) { notice_bar_->Remove(sentence); }

void DocumentWindow::LoseFile() {
  Slot().path.clear();
  disk_stamp_.reset();
}

void DocumentWindow::ClearNotice() { notice_bar_->Clear(); }

NoticeAction DocumentWindow::FileHistoryButton() {
  return {tr("File History"), [this] {
            global_.area.Activate(*this);
            global_.menus.Action(u"menu_ToolsHistory"_s)->trigger();
          }};
}

void DocumentWindow::SayLeftOut(const QString& path, bool old_bytes_are_kept) {
  const QString what = std::exchange(left_out_, {});
  if (what.isEmpty()) return;
  if (path != Origin().path)
    return AddNotice(tr("Not in this file, or in another form: %1. %2 has it as it was.").arg(what, Origin().title));
  const QString said = tr("The save left out, or wrote in another form: %1.").arg(what);
  if (!old_bytes_are_kept) return AddNotice(said);
  said_left_out_ = said + u' ' + tr("File History has the file as it was.");
  AddNotice(said_left_out_, {FileHistoryButton()});
}

void DocumentWindow::AddEncodingNotice(TextEncoding before, TextEncoding after,
                                       const std::function<void(TextEncoding)>& write_as) {
  if (before == after) return;
  const auto name_of = [](TextEncoding encoding) { return QString::fromUtf8(EncodingName(encoding)); };
  if (before != TextEncoding::CodePage)
    return AddNotice(tr("The file is now written as %1, since %2 would not be read as the same text.")
                         .arg(name_of(after), name_of(before)));
  std::vector<NoticeAction> buttons;
  for (const TextEncoding other : {TextEncoding::Utf16Le, TextEncoding::Utf8, TextEncoding::Utf8Bom})
    if (write_as && other != after)
      buttons.push_back({tr("Write as %1").arg(name_of(other)), [write_as, other] { write_as(other); }});
  AddNotice(tr("The file is now written as %1, because %2 has no place for some of its characters.")
                .arg(name_of(after), name_of(before)),
            std::move(buttons));
}

DocumentWindow::SaveOutcome DocumentWindow::WithoutName(const std::function<SaveOutcome()>& save) {
  named_ = Origin();
  Slot().path.clear();
  Slot().title.clear();
  const SaveOutcome outcome = save();
  named_.reset();
  return outcome;
}

ContentOrigin DocumentWindow::Origin() const {
  if (named_) return *named_;
  QString title = Slot().title.isEmpty() ? windowTitle() : Slot().title;
  const QLatin1StringView marker(kChangedMarker);
  if (title.endsWith(marker)) title.chop(marker.size());
  return {kind_, Slot().path, title};
}

bool DocumentWindow::KeepUnsaved() { return tag_.isEmpty() || !IsTouched() || KeepContent(); }

bool DocumentWindow::KeepContent() {
  try {
    return !global_.history.Keep(Origin(), KeptReason::NotSaved, Content());
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void DocumentWindow::ShowKept(const ContentOrigin& origin, std::string content) {
  TakeSlot();
  Slot().path = origin.path;
  Slot().title = origin.path.isEmpty() ? QString() : origin.title;
  if (!origin.path.isEmpty()) disk_stamp_ = StampOf(FilePath(origin.path));
  setWindowTitle(CaptionText(origin.title));
  MarkClean();
  PutContent(std::move(content));
  ShowInFrame();
}

void DocumentWindow::CheckDisk() {
  if (!disk_stamp_ || Slot().path.isEmpty()) return;
  const std::filesystem::path file = FilePath(Slot().path);
  const std::optional<FileStamp> now = StampOf(file);
  if (!now && !IsAbsent(file)) return;  // a look that failed says nothing
  if (now == disk_stamp_ || (told_stamp_ && *told_stamp_ == now)) return;
  told_stamp_ = now;
  AddNotice(
      now ? tr("The file was changed on the disk after it was opened here. A save replaces that content; Tools, File "
               "History keeps it.")
          : tr("The file is no longer on the disk. A save makes it anew."));
}

std::string DocumentWindow::BytesOf(TextFormat* format, const PartProducer& produce) {
  std::string text;
  produce([&text](std::string_view part) {
    text.append(part);
    return true;
  });
  return format ? EncodeText(std::move(text), *format) : text;
}

FileSteps& DocumentWindow::Steps() const {
  static FileSteps system;
  return global_.file_steps ? *global_.file_steps : system;
}

ContentOrigin DocumentWindow::OriginAt(const QString& path) const { return {kind_, path, QFileInfo(path).fileName()}; }

std::optional<FileFailure> DocumentWindow::WriteInPlace(const SaveTarget& target, TextFormat* format,
                                                        const PartProducer& produce, FileSteps& steps) {
  TextFormat written = format ? *format : TextFormat();
  const auto unkept = target.may_be_lost ? History::Unkept::Accepted : History::Unkept::Refused;
  auto failure =
      global_.history.Overwrite(OriginAt(target.path), BytesOf(format ? &written : nullptr, produce), steps, unkept);
  if (!failure && format) *format = written;
  return failure;
}

DocumentWindow::SaveTarget DocumentWindow::KeepReplaced(const QString& path) {
  const std::filesystem::path file = FilePath(path);
  SaveTarget target{path};
  std::string bytes;
  if (auto failure = ReadFileBytes(file, bytes)) {
    if (!IsAbsent(file)) target.not_kept = std::move(failure);
    return target;
  }
  const bool is_slots = path == Origin().path;
  const bool was_written = is_slots && !own_digest_.isEmpty();
  // Not the stamp: a change in the same step of the file system's clock, or one that puts the time back, has the same.
  if (was_written && History::DigestOf(bytes) == own_digest_) return target;
  target.is_foreign = was_written || (is_slots && disk_stamp_ && StampOf(file) != disk_stamp_);
  target.not_kept = global_.history.Keep(OriginAt(path), KeptReason::BeforeSave, bytes);
  return target;
}

bool DocumentWindow::HoldsWhatIsAt(const QString& path) const {
  const bool is_as_read = path == Origin().path && own_digest_.isEmpty() && disk_stamp_;
  return is_as_read && StampOf(FilePath(path)) == disk_stamp_ && HoldsWholeFile();
}

std::optional<DocumentWindow::SaveTarget> DocumentWindow::PrepareTarget(QString path, const SaveDialogTexts& texts) {
  while (true) {
    SaveTarget target = KeepReplaced(path);
    if (!target.not_kept || HoldsWhatIsAt(path)) return target;
    const QString not_kept =
        tr("What the file holds now could not be kept in the history: %1.").arg(ReasonOf(*target.not_kept));
    if (global_.saving_unasked) {
      AddNotice(tr("AutoSave passed over this document.") + u' ' + not_kept);
      return std::nullopt;
    }
    const QString question = not_kept + u"\r( "_s + path + u" )\r"_s +
                             tr("This document does not hold all of it: after a save the rest is gone for good.");
    switch (global_.dialogs.Choose(question, {tr("Save &Anyway"), tr("&Save As..."), tr("Cancel")}, MsgIcon::Warning,
                                   kProgramTitle)) {
      case 0:
        target.may_be_lost = true;
        return target;
      case 1:
        path = AskForSavePath(global_, texts);
        if (!path.isEmpty()) break;
        [[fallthrough]];
      default:
        return std::nullopt;
    }
  }
}

bool DocumentWindow::WriteDocument(const SaveTarget& target, TextFormat* format, const PartProducer& produce) {
  const std::filesystem::path file = FilePath(target.path);
  const bool was_gone = target.path == Slot().path && disk_stamp_ && IsAbsent(file);
  DigestingSteps steps(Steps());
  std::optional<FileFailure> failure =
      format ? WriteTextFile(file, *format, produce, steps) : WriteFileParts(file, produce, steps);
  if (failure && failure->folder_refused && !IsAbsent(file)) failure = WriteInPlace(target, format, produce, steps);
  if (failure) {
    ShowWriteFailure(target.path, *failure);
    return false;
  }
  std::error_code error;
  RemoveLeftTemporaries(std::filesystem::weakly_canonical(file, error).parent_path());
  disk_stamp_ = StampOf(file);
  own_digest_ = steps.Digest();
  took_all_ = true;
  const bool says_left_out = !said_left_out_.isEmpty() && notice_bar_->Text().contains(said_left_out_);
  ClearNotice();  // what stood there was about the document before
  if (says_left_out) AddNotice(said_left_out_, {FileHistoryButton()});
  SayLeftOut(target.path, !target.not_kept);
  if (was_gone) AddNotice(tr("The file was no longer on the disk; the save made it anew."));
  if (target.is_foreign && !target.not_kept)
    AddNotice(tr("The file had been changed on the disk; that content is kept in Tools, File History."));
  if (target.not_kept)
    AddNotice(tr("What the file held before could not be kept in the history: %1.").arg(ReasonOf(*target.not_kept)));
  return true;
}

void DocumentWindow::ShowReadFailure(const QString& path, const FileFailure& failure) {
  global_.dialogs.MsgBox(u"TME could not open the file\r( "_s + path + u" )\r"_s + ReasonOf(failure) + u'.',
                         MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

QString DocumentWindow::WhatIsSafe(const QString& path, const FileFailure& failure) {
  if (failure.file_damaged)
    return tr("The file on disk is incomplete now; Tools, File History has what it held before.");
  return StampOf(FilePath(path)) ? tr("The file on disk is unchanged.") : tr("Nothing was written.");
}

void DocumentWindow::ShowWriteFailure(const QString& path, const FileFailure& failure) {
  global_.dialogs.MsgBox(u"TME could not save the file\r( "_s + path + u" )\r"_s + ReasonOf(failure) + u".  "_s +
                             WhatIsSafe(path, failure),
                         MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

bool DocumentWindow::ConfirmClose(const std::function<SaveOutcome()>& save,
                                  const std::function<SaveOutcome()>& save_elsewhere) {
  if (!Slot().changed) return true;
  const QString question = u"Save this file?\r"_s + Slot().path;
  switch (global_.dialogs.MsgBox(question, MsgButtons::YesNoCancel, MsgIcon::Question, u"Document Changed"_s)) {
    case MsgAnswer::Yes: {
      SaveOutcome outcome = save();
      while (outcome == SaveOutcome::Failed && global_.frame.IsLeaving()) outcome = save_elsewhere();
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

}  // namespace tme
