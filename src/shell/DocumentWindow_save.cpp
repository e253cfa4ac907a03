// The save of a document of any kind.
#include <QFileInfo>

#include "files/FileSteps.h"
#include "shell/DocumentWindow.h"
#include "shell/FileMessages.h"
#include "shell/Global.h"
#include "shell/SaveDialog.h"
#include "shell/WaitCursor.h"
#include "system/Dialogs.h"
#include "system/ShellUtilities.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString AskForPath(Global& global, SaveDialogTexts texts, const SaveRequest& request) {
  if (!request.asked_for.isEmpty()) texts.title += u" - "_s + request.asked_for;
  return AskForSavePath(global, texts);
}

}  // namespace

DocumentWindow::SaveOutcome DocumentWindow::Save(const SaveRequest& request) {
  CommitTyping();
  const bool has_place = !request.chosen_path.isEmpty();
  const bool asks = !has_place && (request.path == SaveRequest::Path::AskedAlways || file_.Path().isEmpty());
  QString path = asks ? AskForPath(global_, SaveTexts(), request) : has_place ? request.chosen_path : file_.Path();
  if (path.isEmpty()) {
    if (file_.Path().isEmpty() && request.path == SaveRequest::Path::AskedWhenMissing) PathNotChosen();
    return SaveOutcome::Cancelled;
  }
  SaveOutcome outcome = ConfirmWrite(request);
  if (outcome == SaveOutcome::Saved) outcome = WriteTo(path, request);
  if (outcome != SaveOutcome::Saved) return outcome;
  const bool is_renamed = asks || path != file_.Path();
  const QString title_before = file_.Title();
  file_.MoveTo(path);
  if (is_renamed) TitleChanged(title_before);
  RememberLastSaveFolder(global_.registry, QFileInfo(path).absolutePath());
  SetChanged(false);
  return SaveOutcome::Saved;
}

DocumentWindow::SaveOutcome DocumentWindow::WriteTo(QString& path, const SaveRequest& request) {
  const WaitCursor wait_cursor;
  TextFormat format = FormatToWrite();
  if (LeavesEqualFile() && path == file_.Path() && file_.IsOnDisk(format, Producer())) {
    notice_bar_->EndUntilSave();
    MarkUnmodified();
    return SaveOutcome::Saved;
  }
  const std::optional<DocumentFile::Target> target = PrepareTarget(path, request);
  if (!target || !Write(*target, &format, Producer())) return SaveOutcome::Failed;
  path = target->path;
  const TextFormat before = file_.Format();
  file_.SetFormat(format);
  AddEncodingNotice(before, format);
  MarkUnmodified();
  return SaveOutcome::Saved;
}

void DocumentWindow::AddEncodingNotice(const TextFormat& before, const TextFormat& after) {
  std::vector<NoticeAction> buttons;
  if (before.encoding == TextEncoding::CodePage)
    for (const TextEncoding other : {TextEncoding::Utf16Le, TextEncoding::Utf8, TextEncoding::Utf8Bom})
      if (other != after.encoding)
        buttons.push_back({tr("Write as %1").arg(QString::fromUtf8(EncodingName(other))), [this, other] {
                             EncodingChosen(other);
                             file_.SetFormat({other, {}});
                             Save({});
                           }});
  AddNotice(FileMessages::OfEncoding(before.encoding, after.encoding), std::move(buttons));
}

std::optional<DocumentFile::Target> DocumentWindow::PrepareTarget(QString path, const SaveRequest& request) {
  while (true) {
    DocumentFile::Target target = file_.KeepReplaced(path);
    if (!target.not_kept || (file_.IsAsRead(path) && HoldsWholeFile())) return target;
    const QString not_kept = FileMessages::NotKept(*target.not_kept);
    if (request.caller == SaveRequest::Caller::AutoSave) {
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
        path = AskForPath(global_, SaveTexts(), request);
        if (!path.isEmpty()) break;
        [[fallthrough]];
      default:
        return std::nullopt;
    }
  }
}

bool DocumentWindow::Write(const DocumentFile::Target& target, TextFormat* format, const PartProducer& produce) {
  FileSteps system;
  const DocumentFile::Written written =
      file_.Write(target, format, produce, global_.file_steps ? *global_.file_steps : system);
  if (written.failure) {
    ShowWriteFailure(target.path, *written.failure);
    return false;
  }
  notice_bar_->EndUntilSave();
  for (const FileMessages::Notice& notice : FileMessages::OfWrite(file_, target, written)) {
    std::vector<NoticeAction> buttons;
    if (notice.leads_to_history) buttons.push_back(FileHistoryButton());
    AddNotice(notice.text, std::move(buttons), notice.life);
  }
  return true;
}

}  // namespace tme
