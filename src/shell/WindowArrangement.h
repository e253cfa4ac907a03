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

/// Top left corners (pixels) of a cascade: each `step` further right and down, starting over at the corner when fewer
/// than `room` pixels would be left.
std::vector<QPoint> CascadeOrigins(int count, QSize area, int step, QSize room);

/// Places of minimised windows: rows from the bottom left up.
std::vector<QPoint> IconOrigins(int count, QSize area, QSize icon);

}  // namespace tme
