#include "windows/tree/RowDragView.h"

#include <QDrag>
#include <QDropEvent>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOption>
#include <QTimerEvent>

#include "shell/PlainText.h"

namespace tme {
namespace {

constexpr int kExpandAfterMs = 700;
constexpr int kScrollEachMs = 60;
constexpr int kPictureMargin = 3;

const DraggedRows* RowsOf(const QDropEvent& event) {
  const auto* rows = dynamic_cast<const DraggedRows*>(event.mimeData());
  return rows != nullptr && rows->From() != nullptr ? rows : nullptr;
}

}  // namespace

RowDragView::RowDragView(QWidget* parent) : QTreeView(parent) {
  setDragDropMode(QAbstractItemView::DragDrop);
  setDefaultDropAction(Qt::MoveAction);
}

void RowDragView::startDrag(Qt::DropActions) {
  std::unique_ptr<DraggedRows> rows = RowsToDrag();
  if (!rows) return;
  const std::unique_ptr<QLabel> picture(
      PlainLabel(rows->Count() == 1 ? currentIndex().data().toString()
                                    : tr("%1 rows").arg(QLocale().toString(static_cast<qulonglong>(rows->Count()))),
                 nullptr));
  picture->setMargin(kPictureMargin);
  picture->setMaximumWidth(viewport()->width());
  auto* drag = new QDrag(this);
  const QPointer<DraggedRows> dragged = rows.get();
  drag->setMimeData(rows.release());
  drag->setPixmap(picture->grab());
  drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
  if (dragged) dragged->CarryOut();
}

void RowDragView::dragEnterEvent(QDragEnterEvent* event) { event->setAccepted(RowsOf(*event) != nullptr); }

void RowDragView::dragMoveEvent(QDragMoveEvent* event) {
  const DraggedRows* rows = RowsOf(*event);
  if (rows == nullptr) return event->ignore();
  const DropAnswer& answer = Ask(*rows, *event);
  event->setAccepted(answer.is_yes);
  // It stays for a while when the rows are let go.
  ShowTip(viewport()->mapToGlobal(pointer_), answer.reason, this);
  if (!scroll_timer_.isActive()) scroll_timer_.start(kScrollEachMs, this);
}

const DropAnswer& RowDragView::Ask(const DraggedRows& rows, const QDropEvent& event) {
  pointer_ = event.position().toPoint();
  const QModelIndex at = indexAt(pointer_);
  if (hovered_ != at || !answer_ || action_ != event.dropAction()) {
    if (hovered_ != at || !answer_) expand_timer_.start(kExpandAfterMs, this);
    hovered_ = at;
    action_ = event.dropAction();
    answer_ = dragging_.answer(rows, action_, at);
    viewport()->update();
  }
  return *answer_;
}

void RowDragView::dragLeaveEvent(QDragLeaveEvent*) { EndHover(); }

void RowDragView::dropEvent(QDropEvent* event) {
  const DraggedRows* rows = RowsOf(*event);
  const bool is_taken = rows != nullptr && Ask(*rows, *event).is_yes;
  event->setAccepted(is_taken);
  if (is_taken) {
    const auto plan = [this, rows, action = action_, has_place = hovered_.isValid(), place = hovered_] {
      if (place.isValid() == has_place) dragging_.take(*rows, action, place);
    };
    rows->SetPlan(plan);
  }
  EndHover();
}

void RowDragView::EndHover() {
  expand_timer_.stop();
  scroll_timer_.stop();
  answer_.reset();
  hovered_ = QModelIndex();
  viewport()->update();
}

void RowDragView::timerEvent(QTimerEvent* event) {
  if (event->timerId() == scroll_timer_.timerId()) return ScrollAtEdge();
  if (event->timerId() != expand_timer_.timerId()) return QTreeView::timerEvent(event);
  expand_timer_.stop();
  if (hovered_.isValid()) expand(hovered_);
}

void RowDragView::ScrollAtEdge() {
  const auto step = [margin = autoScrollMargin()](int at, int size) {
    return at < margin ? -1 : at >= size - margin ? 1 : 0;
  };
  QScrollBar* bar = verticalScrollBar();
  bar->setValue(bar->value() + step(pointer_.y(), viewport()->height()) * bar->singleStep());
}

void RowDragView::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if (!answer_ || !answer_->is_yes) return;
  QStyleOption option;
  option.initFrom(this);
  option.rect = viewport()->rect();
  if (hovered_.isValid()) {
    option.rect.setTop(visualRect(hovered_).top());
    option.rect.setHeight(visualRect(hovered_).height());
  }
  QPainter painter(viewport());
  style()->drawPrimitive(QStyle::PE_IndicatorItemViewItemDrop, &option, &painter, this);
}

}  // namespace tme
