#include "windows/rich/RtfFlatTables.h"

#include <algorithm>

namespace tme {

int RtfFlatKeeper::NumberOf(std::int32_t cell) {
  if (numbers_.empty()) numbers_.resize(source_.cells.size(), 0);
  int& number = numbers_[static_cast<std::size_t>(cell)];
  if (number > 0) return number;
  const std::int32_t around = shape_.CellAround(cell);
  const bool is_inside_flat = around >= 0 && shape_.IsFlat(shape_.TableOf(around));
  const std::int32_t parent = is_inside_flat ? NumberOf(around) - 1 : -1;
  for (const std::uint32_t row : shape_.RowsOf(shape_.TableOf(cell))) {
    const auto begin = static_cast<std::uint32_t>(flat_.cells.size());
    for (const std::uint32_t each : shape_.CellsOf(row)) {
      flat_.cells.push_back(source_.cells[each]);
      flat_.cells.back().row = static_cast<std::uint32_t>(flat_.rows.size());
      numbers_[each] = static_cast<int>(flat_.cells.size());
    }
    const auto end = static_cast<std::uint32_t>(flat_.cells.size());
    flat_.rows.push_back({static_cast<std::uint32_t>(flat_.parents.size()), begin, end, source_.rows[row].definition});
  }
  flat_.parents.push_back(parent);
  return number;
}

std::int32_t AddCell(rtf::RtfDocument& document, std::uint32_t row, rtf::Cell cell) {
  cell.row = row;
  document.cells.push_back(cell);
  return static_cast<std::int32_t>(document.cells.size() - 1);
}

void AddEmptyParagraph(rtf::RtfDocument& document, std::int32_t cell) {
  document.paragraphs.push_back({static_cast<std::uint32_t>(document.runs.size()), 0, 0, cell});
}

std::int32_t RtfFlatExport::CellOf(std::int32_t flat_cell, std::int32_t around) {
  if (!open_.empty() && open_.back().flat_cell == flat_cell) return open_.back().cell;
  path_.clear();
  for (std::int32_t cell = flat_cell; cell >= 0; cell = flat_.parents[RowOf(cell).table]) path_.push_back(cell);
  std::reverse(path_.begin(), path_.end());
  for (std::size_t level = 0; level < path_.size(); ++level) {
    const std::int32_t wanted = path_[level];
    if (level < open_.size()) {
      Open& open = open_[level];
      if (open.flat_cell == wanted) continue;
      const bool goes_on = RowOf(open.flat_cell).table == RowOf(wanted).table && open.flat_cell < wanted;
      CloseTo(goes_on ? level + 1 : level);
      if (goes_on) {
        GoTo(open, wanted);
        continue;
      }
    }
    const std::int32_t parent = level > 0 ? open_[level - 1].cell : around;
    document_.tables.push_back({parent});
    open_.push_back({wanted, static_cast<std::uint32_t>(document_.tables.size() - 1), 0, 0});
    BeginRow(open_.back(), wanted);
  }
  CloseTo(path_.size());
  return open_.back().cell;
}

void RtfFlatExport::Skip(const Open& open, std::uint32_t from, std::uint32_t to) {
  for (; from < to; ++from) AddEmptyParagraph(document_, AddCell(document_, open.row, flat_.cells[from]));
}

void RtfFlatExport::BeginRow(Open& open, std::int32_t flat_cell) {
  const RtfStore::FlatTables::Row& row = RowOf(flat_cell);
  document_.rows.push_back({open.table, row.definition});
  open.row = static_cast<std::uint32_t>(document_.rows.size() - 1);
  Skip(open, row.first_cell, static_cast<std::uint32_t>(flat_cell));
  open.flat_cell = flat_cell;
  open.cell = AddCell(document_, open.row, flat_.cells[static_cast<std::size_t>(flat_cell)]);
}

void RtfFlatExport::GoTo(Open& open, std::int32_t flat_cell) {
  const RtfStore::FlatTables::Row& row = RowOf(open.flat_cell);
  const auto next = static_cast<std::uint32_t>(open.flat_cell) + 1, wanted = static_cast<std::uint32_t>(flat_cell);
  Skip(open, next, std::min(wanted, row.end_cell));
  if (wanted >= row.end_cell) return BeginRow(open, flat_cell);
  open.flat_cell = flat_cell;
  open.cell = AddCell(document_, open.row, flat_.cells[wanted]);
}

void RtfFlatExport::CloseTo(std::size_t levels) {
  for (; open_.size() > levels; open_.pop_back())
    Skip(open_.back(), static_cast<std::uint32_t>(open_.back().flat_cell) + 1, RowOf(open_.back().flat_cell).end_cell);
}

}  // namespace tme
