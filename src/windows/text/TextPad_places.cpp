// Places in a TextPad as assistive programs and input methods count and see them.
#include "shell/DisplayText.h"
#include "windows/text/TextPad.h"

namespace tme {

void TextPad::NeedLineIndex() const {
  if (Send(SCI_GETLINECHARACTERINDEX) == SC_LINECHARACTERINDEX_NONE)
    Send(SCI_ALLOCATELINECHARACTERINDEX, SC_LINECHARACTERINDEX_UTF16);
}

int TextPad::OffsetOf(PadPosition position) const {
  NeedLineIndex();
  const auto line = static_cast<std::uintptr_t>(Send(SCI_LINEFROMPOSITION, static_cast<std::uintptr_t>(position)));
  const auto line_start = static_cast<std::uintptr_t>(Send(SCI_POSITIONFROMLINE, line));
  return static_cast<int>(Send(SCI_INDEXPOSITIONFROMLINE, line, SC_LINECHARACTERINDEX_UTF16) +
                          Send(SCI_COUNTCODEUNITS, line_start, position));
}

PadPosition TextPad::PositionOf(int offset) const {
  NeedLineIndex();
  const auto line = static_cast<std::uintptr_t>(
      Send(SCI_LINEFROMINDEXPOSITION, static_cast<std::uintptr_t>(std::max(offset, 0)), SC_LINECHARACTERINDEX_UTF16));
  const std::intptr_t into = std::max(offset, 0) - Send(SCI_INDEXPOSITIONFROMLINE, line, SC_LINECHARACTERINDEX_UTF16);
  const std::intptr_t line_start = Send(SCI_POSITIONFROMLINE, line);
  if (into == 0) return line_start;
  // 0 for a place behind the text.
  const std::intptr_t position = Send(SCI_POSITIONRELATIVECODEUNITS, static_cast<std::uintptr_t>(line_start), into);
  return position > line_start ? position : End();
}

QString TextPad::TextBetween(PadPosition start, PadPosition end) const { return TextOf(BytesBetween(start, end)); }

TextPad::Range TextPad::UnitAround(PadPosition position, QAccessible::TextBoundaryType type) const {
  const auto at = static_cast<std::uintptr_t>(position);
  switch (type) {
    case QAccessible::CharBoundary:
      return GraphemeAround(position);
    case QAccessible::WordBoundary: {
      const PadPosition start = Send(SCI_WORDSTARTPOSITION, at, 0), end = Send(SCI_WORDENDPOSITION, at, 0);
      return {start, end > position ? end : Moved(position, 1)};
    }
    case QAccessible::NoBoundary:
      return {0, End()};
    default: {
      const std::intptr_t line = Send(SCI_LINEFROMPOSITION, at);
      const std::intptr_t next = Send(SCI_POSITIONFROMLINE, static_cast<std::uintptr_t>(line + 1));
      return {Send(SCI_POSITIONFROMLINE, static_cast<std::uintptr_t>(line)), next < 0 ? End() : next};
    }
  }
}

PadPosition TextPad::Caret() const { return Send(SCI_GETCURRENTPOS); }

QRect TextPad::RectOf(PadPosition position) const {
  const auto left = static_cast<int>(Send(SCI_POINTXFROMPOSITION, 0, position));
  const auto right = static_cast<int>(Send(SCI_POINTXFROMPOSITION, 0, GraphemeAround(position).end));
  const auto top = static_cast<int>(Send(SCI_POINTYFROMPOSITION, 0, position));
  const auto line = static_cast<std::uintptr_t>(Send(SCI_LINEFROMPOSITION, static_cast<std::uintptr_t>(position)));
  const QPoint corner = viewport()->mapToGlobal(QPoint(left, top));
  return {corner, QSize(std::max(right - left, 1), static_cast<int>(Send(SCI_TEXTHEIGHT, line)))};
}

PadPosition TextPad::PositionAt(const QPoint& global) const {
  const QPoint point = viewport()->mapFromGlobal(global);
  return Send(SCI_POSITIONFROMPOINT, static_cast<std::uintptr_t>(std::max(point.x(), 0)), point.y());
}

QVariant TextPad::inputMethodQuery(Qt::InputMethodQuery query) const {
  // The component would answer with the paragraph, which may be all of a file, at each move of the caret.
  constexpr int kCharacters = 500;
  const PadPosition caret = Caret();
  const auto line = static_cast<std::uintptr_t>(Send(SCI_LINEFROMPOSITION, static_cast<std::uintptr_t>(caret)));
  const PadPosition start = std::max<PadPosition>(Send(SCI_POSITIONFROMLINE, line), Moved(caret, -kCharacters));
  switch (query) {
    case Qt::ImSurroundingText:
      return TextBetween(start, std::min<PadPosition>(Send(SCI_GETLINEENDPOSITION, line), Moved(caret, kCharacters)));
    case Qt::ImCursorPosition:
      return static_cast<int>(TextBetween(start, caret).size());
    case Qt::ImCurrentSelection:
      return SelectionEnd() - SelectionStart() > kCharacters ? QString() : SelectedText();
    default:
      return QsciScintillaBase::inputMethodQuery(query);
  }
}

void TextPad::Reveal(PadPosition start, PadPosition end) {
  Send(SCI_SCROLLRANGE, static_cast<std::uintptr_t>(end), start);
}

}  // namespace tme
