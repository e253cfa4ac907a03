// Saving a document that is held whole in another form.
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

bool TreeDocumentWindow::FitsOrIsAgreed(TextFormat& format) {
  const WaitCursor wait_cursor;
  const QString why = MisfitOf(format);
  if (why.isEmpty()) return true;
  EncodeText(DocumentFile::BytesOf(nullptr, Producer()), format);
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
  const std::size_t position = Document().EditPosition();
  {
    const EditableDocument::Step step(Document(), EditName::Convert);
    if (form->kind != present.kind) BecomeKind(form->kind);
    SetLineEnds(form->line_ends);
    const auto put = [this](const TextFormat& as) { return [this, as] { file_.SetFormat(as); }; };
    if (format.encoding != before.format.encoding) AddFormatStep(put(before.format), put(format));
    file_.SetFormat(format);
  }
  if (Save({.chosen_path = path}) == SaveOutcome::Saved) return;
  if (Document().EditPosition() != position + 1) return PutBack(before);
  EditUndo();
  MarkAs(before);
}

}  // namespace tme
