#include "windows/tree/DocumentTreeView.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

namespace tme {
namespace {

/// QTreeView lays out expanded levels by recursion; 100,000 of them overflow the stack.
constexpr int kMaxDepth = 1000;

}  // namespace

DocumentTreeView::DocumentTreeView(QWidget* parent) : QTreeView(parent) {
  setObjectName(QStringLiteral("TV"));
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setContextMenuPolicy(Qt::CustomContextMenu);
  // The width of what is in sight, so that a million rows cost no more than thirty.
  header()->setStretchLastSection(false);
  header()->setResizeContentsPrecision(0);
  header()->setMinimumSectionSize(0);
  connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { FitColumn(Width::Grows); });
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
    default:
      break;
  }
  if (event->key() != Qt::Key_Asterisk) return QTreeView::keyPressEvent(event);
  expandRecursively(currentIndex(), kMaxDepth);
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
  return index.isValid() ? QTreeView::selectionCommand(index, event) : QItemSelectionModel::NoUpdate;
}

void DocumentTreeView::FitColumn(Width change) {
  if (!model() || !isVisible()) return;
  int width = std::max(sizeHintForColumn(0), viewport()->width());
  if (change == Width::Grows) width = std::max(width, header()->sectionSize(0));
  if (width != header()->sectionSize(0)) header()->resizeSection(0, width);
}

}  // namespace tme
