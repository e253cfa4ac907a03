// What RtfPad draws over its text, and says of the place under the mouse.

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
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

void RtfPad::paintEvent(QPaintEvent* event) {
  QTextEdit::paintEvent(event);
  QPainter painter(viewport());
  painter.translate(-Scrolled());
  traces_.Draw(painter, *document(), event->rect().translated(Scrolled()), RtfTraces::Medium::Screen);
}

QPoint RtfPad::Scrolled() const {
  const QScrollBar& bar = *horizontalScrollBar();
  return {isRightToLeft() ? bar.maximum() - bar.value() : bar.value(), verticalScrollBar()->value()};
}

QString RtfPad::TipAt(const QPoint& point) const {
  const QString mark = traces_.TipAt(point + Scrolled());
  const int position = document()->documentLayout()->hitTest(point + Scrolled(), Qt::ExactHit);
  if (!mark.isEmpty() || position < 0 || position >= End()) return mark;
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
