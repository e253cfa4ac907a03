#include "windows/tree/DocumentTreeView.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <vector>

namespace tme {
namespace {

/// QTreeView lays out expanded levels by recursion; 100,000 of them overflow the stack.
constexpr int kMaxDepth = 1000;

bool CanHaveChildren(const QModelIndex& index) { return !index.flags().testFlag(Qt::ItemNeverHasChildren); }

/// The next sibling in a direction that can have children.
QModelIndex NextSibling(const QModelIndex& index, int step) {
  QModelIndex next = index.siblingAtRow(index.row() + step);
  while (next.isValid() && !CanHaveChildren(next)) next = next.siblingAtRow(next.row() + step);
  return next;
}

QModelIndex PreviousGroup(const QModelIndex& index) {
  const QModelIndex previous = NextSibling(index, -1);
  return previous.isValid() ? previous : index.parent();
}

QModelIndex NextGroup(QModelIndex index) {
  // The root has no siblings.
  if (index.isValid() && !index.parent().isValid()) {
    const QModelIndex first = index.model()->index(0, 0, index);
    return !first.isValid() || CanHaveChildren(first) ? first : NextSibling(first, 1);
  }
  for (; index.isValid(); index = index.parent())
    if (const QModelIndex next = NextSibling(index, 1); next.isValid()) return next;
  return {};
}

bool IsBelow(QModelIndex index, const QModelIndex& top) {
  while (index.isValid() && index != top) index = index.parent();
  return index.isValid();
}

}  // namespace

DocumentTreeView::DocumentTreeView(QWidget* parent) : RowDragView(parent) {
  setObjectName(QStringLiteral("TV"));
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setContextMenuPolicy(Qt::CustomContextMenu);
  // The width of what is in sight, so that a million rows cost no more than thirty.
  header()->setStretchLastSection(false);
  header()->setResizeContentsPrecision(0);
  header()->setMinimumSectionSize(0);
  connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { FitColumn(Width::Grows); });
  connect(this, &QTreeView::collapsed, this, &DocumentTreeView::DeselectBelow);
}

void DocumentTreeView::reset() {
  QTreeView::reset();
  FitColumn(Width::MayShrink);
}

void DocumentTreeView::keyPressEvent(QKeyEvent* event) {
  constexpr Qt::KeyboardModifiers kCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  const bool command = event->modifiers().testAnyFlags(kCommands);
  switch (event->key()) {
    case Qt::Key_Asterisk:
    case Qt::Key_Plus:
    case Qt::Key_Minus:
    case Qt::Key_Space:
      // With Ctrl, a blank would leave nothing selected.
      if (command) return event->ignore();
      break;
    case Qt::Key_Up:
    case Qt::Key_Down:
      if ((event->modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier) {
        const QModelIndex next = event->key() == Qt::Key_Up ? PreviousGroup(currentIndex()) : NextGroup(currentIndex());
        if (next.isValid()) selectionModel()->setCurrentIndex(next, QItemSelectionModel::ClearAndSelect);
        return;
      }
      break;
    default:
      break;
  }
  if (event->key() != Qt::Key_Asterisk) return RowDragView::keyPressEvent(event);
  ExpandBelow(currentIndex());
}

void DocumentTreeView::ExpandBelow(const QModelIndex& index) {
  struct Open {
    QModelIndex index;
    int depth;
  };
  // Rows are laid out once, and rows without children need not be remembered as expanded.
  scheduleDelayedItemsLayout();
  std::vector<Open> open{{index, 0}};
  while (!open.empty()) {
    const auto [parent, depth] = open.back();
    open.pop_back();
    setExpanded(parent, true);
    const int count = depth < kMaxDepth ? model()->rowCount(parent) : 0;
    for (int row = 0; row < count; ++row)
      if (const QModelIndex child = model()->index(row, 0, parent); model()->hasChildren(child))
        open.push_back({child, depth + 1});
  }
}

void DocumentTreeView::DeselectBelow(const QModelIndex& collapsed) {
  const QItemSelection& before = selectionModel()->selection();
  if (before.isEmpty() || (before.size() == 1 && before.first().height() == 1)) return;
  QItemSelection left;
  for (const QItemSelectionRange& range : before)
    if (!IsBelow(range.parent(), collapsed)) left.append(range);
  if (left.size() == before.size()) return;
  if (left.isEmpty()) left.select(currentIndex(), currentIndex());
  selectionModel()->select(left, QItemSelectionModel::ClearAndSelect);
}

void DocumentTreeView::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  FitColumn(Width::MayShrink);
}

void DocumentTreeView::updateGeometries() {
  QTreeView::updateGeometries();
  FitColumn(Width::Grows);
}

QItemSelectionModel::SelectionFlags DocumentTreeView::selectionCommand(const QModelIndex& index,
                                                                       const QEvent* event) const {
  if (!index.isValid()) return QItemSelectionModel::NoUpdate;
  // Ctrl may be held for the shortcut of a command.
  if (event == nullptr) return QItemSelectionModel::ClearAndSelect;
  // Commands go by the current row and by the selected ones, so no key leaves the two apart.
  const bool is_key = event->type() == QEvent::KeyPress;
  if (is_key && (static_cast<const QKeyEvent*>(event)->modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier)
    return QItemSelectionModel::ClearAndSelect;
  const QItemSelectionModel::SelectionFlags command = QTreeView::selectionCommand(index, event);
  const QItemSelection& selected = selectionModel()->selection();
  const bool is_last = selected.size() == 1 && selected.first().height() == 1 && selected.contains(index);
  return is_last && command.testFlag(QItemSelectionModel::Toggle) ? QItemSelectionModel::NoUpdate : command;
}

void DocumentTreeView::FitColumn(Width change) {
  if (!model() || !isVisible()) return;
  int width = std::max(sizeHintForColumn(0), viewport()->width());
  if (change == Width::Grows) width = std::max(width, header()->sectionSize(0));
  if (width != header()->sectionSize(0)) header()->resizeSection(0, width);
}

}  // namespace tme
