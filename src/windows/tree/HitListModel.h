#pragma once

#include <QAbstractTableModel>
#include <QElapsedTimer>

#include "windows/tree/HitMarks.h"
#include "windows/tree/TreeFinder.h"

namespace tme {

/// The hits of a finder, a row each. Rows are made when they are shown.
class HitListModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { Name, Path, Data, Document, ColumnCount };

  explicit HitListModel(TreeFinder& finder, QObject* parent = nullptr);

  /// The hit of a row, marked where it stands.
  std::vector<MarkedRange> MarksOf(const QModelIndex& index) const;

  int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : row_count_; }
  int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : ColumnCount; }
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  /// A row as it is shown.
  struct ShownRow {
    int row = -1;
    QString texts[ColumnCount];
    int hit_column = 0;
    MarkedRange mark{};
  };

  void Empty();
  /// Takes what was found since.
  void Follow();
  const ShownRow& Shown(int row) const;

  TreeFinder& finder_;
  int row_count_ = 0;
  QElapsedTimer since_followed_;
  /// The columns of a row are asked for in turn.
  mutable ShownRow shown_;
};

}  // namespace tme
