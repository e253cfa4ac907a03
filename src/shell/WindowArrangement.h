#pragma once

#include <QRect>
#include <QSize>
#include <vector>

namespace tme {

/// The Window menu's arrangements, by their codes.
enum class Arrangement { Cascade = 0, TileHorizontally = 1, TileVertically = 2, ArrangeIcons = 3 };

/// Rectangles (pixels) for tiling `count` windows over an area without gaps. Horizontally: up to three stand one above
/// the other, each over the whole width; vertically: side by side. More of them form a grid.
std::vector<QRect> TileRects(int count, QSize area, Arrangement direction);

/// Top left corner (pixels) of the n-th window of a cascade, from 0: each `step` further right and down, starting over
/// at the corner where a window of this size would leave the area.
QPoint CascadeOrigin(int place, QSize area, int step, QSize window);

/// Places of minimised windows: rows from the bottom left up.
std::vector<QPoint> IconOrigins(int count, QSize area, QSize icon);

}  // namespace tme
