// What RtfPad says of the place under the mouse.

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextCursor>

#include "documents/rtf/RtfContents.h"
#include "files/CodePage.h"
#include "shell/PlainText.h"
#include "windows/rich/RtfObjectView.h"
#include "windows/rich/RtfPad.h"
#include "windows/rich/RtfPartText.h"

using namespace Qt::StringLiterals;

namespace tme {

bool RtfPad::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QTextEdit::viewportEvent(event);
  const auto& help = *static_cast<QHelpEvent*>(event);
  ShowTip(help.globalPos(), TipAt(help.pos()), viewport());
  return true;
}

/// A click on a link says where it leads, and opens nothing.
void RtfPad::mouseReleaseEvent(QMouseEvent* event) {
  QTextEdit::mouseReleaseEvent(event);
  if (event->button() != Qt::LeftButton || textCursor().hasSelection()) return;
  const QPoint point = event->position().toPoint();
  if (!anchorAt(point).isEmpty()) ShowTip(event->globalPosition().toPoint(), TipAt(point), viewport());
}

QString RtfPad::TipAt(const QPoint& point) const {
  const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
  const int position = document()->documentLayout()->hitTest(point + scrolled, Qt::ExactHit);
  if (position < 0 || position >= End()) return {};
  QTextCursor cursor(document());
  cursor.setPosition(position + 1);
  return TipOf(cursor.charFormat());
}

QString RtfPad::TipOf(const QTextCharFormat& format) const {
  const QString tip = objects_->TipOf(format);
  if (!tip.isEmpty()) return tip;
  return format.anchorHref().isEmpty() ? FieldTip(format) : format.anchorHref();
}

QString RtfPad::FieldTip(const QTextCharFormat& format) const {
  const int number = format.intProperty(kCharFormat);
  if (number <= 0) return {};
  const rtf::RtfDocument& document = store_->document;
  const rtf::Field* field =
      rtf::EntryOf(document.fields, document.char_formats[static_cast<std::size_t>(number) - 1].field);
  if (!field) return {};
  const rtf::Contents contents = rtf::ListContents(field->instruction, BytesToUtf8);
  if (!contents.IsActive()) return {};
  return tr("A field, which is not carried out here") + u'\n' + RtfPartText::Tip(contents.parts.front());
}

}  // namespace tme
