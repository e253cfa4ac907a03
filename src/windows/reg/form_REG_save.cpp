// Saving and printing a registry document.
#include <QDir>
#include <QLabel>
#include <QLocale>
#include <QPrinter>
#include <QProgressDialog>
#include <QTextEdit>

#include "documents/reg/RegLosses.h"
#include "documents/reg/RegWholeWriter.h"
#include "files/FileBytes.h"
#include "files/FileSteps.h"
#include "files/TextFile.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "shell/RecoverySnapshots.h"
#include "shell/SaveDialog.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "system/Dialogs.h"
#include "system/FilePath.h"
#include "system/ShellUtilities.h"
#include "windows/reg/RegNotice.h"
#include "windows/reg/form_REG.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Bytes. Values are written under every key of their name, so a small document may make a file of any size.
constexpr std::uint64_t kLargeOutput = std::uint64_t{1} << 30;
constexpr const char* kPrintFileName = "~REGPRNT.TMP";

QString SizeText(std::uint64_t bytes) { return QLocale().formattedDataSize(static_cast<qint64>(bytes)); }

}  // namespace

QString form_REG::WriteOwnFile(const char* name, const PartProducer& produce) {
  const ShellUtilities& utilities = global_.shell_utilities;
  QString path;
  std::optional<FileFailure> failure;
  for (const QString& folder : {utilities.ProgramFolder(), utilities.UserDataFolder()}) {
    path = QDir::toNativeSeparators(folder + u'/' + QLatin1StringView(name));
    MakePrivate(FilePath(path));
    TextFormat format = file_.Format();
    PrivateFileSteps steps;
    failure = WriteTextFile(FilePath(path), format, produce, steps);
    if (!failure) return path;
  }
  ShowWriteFailure(path, *failure);
  return {};
}

SaveDialogTexts form_REG::SaveTexts() const { return {tr("Save Registry File"), tr("Registry File|*.REG"), u".REG"_s}; }

void form_REG::FileSaveAsRegular() { SaveIn(RegLayout::Regular, {.path = SaveRequest::Path::AskedAlways}); }

void form_REG::FileSaveAsExpanded() { SaveIn(RegLayout::Expanded, {.path = SaveRequest::Path::AskedAlways}); }

form_REG::SaveOutcome form_REG::SaveIn(RegLayout layout, const SaveRequest& request) {
  layout_ = layout;
  return Save(request);
}

form_REG::SaveOutcome form_REG::Save(const SaveRequest& request) {
  if (IsWhole()) return TreeDocumentWindow::Save(request);
  const QString location = location_;
  SetLocation(layout_ == RegLayout::Expanded ? tr("Saving File with Expanded Structure") : tr("Saving File"));
  // Before the root gets another text, which decides what is written.
  const RegLosses losses = LossesOf(document_, layout_);
  const SaveOutcome outcome = TreeDocumentWindow::Save(request);
  if (outcome != SaveOutcome::Saved) {
    SetLocation(location);
    return outcome;
  }
  TellLosses(losses);
  SetLocation({});
  return outcome;
}

form_REG::SaveOutcome form_REG::ConfirmWrite(const SaveRequest& request) {
  if (IsWhole()) return ConfirmCharacters(request);
  if (large_output_is_allowed_) return SaveOutcome::Saved;
  const std::uint64_t bytes = RegOutputBytes(document_, layout_);
  if (bytes <= kLargeOutput) return SaveOutcome::Saved;
  if (request.caller == SaveRequest::Caller::AutoSave) {
    AddNotice(tr("AutoSave passed over this document: so many keys share their names that its file would have %1. "
                 "File, Save asks whether it may.")
                  .arg(SizeText(bytes)));
    return SaveOutcome::Cancelled;
  }
  QString question = tr("So many keys share their names that the file would have %1.").arg(SizeText(bytes));
  if (bytes > kMaxFileBytes) question += u"  "_s + tr("A file of that size cannot be opened here again.");
  question += u"  "_s + tr("Save it nevertheless?");
  if (global_.dialogs.MsgBox(question, MsgButtons::YesNo, MsgIcon::Question, kProgramTitle) == MsgAnswer::Yes) {
    large_output_is_allowed_ = true;
    return SaveOutcome::Saved;
  }
  // While the program is being left a failure would ask for another file, for ever.
  return global_.frame.IsLeaving() ? SaveOutcome::Cancelled : SaveOutcome::Failed;
}

