#pragma once

#include <QTextTableFormat>
#include <cstdint>
#include <utility>
#include <vector>

#include "windows/rich/RtfShape.h"
#include "windows/rich/RtfStore.h"

namespace tme {

/// Rows of a table of the file, laid out as a table of a view.
struct RtfGrid {
  /// Where a cell stands in the view's table.
  struct Place {
    int row = 0;
    int column = 0;
    int rows = 1;
    int columns = 1;
  };

  /// first, last: in shape.RowsOf(table), the last one not included.
  RtfGrid(const rtf::RtfDocument& source, const RtfShape& shape, std::uint32_t table, std::size_t first,
          std::size_t last);

  /// Of the view's table.
  QTextTableFormat Format() const;

  RtfStore::KeptTable kept;  ///< without columns when there are no cells
  std::vector<std::pair<std::uint32_t, Place>> places;
  std::vector<int> edges;  ///< of the columns, in twips, where the cells have them

 private:
  void PlaceRow(const rtf::RtfDocument& source, const std::vector<std::uint32_t>& cells, int row);

  std::vector<int> taken_to_;  ///< by merged cells, per column: the first free row
};

}  // namespace tme
