#pragma once

#include <QAccessibleWidget>

namespace tme {

class TextPad;

/// What a screen reader sees of a TextPad. Offsets are UTF-16 units, counted by line with an index that the pad keeps
/// from the first question on, so that none of them walks through the text: 100 MB answer as fast as a page does.
class TextPadAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
 public:
  explicit TextPadAccessible(TextPad& pad);
  /// Has TextPads answered for by this class; once for the program is enough, more do no harm.
  static void Install();

  void* interface_cast(QAccessible::InterfaceType type) override;
  using QAccessibleWidget::text;
  QAccessible::State state() const override;

  void selection(int index, int* start, int* end) const override;
  int selectionCount() const override;
  void addSelection(int start, int end) override;
  void removeSelection(int index) override;
  void setSelection(int index, int start, int end) override;
  int cursorPosition() const override;
  void setCursorPosition(int offset) override;
  QString text(int start, int end) const override;
  QString textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override;
  QString textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override;
  QString textAtOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override;
  int characterCount() const override;
  QRect characterRect(int offset) const override;
  int offsetAtPoint(const QPoint& global) const override;
  void scrollToSubstring(int start, int end) override;
  QString attributes(int offset, int* start, int* end) const override;

 private:
  TextPad& pad_;
};

}  // namespace tme
