#include "windows/text/TextPadAccessible.h"

#include "windows/text/TextPad.h"

namespace tme {

TextPadAccessible::TextPadAccessible(TextPad& pad) : QAccessibleWidget(&pad, QAccessible::EditableText), pad_(pad) {}

void TextPadAccessible::Install() {
  QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
    auto* pad = qobject_cast<TextPad*>(object);
    return pad ? new TextPadAccessible(*pad) : nullptr;
  });
}

void* TextPadAccessible::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
  return QAccessibleWidget::interface_cast(type);
}

QAccessible::State TextPadAccessible::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.multiLine = state.selectableText = true;
  state.readOnly = pad_.SendScintilla(QsciScintillaBase::SCI_GETREADONLY) != 0;
  state.editable = !state.readOnly;
  return state;
}

void TextPadAccessible::selection(int index, int* start, int* end) const {
  const bool exists = index < selectionCount();
  *start = exists ? pad_.OffsetOf(pad_.SelectionStart()) : 0;
  *end = exists ? pad_.OffsetOf(pad_.SelectionEnd()) : 0;
}

int TextPadAccessible::selectionCount() const { return pad_.SelectionStart() == pad_.SelectionEnd() ? 0 : 1; }

void TextPadAccessible::addSelection(int start, int end) { setSelection(0, start, end); }

void TextPadAccessible::removeSelection(int) { pad_.Select(pad_.SelectionEnd(), pad_.SelectionEnd()); }

void TextPadAccessible::setSelection(int, int start, int end) {
  pad_.Select(pad_.PositionOf(start), pad_.PositionOf(end));
}

int TextPadAccessible::cursorPosition() const { return pad_.OffsetOf(pad_.Caret()); }

void TextPadAccessible::setCursorPosition(int offset) { setSelection(0, offset, offset); }

QString TextPadAccessible::text(int start, int end) const {
  return pad_.TextBetween(pad_.PositionOf(start), pad_.PositionOf(end));
}

QString TextPadAccessible::textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                                            int* end) const {
  textAtOffset(offset, type, start, end);
  if (*start > 0) return textAtOffset(*start - 1, type, start, end);
  *end = *start;
  return {};
}

QString TextPadAccessible::textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const {
  textAtOffset(offset, type, start, end);
  if (*end < characterCount()) return textAtOffset(*end, type, start, end);
  *start = *end;
  return {};
}

QString TextPadAccessible::textAtOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const {
  const TextPad::Range range = pad_.UnitAround(pad_.PositionOf(offset), type);
  *start = pad_.OffsetOf(range.start);
  *end = pad_.OffsetOf(range.end);
  return pad_.TextBetween(range.start, range.end);
}

int TextPadAccessible::characterCount() const { return pad_.OffsetOf(pad_.End()); }

QRect TextPadAccessible::characterRect(int offset) const { return pad_.RectOf(pad_.PositionOf(offset)); }

int TextPadAccessible::offsetAtPoint(const QPoint& global) const { return pad_.OffsetOf(pad_.PositionAt(global)); }

void TextPadAccessible::scrollToSubstring(int start, int end) {
  pad_.Reveal(pad_.PositionOf(start), pad_.PositionOf(end));
}

QString TextPadAccessible::attributes(int, int* start, int* end) const {
  *start = 0;
  *end = characterCount();
  return {};
}

}  // namespace tme
