#include "windows/rich/RtfGrid.h"

#include <algorithm>
#include <set>
#include <string>

#include "system/Twips.h"

namespace tme {
namespace {

// A table is laid out on the edges of all its rows; one that would need far more places than it has cells is not.
constexpr std::size_t kMaxPlacesPerCell = 4;
constexpr std::size_t kPlacesAlwaysTaken = 4000;
constexpr int kCellPadding = 70;  // twips
constexpr double kLeastColumnUnits = 8;

}  // namespace

RtfGrid::RtfGrid(const rtf::RtfDocument& source, const RtfShape& shape, std::uint32_t table, std::size_t first,
                 std::size_t last) {
  const std::vector<std::uint32_t>& rows = shape.RowsOf(table);
  std::set<int> all_edges;
  std::size_t cell_count = 0, longest = 0;
  bool ordered = true;
  for (std::size_t row = first; row < last; ++row) {
    const std::vector<std::uint32_t>& cells = shape.CellsOf(rows[row]);
    if (cells.empty()) continue;
    RtfStore::KeptRow& kept_row = kept.rows.emplace_back();
    kept_row.definition = source.rows[rows[row]].definition;
    int left = 0;
    for (const std::uint32_t cell : cells) {
      kept_row.cells.push_back(source.cells[cell]);
      ordered = ordered && source.cells[cell].right_edge > left;
      left = source.cells[cell].right_edge;
      all_edges.insert(left);
    }
    cell_count += cells.size();
    longest = std::max(longest, cells.size());
  }
  const std::size_t room = all_edges.size() * kept.rows.size();
  if (ordered && room <= std::max(cell_count * kMaxPlacesPerCell, kPlacesAlwaysTaken))
    edges.assign(all_edges.begin(), all_edges.end());
  kept.columns = static_cast<int>(edges.empty() ? longest : edges.size());
  taken_to_.assign(static_cast<std::size_t>(kept.columns), 0);
  int row_number = 0;
  for (std::size_t row = first; row < last; ++row)
    if (const std::vector<std::uint32_t>& cells = shape.CellsOf(rows[row]); !cells.empty())
      PlaceRow(source, cells, row_number++);
}

void RtfGrid::PlaceRow(const rtf::RtfDocument& source, const std::vector<std::uint32_t>& cells, int row) {
  const auto rows = static_cast<int>(kept.rows.size());
  int column = 0;
  for (std::size_t index = 0; index < cells.size(); ++index) {
    const rtf::Cell& cell = source.cells[cells[index]];
    if (cell.column_span == 0) continue;  // its place is the one before's
    const std::size_t last = std::min(index + cell.column_span, cells.size()) - 1;
    int end = column + static_cast<int>(last - index) + 1;
    if (!edges.empty()) {
      const int edge = source.cells[cells[last]].right_edge;
      end = static_cast<int>(std::lower_bound(edges.begin(), edges.end(), edge) - edges.begin()) + 1;
    } else if (last + 1 == cells.size()) {
      end = kept.columns;
    }
    const bool is_free =
        std::all_of(taken_to_.begin() + column, taken_to_.begin() + end, [row](int free) { return free <= row; });
    if (cell.row_span > 0 && is_free) {
      const int span = std::clamp<int>(cell.row_span, 1, rows - row);
      places.push_back({cells[index], {row, column, span, end - column}});
      std::fill(taken_to_.begin() + column, taken_to_.begin() + end, row + span);
    }
    column = end;
  }
}

QTextTableFormat RtfGrid::Format() const {
  const bool has_borders = std::any_of(kept.rows.begin(), kept.rows.end(), [](const RtfStore::KeptRow& row) {
    return row.definition.empty() || row.definition.find("brdrs") != std::string::npos;
  });
  QTextTableFormat format;
  format.setCellSpacing(0);
  format.setCellPadding(TwipsToUnits(kCellPadding));
  format.setBorder(1);
  format.setBorderCollapse(true);
  format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
  format.setBorderBrush(has_borders ? QColor(0x40, 0x48, 0x50) : QColor(0xd8, 0xdc, 0xe0));
  QList<QTextLength> widths;
  int left = 0;
  for (const int edge : edges) {
    widths.append(QTextLength(QTextLength::FixedLength, std::max(TwipsToUnits(edge - left), kLeastColumnUnits)));
    left = edge;
  }
  if (!widths.isEmpty()) format.setColumnWidthConstraints(widths);
  return format;
}

}  // namespace tme
