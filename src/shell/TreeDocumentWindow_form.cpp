// Saving a document that is held whole in another form.
#include "base/LineReader.h"
#include "files/TextEncoder.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "shell/SaveForm.h"
#include "shell/TreeDocumentWindow.h"
#include "shell/WaitCursor.h"
#include "system/Dialogs.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString NameOfEncoding(TextEncoding encoding) { return QString::fromUtf8(EncodingName(encoding)); }

/// The first line that the encoding has no place for, from 1; 0 for none.
struct UnfitLine {
  qulonglong number = 0;
  std::string_view text;
};
UnfitLine FirstUnfitLine(std::string_view text, const TextFormat& format) {
  LineReader lines(text);
  UnfitLine found;
  for (std::string_view line; lines.Next(line);) {
    ++found.number;
    found.text = line;
    if (!TextEncoder(format).Encode(line)) return found;
  }
  return {};
}

}  // namespace

bool TreeDocumentWindow::FitsOrIsAgreed(TextFormat& format) {
  const WaitCursor wait_cursor;
  std::string text = DocumentFile::BytesOf(nullptr, Producer());
  const TextFormat wanted = format;
  EncodeText(text, format);
  if (format.encoding == wanted.encoding) return true;
  const UnfitLine unfit = FirstUnfitLine(text, wanted);
  const QString why =
      unfit.number > 0
          ? tr("%1 has no place for a character of line %2:\r%3")
                .arg(NameOfEncoding(wanted.encoding), QString::number(unfit.number),
                     DisplayText(unfit.text, kMaxCharactersInMessage))
          : tr("Bytes of this text in %1 would be read as another encoding.").arg(NameOfEncoding(wanted.encoding));
  return global_.dialogs.Choose(why, {tr("&Save as %1").arg(NameOfEncoding(format.encoding)), tr("Cancel")},
                                MsgIcon::Question, tr("Save As Another Form")) == 0;
}

void TreeDocumentWindow::SaveAsAnotherForm() {
  if (GetHolding() != Holding::Whole) return;
  const SaveForm present{PresentKind(), file_.Format().encoding, UsedLineEnds()};
  const std::optional<SaveForm> form = AskForSaveForm(this, FormKinds(), present);
  if (!form || (form->kind != present.kind && !ConfirmKind(form->kind))) return;
  TextFormat format = FormatToWrite();
  if (form->encoding != format.encoding) format = {form->encoding, {}, format.fallback};
  if (!FitsOrIsAgreed(format)) return;
  const QString path = AskForSavePath(global_, SaveTexts());
  if (path.isEmpty()) return;
  const Held before{Content(), IsModified(), file_.IsChanged()};
  if (form->kind != present.kind) BecomeKind(form->kind);
  SetLineEnds(form->line_ends);
  file_.SetFormat(format);
  if (Save({.chosen_path = path}) != SaveOutcome::Saved) PutBack(before);
}

}  // namespace tme
