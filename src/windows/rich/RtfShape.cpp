#include "windows/rich/RtfShape.h"

#include <algorithm>

namespace tme {

RtfShape::RtfShape(const rtf::RtfDocument& source)
    : source_(source),
      rows_of_table_(source.tables.size()),
      cells_of_row_(source.rows.size()),
      bytes_(source.paragraphs.size()),
      depth_(source.tables.size(), 1),
      shown_depth_(source.tables.size(), kMaxShownDepth),
      is_flat_(source.tables.size(), 0),
      cost_(source.rows.size()) {
  for (std::size_t row = 0; row < source.rows.size(); ++row)
    rows_of_table_[source.rows[row].table].push_back(static_cast<std::uint32_t>(row));
  for (std::size_t cell = 0; cell < source.cells.size(); ++cell)
    cells_of_row_[source.cells[cell].row].push_back(static_cast<std::uint32_t>(cell));
  Measure();
  Flatten();
}

std::int32_t RtfShape::CellAround(std::int32_t cell) const {
  const std::int32_t around = source_.tables[TableOf(cell)].parent_cell;
  // A cell comes before those of the tables in it; anything else would go round in a circle.
  return around < cell ? around : -1;
}

void RtfShape::Measure() {
  std::vector<std::uint32_t> outermost_row(source_.tables.size());  // around each table in a table
  for (std::uint32_t table = 0; table < source_.tables.size(); ++table) {
    if (rows_of_table_[table].empty() || cells_of_row_[rows_of_table_[table].front()].empty()) continue;
    const auto first = static_cast<std::int32_t>(cells_of_row_[rows_of_table_[table].front()].front());
    const std::int32_t around = CellAround(first);
    // An outer table stands before those in it.
    if (around < 0 || TableOf(around) >= table) continue;
    const std::uint32_t outer = TableOf(around);
    depth_[table] = depth_[outer] + 1;
    outermost_row[table] =
        depth_[outer] == 1 ? source_.cells[static_cast<std::size_t>(around)].row : outermost_row[outer];
  }
  for (std::size_t paragraph = 0; paragraph < source_.paragraphs.size(); ++paragraph) {
    const std::size_t end = source_.EndOfRuns(paragraph);
    for (std::size_t run = source_.paragraphs[paragraph].first_run; run < end; ++run)
      bytes_[paragraph] += source_.runs[run].bytes;
    const std::int32_t cell = source_.paragraphs[paragraph].cell;
    if (cell < 0) continue;
    const std::uint32_t table = TableOf(cell);
    const auto depth = static_cast<std::size_t>(depth_[table]);
    std::vector<std::size_t>& cost =
        cost_[depth == 1 ? source_.cells[static_cast<std::size_t>(cell)].row : outermost_row[table]];
    if (cost.size() < depth) cost.resize(depth);
    cost[depth - 1] += bytes_[paragraph] + kCostOfCell + RunsOf(paragraph) * kCostOfRun;
  }
}

std::size_t RtfShape::CostOf(std::uint32_t row, int depth) const {
  std::size_t cost = 0;
  for (std::size_t level = 1; level <= cost_[row].size(); ++level)
    cost += cost_[row][level - 1] << std::min<std::size_t>(level, static_cast<std::size_t>(depth));
  return cost;
}

int RtfShape::ShownDepth(std::uint32_t table) {
  int depth = kMaxShownDepth;
  for (const std::uint32_t row : rows_of_table_[table])
    while (depth > 0 && CostOf(row, depth) > kMaxCostAtOnce) --depth;
  if (depth == 0) return 0;
  const auto beyond_two = [this, table](int shown) {
    std::size_t cost = 0;
    for (const std::uint32_t row : rows_of_table_[table]) cost += CostOf(row, shown) - CostOf(row, 2);
    return cost;
  };
  while (depth > 2 && beyond_two(depth) > depth_allowed_) --depth;
  if (depth > 2) depth_allowed_ -= beyond_two(depth);
  // Rows that a cell stands in the whole of are not parted.
  std::size_t row = 0;
  for (const std::size_t end : Split(table, depth)) {
    std::size_t cost = 0;
    for (; row < end; ++row) cost += CostOf(rows_of_table_[table][row], depth);
    if (cost > kMaxCostAtOnce) return 0;
  }
  return depth;
}

void RtfShape::Flatten() {
  std::vector<std::uint32_t> outermost(source_.tables.size());
  for (std::uint32_t table = 0; table < source_.tables.size(); ++table) {
    outermost[table] = table;
    if (depth_[table] == 1) {
      shown_depth_[table] = ShownDepth(table);
    } else {
      const auto first = static_cast<std::int32_t>(cells_of_row_[rows_of_table_[table].front()].front());
      outermost[table] = outermost[TableOf(CellAround(first))];
    }
    is_flat_[table] = depth_[table] > shown_depth_[outermost[table]] ? 1 : 0;
  }
}

std::size_t RtfShape::FlatTables() const {
  return static_cast<std::size_t>(std::count(is_flat_.begin(), is_flat_.end(), std::uint8_t{1}));
}

std::vector<std::size_t> RtfShape::PartsOf(std::uint32_t table) const {
  if (depth_[table] > 1) return {rows_of_table_[table].size()};
  return Split(table, shown_depth_[table]);
}

std::vector<std::size_t> RtfShape::Split(std::uint32_t table, int depth) const {
  const std::vector<std::uint32_t>& rows = rows_of_table_[table];
  std::vector<std::size_t> ends;
  std::size_t cost = 0, covered = 0;  // by cells that reach over several rows
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const std::size_t more = CostOf(rows[row], depth);
    if (cost > 0 && cost + more > kCostOfPart && covered <= row) {
      ends.push_back(row);
      cost = 0;
    }
    cost += more;
    for (const std::uint32_t cell : cells_of_row_[rows[row]])
      covered = std::max(covered, row + source_.cells[cell].row_span);
  }
  ends.push_back(rows.size());
  return ends;
}

}  // namespace tme