void form_REG::TitleChanged(const QString& before) {
  // A root that the user renamed keeps that text.
  if (TextOf(document_.Root()->Text()) == before) document_.SetTitle(file_.Title().toStdString());
  MarkUnmodified();
}

void form_REG::TellLosses(const RegLosses& losses) {
  std::vector<NoticeAction> actions;
  if (losses.fingerprint != 0) {
    // What is in no line of the file joins the history with the whole document, once as long as it stays the same.
    if (losses.fingerprint == kept_losses_ || KeepContent()) {
      kept_losses_ = losses.fingerprint;
      actions.push_back(FileHistoryButton());
    } else {
      global_.snapshots.LeaveForNextStart(*this);
    }
  }
  const bool is_kept = !actions.empty();
  if (losses.empty_keys > 0) actions.push_back({tr("Save Expanded"), [this] { FileSaveExpanded(); }});
  AddNotice(NoticeOf(losses, RegNoticeTime::AfterSave), std::move(actions));
  if (losses.fingerprint == 0) return;
  AddNotice(is_kept ? tr("File History has the whole document.")
                    : tr("What was not written could not be kept in the history either."));
}

PartProducer form_REG::ProducerIn(RegLayout layout) const {
  if (IsWhole()) return [this, layout](const PartSink& put) { return WriteWholeReg(document_, layout, put); };
  return [this, layout](const PartSink& put) { return WriteReg(document_, layout, put); };
}

PartProducer form_REG::Producer() { return large_output_is_allowed_ ? ProducerWithProgress() : ProducerIn(layout_); }

TextFormat form_REG::FormatToWrite() const {
  TextFormat format = file_.Format();
  format.fallback = TextEncoding::Utf16Le;  // as the system's own registry files
  return format;
}

bool form_REG::HoldsWholeFile() const {
  return TreeDocumentWindow::HoldsWholeFile() && (IsWhole() || LossesOf(document_, layout_).fingerprint == 0);
}

PartProducer form_REG::ProducerWithProgress() {
  constexpr int kSteps = 1000;  // a progress dialog counts in int
  auto dialog = std::make_shared<QProgressDialog>(tr("Saving…"), tr("Cancel"), 0, kSteps, this);
  dialog->setObjectName(u"SaveProgress"_s);
  dialog->setWindowModality(Qt::ApplicationModal);
  const std::uint64_t bytes = std::max<std::uint64_t>(RegOutputBytes(document_, layout_), 1);
  return [this, dialog, bytes](const PartSink& put) {
    std::uint64_t written = 0;
    return WriteReg(document_, layout_, [&](std::string_view part) {
      written += part.size();
      dialog->setValue(static_cast<int>(kSteps * std::min(written, bytes) / bytes));
      return !dialog->wasCanceled() && put(part);
    });
  };
}

void form_REG::PrintDoc(QPrinter& printer) {
  const std::uint64_t size = IsWhole() ? 0 : RegOutputBytes(document_, RegLayout::Expanded);
  if (size > kLargeOutput) {
    global_.dialogs.MsgBox(
        tr("So many keys share their names that the printout would have %1.  That is too much to print.")
            .arg(SizeText(size)),
        MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
    return;
  }
  const QString path = WriteOwnFile(kPrintFileName, ProducerIn(RegLayout::Expanded));
  ShowPath();
  std::string bytes;
  if (path.isEmpty()) return;
  if (const auto failure = ReadFileBytes(FilePath(path), bytes)) return ShowReadFailure(path, *failure);
  const WaitCursor wait_cursor;
  if (!RTFPrint2) {
    RTFPrint2 = new QTextEdit(this);
    RTFPrint2->setObjectName(u"RTFPrint2"_s);
    RTFPrint2->setUndoRedoEnabled(false);
    RTFPrint2->hide();
  }
  RTFPrint2->setPlainText(QString::fromStdString(DecodeText(std::move(bytes)).text));
  RTFPrint2->print(&printer);
  RTFPrint2->clear();
  if (!IsWhole()) SetChanged(false);
}

}  // namespace tme
