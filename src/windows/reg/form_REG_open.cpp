// Reading a registry document, with its progress and its error log.
#include <QCoreApplication>
#include <QProgressBar>

#include "documents/reg/RegAsShown.h"
#include "documents/reg/RegLosses.h"
#include "documents/reg/RegWholeReader.h"
#include "shell/Global.h"
#include "shell/WaitCursor.h"
#include "system/Dialogs.h"
#include "windows/reg/RegNotice.h"
#include "windows/reg/form_REG.h"
#include "windows/tree/DocumentTreeView.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kRepaintsMs = 33;  // about 30 a second
constexpr int kStageOfHive = 4;
constexpr const char* kErrorLogName = "REG_ERR.TME";

}  // namespace

void form_REG::NewREG() {
  TakeSlotForNew();
  HoldAsSettings();
  layout_ = RegLayout::Regular;
  document_.Reset(file_.Title().toStdString());
  if (GetHolding() == Holding::Whole) ReadWholeReg(document_, std::string(kRegHeader));
  TV->show();
  EndProgress();
  RestoreView();
  ShowNew();
}

void form_REG::OpenREG() {
  std::optional<std::string> text = TakeSlotText();
  if (!text) return;
  HoldAsSettings();
  document_.Reset(file_.Title().toStdString());
  ShowInFrame();
  switch (ReadText(std::move(*text))) {
    case ReadEnd::Taken:
      if (IsWhole()) SelectFirstKeyWithValues();
      break;
    case ReadEnd::NothingTaken:
      MarkUnmodified();
      file_.SetLeftOut(tr("all that the file held"));
      break;
    case ReadEnd::Refused:
      FileClose();
  }
}

form_REG::ReadEnd form_REG::ReadText(std::string text) {
  layout_ = RegLayout::Regular;
  document_.Reset(file_.Title().toStdString());
  if (GetHolding() == Holding::Whole) return ReadWhole(std::move(text));
  const RegReadResult result = Read(std::move(text));
  switch (result.end) {
    case RegReadEnd::HeaderRefused:
      return ReadEnd::Refused;
    case RegReadEnd::LargeFileRefused:
      TV->show();
      SetLocation({});
      AddNotice(tr("Nothing of the file was read. A save would put an empty document in its place."), HoldingButton());
      break;
    case RegReadEnd::UnknownHive:
      // Intended: the import just stops; the bars, the label and the hidden tree stay as they are.
      ShowImport({RegProgress::Phase::Importing, result.ended_at_line, result.line_count, kStageOfHive});
      break;
    case RegReadEnd::EndOfInput:
      EndProgress();
      TV->show();
      RestoreView();
      TV->setFocus();
      break;
  }
  const bool is_taken = result.end != RegReadEnd::LargeFileRefused;
  if (is_taken) {
    const QString left_out = LeftOutOf(result);
    const bool is_unsaid = left_out.isEmpty() && result.end != RegReadEnd::EndOfInput;
    MarkRead(is_unsaid ? std::nullopt : std::optional(left_out));
  }
  AddNotice(NoticeOf(result), HoldingButton());
  AddNotice(NoticeOf(LossesOf(document_, RegLayout::Expanded), RegNoticeTime::BeforeSave), HoldingButton());
  if (result.end == RegReadEnd::EndOfInput && !result.error_log.empty()) ReportErrors(result.error_log);
  return is_taken ? ReadEnd::Taken : ReadEnd::NothingTaken;
}

RegReadResult form_REG::Read(std::string text) {
  const WaitCursor wait_cursor;
  SetLocation(tr("Gathering File Information"));
  const auto ask = [this](const QString& question, const QString& title, MsgIcon icon) {
    return global_.dialogs.MsgBox(question, MsgButtons::YesNo, icon, title) == MsgAnswer::Yes;
  };
  RegQuestions questions;
  questions.wrong_header = [&] {
    return ask(tr("This file does not have the correct header definitions required for registry files.  Do you wish to "
                  "attemp to open this file anyway?"),
               tr("Error in File Type"), MsgIcon::Question);
  };
  questions.large_file = [&] {
    return ask(tr("This file is very large, and processing could take a while. Do you wish to continue?"),
               tr("Large Registry File"), MsgIcon::None);
  };
  questions.progress = [this](const RegProgress& progress) { ShowProgress(progress); };
  TV->hide();
  since_progress_.start();
  return ReadReg(document_, std::move(text), questions);
}

void form_REG::ShowProgress(const RegProgress& progress) {
  if (since_progress_.elapsed() < kRepaintsMs) return;
  since_progress_.start();
  if (progress.phase == RegProgress::Phase::Counting) {
    SetLocation(tr("Information Count: %1 lines.").arg(progress.lines));
  } else {
    ShowImport(progress);
  }
  // Repaints, but holds back what would act on a half-read document: keys and clicks. What other launches hand over
  // waits for the wait cursor to go.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
}

void form_REG::ShowImport(const RegProgress& progress) {
  SetLocation(tr("Importing Data:"));
  PB->show();
  PB2->show();
  // A progress bar counts in int; parts of a thousand serve any file.
  PB->setMaximum(1000);
  PB->setValue(static_cast<int>(1000 * progress.lines / std::max<std::uint64_t>(progress.total, 1)));
  PB2->setValue(progress.stage);
}

void form_REG::EndProgress() {
  PB->hide();
  PB2->hide();
  SetLocation({});
}

void form_REG::ReportErrors(const std::string& error_log) {
  const std::string text =
      tr("The following entries could not be processed:").toStdString() + "\r\n\r\n" + error_log + "\r\n";
  const QString path = WriteOwnFile(kErrorLogName, [&text](const PartSink& put) { return put(text); });
  if (path.isEmpty()) return;
  global_.dialogs.MsgBox(tr("Errors were reported during inport.  Please see %1  for details.").arg(path),
                         MsgButtons::Ok, MsgIcon::Information, tr("Errors:"));
}

void form_REG::PutByRules(std::string bytes) {
  DecodedText decoded = DecodeText(std::move(bytes));
  file_.SetFormat(decoded.format);
  document_.Reset(file_.Title().toStdString());
  if (!ReadRegAsShown(document_, decoded.text)) {
    const RegQuestions take_all{.wrong_header = [] { return true; }, .large_file = [] { return true; }, .progress = {}};
    AddNotice(NoticeOf(ReadReg(document_, std::move(decoded.text), take_all)));
  }
  EndProgress();
  TV->show();
  RestoreView();
  AddNotice(NoticeOf(LossesOf(document_, RegLayout::Expanded), RegNoticeTime::BeforeSave));
}

}  // namespace tme
