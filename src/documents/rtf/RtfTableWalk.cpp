#include "documents/rtf/RtfTableWalk.h"

#include <algorithm>

namespace tme::rtf {

RtfTableWalk::RtfTableWalk(const RtfDocument& document, Listener& listener)
    : document_(document),
      listener_(listener),
      first_cell_(document.rows.size() + 1),
      cells_(document.cells.size()),
      place_(document.cells.size()) {
  for (std::size_t cell = 0; cell < document.cells.size(); ++cell)
    place_[cell] = first_cell_[document.cells[cell].row + 1]++;
  for (std::size_t row = 0; row < document.rows.size(); ++row) first_cell_[row + 1] += first_cell_[row];
  for (std::uint32_t cell = 0; cell < document.cells.size(); ++cell)
    cells_[first_cell_[document.cells[cell].row] + place_[cell]] = cell;
}

void RtfTableWalk::FindPath(std::int32_t cell) {
  path_.clear();
  while (cell >= 0) {
    path_.push_back(static_cast<std::uint32_t>(cell));
    const std::int32_t parent = document_.tables[document_.rows[RowOf(path_.back())].table].parent_cell;
    // A cell comes before those of the tables in it; anything else would go round in a circle.
    cell = parent < cell ? parent : -1;
  }
  std::reverse(path_.begin(), path_.end());
}

void RtfTableWalk::SkipCells(std::uint32_t from, std::uint32_t to) {
  for (std::uint32_t place = from; place < to; ++place) listener_.EmptyCell(open_.size() - 1);
}

void RtfTableWalk::Enter(const Paragraph& paragraph) {
  const bool is_open = open_.empty() ? paragraph.cell < 0 : static_cast<std::int32_t>(open_.back()) == paragraph.cell;
  if (is_open) return;
  FindPath(paragraph.cell);
  for (std::size_t depth = open_.size(); depth < path_.size(); ++depth) {
    const std::uint32_t cell = path_[depth];
    open_.push_back(cell);
    listener_.BeginRow(RowOf(cell), depth);
    SkipCells(0, place_[cell]);
  }
}

bool RtfTableWalk::NextStandsIn(std::size_t depth) const {
  return depth < path_.size() && path_[depth] == open_[depth];
}

/// Takes the next paragraph's cell when it follows the one just ended in the same row.
bool RtfTableWalk::GoOnInRow(std::size_t depth) {
  if (depth >= path_.size() || RowOf(path_[depth]) != RowOf(open_[depth])) return false;
  const std::uint32_t ended = place_[open_[depth]];
  const std::uint32_t next = place_[path_[depth]];
  if (next <= ended) return false;
  SkipCells(ended + 1, next);
  open_[depth] = path_[depth];
  return true;
}

bool RtfTableWalk::Leave(const Paragraph* next) {
  if (open_.empty()) return false;
  if (next != nullptr && next->cell == static_cast<std::int32_t>(open_.back())) return false;
  FindPath(next != nullptr ? next->cell : -1);
  if (NextStandsIn(open_.size() - 1)) return false;
  listener_.EndCell(open_.size() - 1);
  while (!open_.empty()) {
    const std::size_t depth = open_.size() - 1;
    if (GoOnInRow(depth)) return true;
    const std::uint32_t row = RowOf(open_[depth]);
    SkipCells(place_[open_[depth]] + 1, static_cast<std::uint32_t>(CellsOf(row).size()));
    listener_.EndRow(row, depth);
    open_.pop_back();
    if (open_.empty() || NextStandsIn(depth - 1)) return true;
    listener_.EmptyCell(depth - 1);
  }
  return true;
}

}  // namespace tme::rtf
