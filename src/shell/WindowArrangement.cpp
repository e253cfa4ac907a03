#include "shell/WindowArrangement.h"

#include <algorithm>
#include <cmath>

namespace tme {

std::vector<QRect> TileRects(int count, QSize area, Arrangement direction) {
  std::vector<QRect> rects;
  if (count <= 0) return rects;
  const int short_side = static_cast<int>(std::sqrt(count));
  const int columns = direction == Arrangement::TileHorizontally ? short_side : count / short_side;
  for (int column = 0; column < columns; ++column) {
    // The windows that do not fill the grid evenly go to the last columns.
    const int left = area.width() * column / columns;
    const int right = area.width() * (column + 1) / columns;
    const int first = count * column / columns;
    const int rows = count * (column + 1) / columns - first;
    for (int row = 0; row < rows; ++row) {
      const int top = area.height() * row / rows;
      const int bottom = area.height() * (row + 1) / rows;
      rects.emplace_back(left, top, right - left, bottom - top);
    }
  }
  return rects;
}

QPoint CascadeOrigin(int place, QSize area, int step, QSize window) {
  const QSize room = area - window;
  const int steps = std::max(0, std::min(room.width(), room.height()) / std::max(1, step)) + 1;
  return QPoint(1, 1) * (place % steps * step);
}

std::vector<QPoint> IconOrigins(int count, QSize area, QSize icon) {
  const int columns = std::max(1, area.width() / std::max(1, icon.width()));
  std::vector<QPoint> origins;
  for (int index = 0; index < count; ++index)
    origins.emplace_back(index % columns * icon.width(), area.height() - (index / columns + 1) * icon.height());
  return origins;
}

}  // namespace tme
