// The editing and format commands of form_RTF.

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include "documents/rtf/RtfReader.h"
#include "files/CodePage.h"
#include "shell/Global.h"
#include "shell/LongWork.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "system/CommonDialog.h"
#include "windows/rich/RtfClipboard.h"
#include "windows/rich/RtfPad.h"
#include "windows/rich/form_RTF.h"

namespace tme {
namespace {

/// Font dialog: screen and printer fonts (CF_BOTH of commdlg.h).
constexpr int kScreenAndPrinterFonts = 3;
constexpr int kSizeStep = 2;
/// Marked-up text beyond this is pasted as plain text: laying it out would take minutes.
constexpr qsizetype kMaxHtml = qsizetype{8} << 20;

}  // namespace

void form_RTF::EditCopy() {
  const WaitCursor wait_cursor;
  QClipboard* clipboard = QGuiApplication::clipboard();
  clipboard->clear();
  if (pad->textCursor().hasSelection())
    clipboard->setMimeData(RtfMimeData(pad->SelectedRtf(), pad->SelectedText()).release());
}

void form_RTF::EditPaste() {
  const WaitCursor wait_cursor;
  if (const QMimeData* held = QGuiApplication::clipboard()->mimeData()) Paste(*held);
}

void form_RTF::Paste(const QMimeData& source) {
  if (const QByteArray rtf = RtfOf(source); !rtf.isEmpty()) {
    const std::string_view bytes(rtf.constData(), static_cast<std::size_t>(rtf.size()));
    rtf::RtfDocument read = rtf::ReadRtf(bytes, BytesToUtf8);
    LongWork work(&global_.frame, tr("Pasting"));
    const std::optional<RtfSimplified> simplified = pad->ReplaceSelectionWithRtf(std::move(read), StepOf(work));
    if (simplified) AddSimplifiedNotice(*simplified);
    return;
  }
  const QString html = source.hasHtml() ? source.html() : QString();
  if (!html.isEmpty() && html.size() <= kMaxHtml) {
    LongWork work(&global_.frame, tr("Pasting"));
    const std::optional<RtfSimplified> simplified = pad->ReplaceSelectionWithHtml(html, StepOf(work));
    if (simplified) AddSimplifiedNotice(*simplified);
    return;
  }
  if (source.hasText()) return PastePlainText(source.text());
  if (const QByteArray picture = PictureOf(source); !picture.isEmpty()) pad->ReplaceSelectionWithPicture(picture);
}

void form_RTF::PastePlainText(const QString& text) {
  if (!text.isEmpty()) pad->ReplaceSelection(text);
}

void form_RTF::EditPasteSpecialPlainText() {
  const WaitCursor wait_cursor;
  PastePlainText(QGuiApplication::clipboard()->text());
}

void form_RTF::FontSizeDown() {
  if (const std::optional<double> size = pad->SelectionFontSize())
    pad->SetSelectionFontSize(*size - kSizeStep);
  else if (fallback_font_size_ >= 3)
    pad->SetSelectionFontSize(fallback_font_size_ - kSizeStep);
}

void form_RTF::FontSizeUp() {
  pad->SetSelectionFontSize(pad->SelectionFontSize().value_or(fallback_font_size_) + kSizeStep);
}

void form_RTF::FormatFont() {
  CommonDialog& dialog = global_.common_dialog;
  dialog.title = tr("Select Font and Attributes");
  dialog.flags = kScreenAndPrinterFonts;
  dialog.ShowFont();
  const RtfPad::LargeEdit edit(*pad);
  QTextCursor one_step = pad->textCursor();
  one_step.beginEditBlock();
  if (!dialog.font_name.isEmpty()) pad->SetSelectionFontName(dialog.font_name);
  if (dialog.font_size > 0) pad->SetSelectionFontSize(dialog.font_size);
  pad->SetSelectionBold(dialog.font_bold);
  pad->SetSelectionItalic(dialog.font_italic);
  pad->SetSelectionUnderline(dialog.font_underline);
  pad->SetSelectionStrikeThru(dialog.font_strikethru);
  one_step.endEditBlock();
  UpdateFormatState();
}

void form_RTF::FormatColor() {
  CommonDialog& dialog = global_.common_dialog;
  dialog.title = tr("Choose Color for Font");
  dialog.ShowColor();
  pad->SetSelectionColor(dialog.color);
}

// The negation of a selection that mixes both sets it.

void form_RTF::FormatBold() {
  pad->SetSelectionBold(pad->SelectionBold() != true);
  UpdateFormatState();
}

void form_RTF::FormatItalic() {
  pad->SetSelectionItalic(pad->SelectionItalic() != true);
  UpdateFormatState();
}

void form_RTF::FormatUnderline() {
  pad->SetSelectionUnderline(pad->SelectionUnderline() != true);
  UpdateFormatState();
}

void form_RTF::FormatBulleted() {
  pad->SetSelectionBullet(pad->SelectionBullet() != true);
  UpdateFormatState();
}

}  // namespace tme
