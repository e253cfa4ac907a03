#pragma once

#include "windows/tree/RowDragView.h"

namespace tme {

/// A tree view as the document windows use it: one column, no header, several rows selected, edited in place where the
/// window asks for it, and no work per node that is out of sight. The column is as wide as the view, and as what is or
/// was in sight.
class DocumentTreeView : public RowDragView {
  Q_OBJECT

 public:
  explicit DocumentTreeView(QWidget* parent);
  void reset() override;
  /// Expands the index and what lies below it, down to a depth that a layout by recursion can take.
  void ExpandBelow(const QModelIndex& index);

 protected:
  /// The asterisk expands what lies below the current row. Ctrl with an arrow goes to the next row that can have
  /// children, on the same level or above.
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void updateGeometries() override;
  /// A click beside the rows leaves the selection alone, since commands go by it; so does taking the last row out of
  /// it.
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override;

 private:
  /// Scrolling must not make the width jump: there it only grows.
  enum class Width { Grows, MayShrink };
  void FitColumn(Width change);
  /// What is collapsed leaves a selection of several rows, since nobody sees it.
  void DeselectBelow(const QModelIndex& collapsed);
};

}  // namespace tme
