#pragma once

#include <QMimeData>
#include <QPointer>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "windows/tree/TreeDocumentWindow.h"

class QModelIndex;

namespace tme {

/// Rows of a tree window that are dragged; each kind of document adds what they stand for. Other programs get their
/// lines as text, once they ask for them.
class DraggedRows : public QMimeData {
 public:
  /// lines: their text; empty where they have none.
  DraggedRows(TreeDocumentWindow& from, std::size_t count, std::function<std::string()> lines)
      : from_(&from), revision_(from.Revision()), count_(count), lines_(std::move(lines)) {}

  /// Null when the window is gone or the document has changed, so that nothing is known of the rows any more.
  TreeDocumentWindow* From() const;
  std::size_t Count() const { return count_; }

  /// What is to be done with them once the drag is over, since that may take long.
  void SetPlan(std::function<void()> plan) const { plan_ = std::move(plan); }
  /// Does it. True when there was something to do.
  bool CarryOut() const;

  QStringList formats() const override;

 protected:
  QVariant retrieveData(const QString& format, QMetaType type) const override;

 private:
  const QPointer<TreeDocumentWindow> from_;
  const std::uint64_t revision_;
  const std::size_t count_;
  const std::function<std::string()> lines_;
  mutable std::function<void()> plan_;
};

/// Whether rows can be dropped at a place.
struct DropAnswer {
  bool is_yes = false;
  /// Why not, for people; empty where they see it.
  QString reason = {};
};

/// What a view does when its rows are dragged and when rows are dropped on it.
struct RowDragging {
  /// The selected rows; null where they cannot be dragged.
  std::function<std::unique_ptr<DraggedRows>()> rows;
  /// at: the row below the pointer; not valid beside the rows. Is asked once for each row that the pointer comes to.
  std::function<DropAnswer(const DraggedRows& rows, Qt::DropAction action, const QModelIndex& at)> answer;
  /// Only after a yes, and for rows whose window is there.
  std::function<void(const DraggedRows& rows, Qt::DropAction action, const QModelIndex& at)> take;
};

}  // namespace tme
