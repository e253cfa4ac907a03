#include "windows/reg/HexViewAccessible.h"

#include <algorithm>

#include "windows/reg/HexView.h"

namespace tme {
namespace {

constexpr int kLine = HexView::kRowCharacters + 1;  // with its line end

}  // namespace

HexViewAccessible::HexViewAccessible(HexView& view)
    : QAccessibleWidget(&view, QAccessible::EditableText), view_(view) {}

void HexViewAccessible::Install() {
  static const bool is_installed = [] {
    QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
      auto* view = qobject_cast<HexView*>(object);
      return view ? new HexViewAccessible(*view) : nullptr;
    });
    return true;
  }();
  Q_UNUSED(is_installed);
}

void* HexViewAccessible::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
  return QAccessibleWidget::interface_cast(type);
}

QAccessible::State HexViewAccessible::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.multiLine = state.selectableText = state.editable = true;
  return state;
}

QString HexViewAccessible::text(QAccessible::Text kind) const {
  if (kind == QAccessible::Value) return view_.RowText(view_.Cursor() / HexView::kRowBytes);
  return QAccessibleWidget::text(kind);
}

int HexViewAccessible::OffsetOf(qsizetype byte) const {
  const auto in_row = static_cast<int>(byte % HexView::kRowBytes);
  return static_cast<int>(byte / HexView::kRowBytes) * kLine + HexView::CharacterOf(in_row, view_.ActiveColumn());
}

qsizetype HexViewAccessible::ByteOf(int offset) const {
  const int character = offset % kLine;
  int in_row = HexView::kRowBytes - 1;
  while (in_row > 0 && HexView::CharacterOf(in_row, view_.ActiveColumn()) > character) --in_row;
  return std::min<qsizetype>(qsizetype{offset / kLine} * HexView::kRowBytes + in_row, view_.Bytes().size());
}

void HexViewAccessible::selection(int index, int* start, int* end) const {
  const bool exists = index < selectionCount();
  *start = exists ? OffsetOf(view_.SelectionStart()) : 0;
  *end = exists ? OffsetOf(view_.SelectionEnd()) : 0;
}

int HexViewAccessible::selectionCount() const { return view_.SelectionStart() == view_.SelectionEnd() ? 0 : 1; }

void HexViewAccessible::removeSelection(int) { view_.Select(view_.Cursor(), view_.Cursor()); }

void HexViewAccessible::setSelection(int, int start, int end) { view_.Select(ByteOf(start), ByteOf(end)); }

int HexViewAccessible::cursorPosition() const { return OffsetOf(view_.Cursor()); }

QString HexViewAccessible::text(int start, int end) const {
  QString text;
  start = std::max(start, 0);
  end = std::min(end, characterCount());
  for (int row = start / kLine; row * kLine < end; ++row) text += view_.RowText(row) + u'\n';
  return start < end ? text.mid(start % kLine, end - start) : QString();
}

QString HexViewAccessible::textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                                            int* end) const {
  textAtOffset(offset, type, start, end);
  if (*start > 0) return textAtOffset(*start - 1, type, start, end);
  *end = *start;
  return {};
}

QString HexViewAccessible::textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const {
  textAtOffset(offset, type, start, end);
  if (*end < characterCount()) return textAtOffset(*end, type, start, end);
  *start = *end;
  return {};
}

QString HexViewAccessible::textAtOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const {
  const bool is_character = type == QAccessible::CharBoundary;
  *start = is_character ? offset : offset - offset % kLine;
  *end = std::min(*start + (is_character ? 1 : kLine), characterCount());
  return text(*start, *end);
}

int HexViewAccessible::characterCount() const { return static_cast<int>(view_.RowCount()) * kLine; }

QRect HexViewAccessible::characterRect(int offset) const {
  const QRect rect = view_.RectOf(ByteOf(offset), view_.ActiveColumn());
  return {view_.viewport()->mapToGlobal(rect.topLeft()), rect.size()};
}

int HexViewAccessible::offsetAtPoint(const QPoint& global) const {
  return OffsetOf(view_.ByteAt(view_.viewport()->mapFromGlobal(global)));
}

void HexViewAccessible::scrollToSubstring(int start, int) { view_.Reveal(ByteOf(start)); }

QString HexViewAccessible::attributes(int, int* start, int* end) const {
  *start = 0;
  *end = characterCount();
  return {};
}

}  // namespace tme
