#pragma once

#include <QStyledItemDelegate>
#include <functional>
#include <vector>

namespace tme {

/// A part of a text that is shown, in UTF-16 units.
struct MarkedRange {
  qsizetype start;
  qsizetype size;
};
/// The parts that are to be marked of what an index shows, in their order; those that start behind this many units may
/// be left out. Asked for what is painted alone.
using MarksOfIndex = std::function<std::vector<MarkedRange>(const QModelIndex& index, qsizetype units)>;

/// Draws the items of a view as any view does, with parts of their texts marked. Texts are plain.
class HitMarks : public QStyledItemDelegate {
  Q_OBJECT

 public:
  /// marks: none where this is empty.
  HitMarks(MarksOfIndex marks, QObject* parent) : QStyledItemDelegate(parent), marks_(std::move(marks)) {}
  void SetMarks(MarksOfIndex marks) { marks_ = std::move(marks); }

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  MarksOfIndex marks_;
};

}  // namespace tme
