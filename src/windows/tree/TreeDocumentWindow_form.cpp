// Saving a document that is held whole in another form.
#include "base/LineReader.h"
#include "files/TextEncoder.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "shell/WaitCursor.h"
#include "system/Dialogs.h"
#include "windows/tree/SaveForm.h"
#include "windows/tree/TreeDocumentWindow.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString NameOfEncoding(TextEncoding encoding) { return QString::fromUtf8(EncodingName(encoding)); }

}  // namespace

QString TreeDocumentWindow::UnfitLine(const TextFormat& format) {
  TextEncoder encoder(format);
  if (Producer()([&encoder](std::string_view part) { return encoder.Encode(part).has_value(); })) return {};
  const std::string text = DocumentFile::BytesOf(nullptr, Producer());
  LineReader lines(text);
  for (std::string_view line; lines.Next(line);)
    if (!TextEncoder(format).Encode(line))
      return tr("line %1:\r%2").arg(QString::number(lines.Number()), DisplayText(line, kMaxCharactersInMessage));
  return {};
}

bool TreeDocumentWindow::FitsOrIsAgreed(TextFormat& format) {
  const WaitCursor wait_cursor;
  const TextFormat wanted = format;
  EncodeText(DocumentFile::BytesOf(nullptr, Producer()), format);
  if (format.encoding == wanted.encoding) return true;
  const QString unfit = UnfitLine(wanted), name = NameOfEncoding(wanted.encoding);
  const QString why = unfit.isEmpty() ? tr("This text in %1 would be read as another encoding.").arg(name)
                                      : tr("There is no place in %1 for a character of %2").arg(name, unfit);
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
  const Held before = HeldNow();
  if (form->kind != present.kind) BecomeKind(form->kind);
  SetLineEnds(form->line_ends);
  file_.SetFormat(format);
  if (Save({.chosen_path = path}) != SaveOutcome::Saved) PutBack(before);
}

}  // namespace tme
