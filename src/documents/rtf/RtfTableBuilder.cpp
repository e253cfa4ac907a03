#include "documents/rtf/RtfTableBuilder.h"

#include <algorithm>
#include <utility>

#include "documents/rtf/RtfReader.h"

namespace tme::rtf {
namespace {

constexpr std::int32_t kDefaultCellWidth = 1440;
constexpr std::uint16_t kMaxSpan = 0xFFFF;
constexpr std::size_t kMaxRowCells = 1024;

}  // namespace

RowDefinition& RowDefinitions::Of(int level) {
  const auto index = static_cast<std::size_t>(std::clamp(level, 1, kMaxTableLevel)) - 1;
  if (index >= definitions_.size()) definitions_.resize(index + 1);
  return definitions_[index];
}

void RowDefinitions::Begin(int level, std::string_view raw) {
  open_level_ = level;
  RowDefinition& row = Of(level);
  row = {};
  row.words = raw;
}

bool RowDefinitions::Add(const ControlWord& word, std::int32_t value, std::string_view raw) {
  RowDefinition& row = Of(open_level_);
  row.words += raw;
  if (word.control == Control::VerticalMerge) row.next.vertical_merge = static_cast<std::uint8_t>(word.value);
  if (word.control == Control::HorizontalMerge) row.next.horizontal_merge = static_cast<std::uint8_t>(word.value);
  if (word.control != Control::CellEdge) {
    row.is_in_cell = row.is_in_cell || raw.starts_with("\\cl");
    if (!row.is_in_cell && !row.cells.empty()) row.kept_words = row.words.size();
    return true;
  }
  const bool has_room = row.cells.size() < kMaxRowCells;
  if (has_room) {
    row.next.right_edge = value;
    row.cells.push_back(row.next);
    row.kept_words = row.words.size();
  }
  row.is_in_cell = !has_room;
  row.next = {};
  return has_room;
}

std::int32_t TableBuilder::OpenCell(int level) {
  std::size_t wanted = static_cast<std::size_t>(std::clamp(level, 0, kMaxTableLevel));
  if (wanted > std::max<std::size_t>(levels_.size(), 1) &&
      document_.tables.size() > input_bytes_ / kBytesPerObject + 1024) {
    ++document_.losses.limits;
    wanted = std::max<std::size_t>(levels_.size(), 1);
  }
  CloseLevels(wanted);
  std::int32_t cell = -1;
  for (std::size_t i = 0; i < wanted; ++i) {
    if (i == levels_.size()) {
      levels_.emplace_back().table = static_cast<std::uint32_t>(document_.tables.size());
      document_.tables.push_back({cell});
    }
    Level& open = levels_[i];
    if (open.row < 0) {
      open.row = static_cast<std::int64_t>(document_.rows.size());
      document_.rows.emplace_back().table = open.table;
    }
    if (open.cell < 0) {
      open.cell = static_cast<std::int64_t>(document_.cells.size());
      document_.cells.emplace_back().row = static_cast<std::uint32_t>(open.row);
      open.row_cells.push_back({static_cast<std::uint32_t>(open.cell), false});
    }
    cell = static_cast<std::int32_t>(open.cell);
  }
  if (wanted > 0) levels_.back().is_used = true;
  return cell;
}

// A table on the way to a deeper one, of which the file says nothing else, is none: the deeper one takes its place.
void TableBuilder::CloseLevels(std::size_t stay_open) {
  if (levels_.size() <= stay_open) return;
  for (std::size_t i = stay_open; i + 1 < levels_.size(); ++i) {
    if (levels_[i].is_used) continue;
    document_.tables[levels_[i + 1].table].parent_cell = document_.tables[levels_[i].table].parent_cell;
  }
  levels_.resize(stay_open);
}

void TableBuilder::MarkText() {
  for (Level& open : levels_) open.row_cells.back().has_text = true;
}

void TableBuilder::EndCell(int level) {
  const auto count = static_cast<std::size_t>(level);
  if (levels_.size() >= count) levels_[count - 1].cell = -1;
}

void TableBuilder::EndRow(int level, RowDefinition& definition) {
  if (levels_.size() < static_cast<std::size_t>(level)) return;
  CloseLevels(static_cast<std::size_t>(level));
  Level& open = levels_.back();
  open.is_used = true;
  if (open.row < 0) return;
  Row& row = document_.rows[static_cast<std::size_t>(open.row)];
  // A definition serves all rows up to the next; repeated without an end, it could outgrow the file.
  if (definition.was_used) repeated_bytes_ += definition.kept_words;
  if (repeated_bytes_ < input_bytes_ + kSmallInput) {
    row.definition = definition.words.substr(0, definition.kept_words);
  }
  definition.was_used = true;
  ApplyDefinition(open, definition);
  open.row_cells.clear();
  open.row = open.cell = -1;
}

void TableBuilder::ApplyDefinition(Level& level, const RowDefinition& definition) {
  std::vector<Above> merged;
  std::int32_t edge = 0;
  std::size_t above = 0;
  Cell* merging = nullptr;
  for (std::size_t i = 0; i < level.row_cells.size(); ++i) {
    Cell& cell = document_.cells[level.row_cells[i].cell];
    const bool is_defined = i < definition.cells.size();
    const RowDefinition::CellPart part = is_defined ? definition.cells[i] : RowDefinition::CellPart{};
    edge = is_defined ? part.right_edge : edge + std::min(kDefaultCellWidth, INT32_MAX - std::max(edge, 0));
    cell.right_edge = edge;
    if (part.horizontal_merge != 2 || level.row_cells[i].has_text) {
      merging = part.horizontal_merge == 1 ? &cell : nullptr;
    } else if (merging != nullptr && merging->column_span < kMaxSpan) {
      ++merging->column_span;
      cell.column_span = 0;
    }
    if (part.vertical_merge != 0) MergeBelow(level, level.row_cells[i], part.vertical_merge, merged, above);
  }
  level.above = std::move(merged);
}

/// A vertically merged cell of a row whose cells up to it are in `merged`; `above` goes along in the row before.
void TableBuilder::MergeBelow(const Level& level, const RowCell& row_cell, std::uint8_t merge,
                              std::vector<Above>& merged, std::size_t& above) {
  Cell& cell = document_.cells[row_cell.cell];
  const std::int32_t edge = cell.right_edge;
  while (above < level.above.size() && level.above[above].right_edge < edge) ++above;
  std::uint32_t owner = row_cell.cell;
  if (merge == 2 && !row_cell.has_text && above < level.above.size() && level.above[above].right_edge == edge &&
      document_.cells[level.above[above].owner].row_span < kMaxSpan) {
    owner = level.above[above].owner;
    cell.row_span = 0;
    ++document_.cells[owner].row_span;
  }
  merged.push_back({edge, owner});
}

}  // namespace tme::rtf
