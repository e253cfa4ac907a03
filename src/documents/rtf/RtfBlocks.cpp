#include "documents/rtf/RtfBlocks.h"

#include <algorithm>
#include <functional>
#include <string>

#include "documents/rtf/RtfInternTable.h"

namespace tme::rtf {
namespace {

/// The cell around a table, counted in its block from 1; 0 where it stands in none.
std::uint32_t ParentIn(const Table& table, const RtfBlock& block) {
  return table.parent_cell < 0 ? 0 : static_cast<std::uint32_t>(table.parent_cell) - block.cell + 1;
}

}  // namespace

RtfBlocks::RtfBlocks(const RtfDocument& document)
    : cells_(document.cells), rows_(document.rows), tables_(document.tables) {
  are_sound_ = FindBlocks(document);
  if (!are_sound_) blocks_.clear();
}

bool RtfBlocks::FindBlocks(const RtfDocument& document) {
  // The table of the text itself around each table.
  std::vector<std::uint32_t> outer(tables_.size());
  for (std::uint32_t table = 0; table < tables_.size(); ++table) {
    const std::int32_t parent = tables_[table].parent_cell;
    const std::uint32_t around = parent < 0 ? table : rows_[cells_[static_cast<std::size_t>(parent)].row].table;
    if (parent >= 0 && around >= table) return false;
    outer[table] = parent < 0 ? table : outer[around];
  }
  std::uint32_t cell = 0, row = 0, table = 0;
  const auto outer_of = [&](std::int32_t of) { return outer[rows_[cells_[static_cast<std::size_t>(of)].row].table]; };
  for (std::uint32_t i = 0; i < document.paragraphs.size(); ++i) {
    const std::int32_t own = document.paragraphs[i].cell;
    const bool goes_on = own >= 0 && !blocks_.empty() && outer_of(own) >= blocks_.back().table &&
                         outer_of(own) < blocks_.back().table_end && block_of_.back() + 1 == blocks_.size();
    if (!goes_on) {
      RtfBlock block{.paragraph = i, .cell = cell, .row = row, .table = table};
      // The parts of a table stand side by side; those of one without any paragraph come before the one that took its
      // place.
      if (own >= 0) {
        const std::uint32_t last = outer_of(own);
        if (last < table) return false;
        while (table < tables_.size() && outer[table] <= last) ++table;
        while (row < rows_.size() && outer[rows_[row].table] <= last) ++row;
        while (cell < cells_.size() && outer[rows_[cells_[cell].row].table] <= last) ++cell;
      }
      block.cell_end = cell, block.row_end = row, block.table_end = table;
      blocks_.push_back(block);
    }
    block_of_.push_back(static_cast<std::uint32_t>(blocks_.size() - 1));
    cells_of_.push_back(own < 0 ? -1 : own - static_cast<std::int32_t>(blocks_.back().cell));
    const bool is_inside = own < 0 || (own >= static_cast<std::int32_t>(blocks_.back().cell) &&
                                       own < static_cast<std::int32_t>(blocks_.back().cell_end));
    if (!is_inside) return false;
  }
  return cell == cells_.size() && row == rows_.size() && table == tables_.size();
}

std::size_t RtfBlocks::DepthOf(std::size_t paragraph) const {
  if (cells_of_[paragraph] < 0) return 0;
  std::size_t depth = 0;
  auto cell = static_cast<std::int32_t>(blocks_[block_of_[paragraph]].cell) + cells_of_[paragraph];
  for (; cell >= 0; ++depth) cell = tables_[rows_[cells_[static_cast<std::size_t>(cell)].row].table].parent_cell;
  return depth;
}

std::uint64_t RtfBlocks::HashOf(std::size_t block) const {
  const RtfBlock& it = blocks_[block];
  std::size_t hash = it.IsTable() ? 1 : 0;
  for (std::uint32_t i = it.cell; i < it.cell_end; ++i) {
    const Cell& cell = cells_[i];
    hash = MixHash(hash, (std::uint64_t{cell.row - it.row} << 32) | static_cast<std::uint32_t>(cell.right_edge));
    hash = MixHash(hash, (std::uint64_t{cell.row_span} << 16) | cell.column_span);
  }
  for (std::uint32_t i = it.row; i < it.row_end; ++i)
    hash = MixHash(MixHash(hash, rows_[i].table - it.table), std::hash<std::string>{}(rows_[i].definition));
  for (std::uint32_t i = it.table + 1; i < it.table_end; ++i) hash = MixHash(hash, ParentIn(tables_[i], it));
  return hash;
}

bool RtfBlocks::IsLike(std::size_t block, const RtfBlocks& others, std::size_t other, Definitions definitions) const {
  const RtfBlock &one = blocks_[block], &two = others.blocks_[other];
  const std::uint32_t cells = one.cell_end - one.cell, rows = one.row_end - one.row, tables = one.table_end - one.table;
  if (cells != two.cell_end - two.cell || rows != two.row_end - two.row || tables != two.table_end - two.table)
    return false;
  for (std::uint32_t i = 0; i < cells; ++i) {
    const Cell &cell = cells_[one.cell + i], &like = others.cells_[two.cell + i];
    const bool is_like = cell.row - one.row == like.row - two.row && cell.row_span == like.row_span &&
                         cell.column_span == like.column_span;
    const bool is_made = definitions == Definitions::MayBeMade && others.rows_[like.row].definition.empty();
    if (!is_like || (!is_made && cell.right_edge != like.right_edge)) return false;
  }
  for (std::uint32_t i = 0; i < rows; ++i) {
    const Row &row = rows_[one.row + i], &like = others.rows_[two.row + i];
    const bool is_made = definitions == Definitions::MayBeMade && row.definition.starts_with(like.definition);
    if (row.table - one.table != like.table - two.table || (!is_made && row.definition != like.definition))
      return false;
  }
  for (std::uint32_t i = 1; i < tables; ++i)
    if (ParentIn(tables_[one.table + i], one) != ParentIn(others.tables_[two.table + i], two)) return false;
  return true;
}

}  // namespace tme::rtf
