#pragma once

#include <QBasicTimer>
#include <QPersistentModelIndex>
#include <QTreeView>
#include <memory>
#include <optional>

#include "windows/tree/RowDrag.h"

namespace tme {

/// A view whose rows can be dragged and dropped on: they are moved, and with Ctrl copied. It marks the row below the
/// pointer, scrolls at its edges, expands a row that the pointer stays on, and says why rows cannot be dropped. No move
/// of the mouse costs more for many selected rows. Its model says which rows can be dragged.
class RowDragView : public QTreeView {
  Q_OBJECT

 public:
  explicit RowDragView(QWidget* parent);
  /// To be called once.
  void SetDragging(RowDragging dragging) { dragging_ = std::move(dragging); }
  std::unique_ptr<DraggedRows> RowsToDrag() const { return dragging_.rows(); }

 protected:
  void startDrag(Qt::DropActions actions) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  /// The answer for where the pointer is.
  const DropAnswer& Ask(const DraggedRows& rows, const QDropEvent& event);
  void EndHover();
  void ScrollAtEdge();

  RowDragging dragging_;
  /// The row that was asked about, and for what.
  QPersistentModelIndex hovered_;
  Qt::DropAction action_ = Qt::IgnoreAction;
  std::optional<DropAnswer> answer_;
  QPoint pointer_;  ///< in the viewport
  QBasicTimer expand_timer_;
  QBasicTimer scroll_timer_;
};

}  // namespace tme
