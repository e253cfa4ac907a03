#include "windows/tree/HitList.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScopedValueRollback>

#include "windows/tree/HitListModel.h"
#include "windows/tree/TreeFinder.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Of the width, in per cent, so that the data are in sight.
constexpr int kNameShare = 25, kPathShare = 25, kDataShare = 30;

}  // namespace

HitList::HitList(TreeFinder& finder, QWidget* parent)
    : QTreeView(parent), finder_(finder), rows_(new HitListModel(finder, this)) {
  setObjectName(u"hit_list"_s);
  setAccessibleName(tr("All hits"));
  setRootIsDecorated(false);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setEditTriggers(NoEditTriggers);
  setModel(rows_);
  setItemDelegate(new HitMarks([this](const QModelIndex& index, qsizetype) { return rows_->MarksOf(index); }, this));
  header()->setSectionsMovable(false);
  // By the rows in sight, or a million would be measured.
  header()->setResizeContentsPrecision(0);
  ShowColumns();
  connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this](const QItemSelection& selected) {
    if (!is_following_ && !selected.isEmpty()) finder_.Show(static_cast<std::size_t>(selected.first().top()));
  });
  connect(this, &QTreeView::doubleClicked, this,
          [this](const QModelIndex& index) { emit Chosen(static_cast<std::size_t>(index.row())); });
  connect(&finder_, &TreeFinder::Progressed, this, &HitList::Follow);
  connect(&finder_, &TreeFinder::Restarted, this, &HitList::ShowColumns);
  Follow();
}

void HitList::ShowColumns() {
  setColumnHidden(HitListModel::Document, finder_.Query().scope == FindScope::ThisDocument);
}

void HitList::Follow() {
  const std::optional<std::size_t> present = finder_.Chosen();
  if (!present || *present >= static_cast<std::size_t>(rows_->rowCount())) return clearSelection();
  const QModelIndex index = rows_->index(static_cast<int>(*present), 0);
  if (selectionModel()->isSelected(index)) return;
  const QScopedValueRollback following(is_following_, true);
  setCurrentIndex(index);
}

void HitList::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  const int old_width = event->oldSize().width(), width = event->size().width();
  if (old_width == width) return;
  const auto resize_column = [&](HitListModel::Column column, int share) {
    const int before = old_width > 0 ? header()->sectionSize(column) : share;
    header()->resizeSection(column, before * width / (old_width > 0 ? old_width : 100));
  };
  resize_column(HitListModel::Name, kNameShare);
  resize_column(HitListModel::Path, kPathShare);
  resize_column(HitListModel::Data, kDataShare);
}

void HitList::keyPressEvent(QKeyEvent* event) {
  const bool is_enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!is_enter || !currentIndex().isValid()) return QTreeView::keyPressEvent(event);
  emit Chosen(static_cast<std::size_t>(currentIndex().row()));
}

}  // namespace tme
