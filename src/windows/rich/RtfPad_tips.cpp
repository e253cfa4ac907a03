// What RtfPad draws over its text, and says of the place under the mouse.

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
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
  ShowTipLines(help.globalPos(), TipAt(help.pos()).split(u'\n'), viewport());
  return true;
}

/// A click on a link says where it leads, and opens nothing.
void RtfPad::mouseReleaseEvent(QMouseEvent* event) {
  QTextEdit::mouseReleaseEvent(event);
  if (event->button() != Qt::LeftButton || textCursor().hasSelection()) return;
  const QPoint point = event->position().toPoint();
  if (!anchorAt(point).isEmpty())
    ShowTipLines(event->globalPosition().toPoint(), TipAt(point).split(u'\n'), viewport());
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
  const int position = mark.isEmpty() ? CharacterAt(point + Scrolled()) : -1;
  if (position < 0 || position >= document()->characterCount() - 1) return mark;
  QTextCursor cursor(document());
  cursor.setPosition(position + 1);
  const QString tip = TipOf(cursor.charFormat());
  const QString target = cursor.charFormat().anchorHref();
  if (target.isEmpty() || !RtfPartText::IsOtherAddress(LinkText(cursor), target)) return tip;
  return tip + u'\n' + tr("Its text looks like another address");
}

int RtfPad::CharacterAt(const QPointF& point) const {
  const QAbstractTextDocumentLayout& layout = *document()->documentLayout();
  const int nearest = layout.hitTest(point, Qt::ExactHit);
  const QTextBlock block = document()->findBlock(nearest);
  if (nearest < 0 || !block.isValid()) return -1;
  const QPointF place = point - layout.blockBoundingRect(block).topLeft();
  for (int number = 0; number < block.layout()->lineCount(); ++number) {
    const QTextLine line = block.layout()->lineAt(number);
    if (place.y() < line.y() + line.height())
      return block.position() + line.xToCursor(place.x(), QTextLine::CursorOnCharacter);
  }
  return nearest;
}

QString RtfPad::LinkText(const QTextCursor& cursor) {
  const QString target = cursor.charFormat().anchorHref();
  QString text;
  for (QTextBlock::iterator it = cursor.block().begin(); !it.atEnd(); ++it) {
    const QTextFragment run = it.fragment();
    if (run.charFormat().anchorHref() == target) {
      text += run.text();
    } else if (run.position() >= cursor.position()) {
      break;
    } else {
      text.clear();
    }
  }
  return text;
}

QString RtfPad::LinkAtCaret() const {
  QTextCursor after = textCursor();
  if (!after.atBlockEnd()) after.movePosition(QTextCursor::Right);
  const QString before = textCursor().charFormat().anchorHref();
  return before.isEmpty() ? after.charFormat().anchorHref() : before;
}

QString RtfPad::TipOf(const QTextCharFormat& format) const {
  const QString tip = objects_->TipOf(format);
  if (!tip.isEmpty()) return tip;
  if (format.anchorHref().isEmpty()) return FieldTip(format);
  return tr("Link, which is not opened here") + u'\n' + RtfPartText::Shown(format.anchorHref().toStdString());
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
