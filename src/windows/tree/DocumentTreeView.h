#pragma once

#include <QTreeView>

namespace tme {

/// A tree view as the document windows use it: one column, no header, nothing edited in place, and no work per node
/// that is out of sight. The column is as wide as the view, and as what is or was in sight.
class DocumentTreeView : public QTreeView {
  Q_OBJECT

 public:
  explicit DocumentTreeView(QWidget* parent);
  void reset() override;

 protected:
  /// The asterisk expands what lies below the current row, down to a depth that a layout by recursion can take.
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void updateGeometries() override;
  /// A click beside the rows leaves the selection alone, since commands go by it.
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override;

 private:
  /// Scrolling must not make the width jump: there it only grows.
  enum class Width { Grows, MayShrink };
  void FitColumn(Width change);
};

}  // namespace tme
