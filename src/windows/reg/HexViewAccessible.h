#pragma once

#include <QAccessibleWidget>

namespace tme {

class HexView;

/// A hex view as screen readers see it: an editable text with a line for each row. Nothing is made but what is asked
/// for.
class HexViewAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
 public:
  explicit HexViewAccessible(HexView& view);
  /// Makes Qt ask this class; can be called again.
  static void Install();

  void* interface_cast(QAccessible::InterfaceType type) override;
  QAccessible::State state() const override;
  /// As a value, the cursor's row.
  QString text(QAccessible::Text kind) const override;

  void selection(int index, int* start, int* end) const override;
  int selectionCount() const override;
  void addSelection(int start, int end) override { setSelection(0, start, end); }
  void removeSelection(int index) override;
  void setSelection(int index, int start, int end) override;
  int cursorPosition() const override;
  void setCursorPosition(int offset) override { setSelection(0, offset, offset); }
  QString text(int start, int end) const override;
  /// Each kind of unit is a row, but for single characters.
  QString textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override;
  QString textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override;
  QString textAtOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override;
  int characterCount() const override;
  QRect characterRect(int offset) const override;
  int offsetAtPoint(const QPoint& global) const override;
  void scrollToSubstring(int start, int end) override;
  QString attributes(int offset, int* start, int* end) const override;

 private:
  int OffsetOf(qsizetype byte) const;
  qsizetype ByteOf(int offset) const;

  HexView& view_;
};

}  // namespace tme
