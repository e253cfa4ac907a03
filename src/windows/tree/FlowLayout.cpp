#include "windows/tree/FlowLayout.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace tme {

FlowLayout::~FlowLayout() = default;

QLayoutItem* FlowLayout::itemAt(int index) const {
  return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
  if (index < 0 || index >= count()) return nullptr;
  const auto at = items_.begin() + index;
  QLayoutItem* item = at->release();
  items_.erase(at);
  return item;
}

void FlowLayout::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  Arrange(rect, Placing::Done);
}

QSize FlowLayout::sizeHint() const {
  const QMargins margins = contentsMargins();
  QSize size(0, 0);
  for (const auto& item : items_)
    if (!item->isEmpty())
      size = {size.width() + item->sizeHint().width() + spacing(), std::max(size.height(), item->sizeHint().height())};
  return size.grownBy(margins);
}

QSize FlowLayout::minimumSize() const {
  QSize size(0, 0);
  for (const auto& item : items_)
    if (!item->isEmpty()) size = size.expandedTo(item->minimumSize());
  return size.grownBy(contentsMargins());
}

int FlowLayout::PlaceRow(const std::vector<QLayoutItem*>& row, const QRect& rect, Placing placing) const {
  int used = 0, height = 0, growing = 0;
  for (const QLayoutItem* item : row) {
    used += item->sizeHint().width() + spacing();
    height = std::max(height, item->sizeHint().height());
    growing += item->expandingDirections().testFlag(Qt::Horizontal) ? 1 : 0;
  }
  if (placing == Placing::Measured) return height;
  const int left = std::max(0, rect.width() - used + spacing());
  int x = rect.left();
  for (QLayoutItem* item : row) {
    int width = item->sizeHint().width();
    if (growing > 0 && item->expandingDirections().testFlag(Qt::Horizontal)) width += left / growing;
    width = std::min(width, rect.width());
    const QRect place(x, rect.top() + (height - item->sizeHint().height()) / 2, width, item->sizeHint().height());
    item->setGeometry(QStyle::visualRect(parentWidget()->layoutDirection(), rect, place));
    x += width + spacing();
  }
  return height;
}

int FlowLayout::Arrange(const QRect& rect, Placing placing) const {
  const QMargins margins = contentsMargins();
  QRect room = rect.marginsRemoved(margins);
  std::vector<QLayoutItem*> row;
  int used = 0;
  const auto end_row = [&] {
    if (row.empty()) return;
    room.setTop(room.top() + PlaceRow(row, room, placing) + spacing());
    row.clear();
    used = 0;
  };
  const int top = room.top();
  for (const auto& item : items_) {
    if (item->isEmpty()) continue;
    const int width = item->sizeHint().width();
    if (used + width > room.width()) end_row();
    row.push_back(item.get());
    used += width + spacing();
  }
  end_row();
  return std::max(0, room.top() - top - spacing()) + margins.top() + margins.bottom();
}

}  // namespace tme
