#include "documents/rtf/RtfBlocks.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "documents/rtf/RtfInternTable.h"

namespace tme::rtf {
namespace {

using Kind = RtfBlock::Kind;

/// How a cell is merged with those below it, as far as its own row says so.
enum class Merging : std::uint8_t { Away, None, First };
Merging MergingOf(const Cell& cell) {
  return cell.row_span == 0 ? Merging::Away : cell.row_span == 1 ? Merging::None : Merging::First;
}

}  // namespace

RtfBlocks::RtfBlocks(const RtfDocument& document, Grain grain)
    : structure_(std::make_shared<Structure>(Structure{document.cells, document.rows, document.tables})) {
  are_sound_ = FindOuterRows() && FindBlocks(document);
  if (!are_sound_) blocks_.clear();
  outer_of_row_ = outer_of_table_ = {};
  if (grain == Grain::Tables) *this = OfTables();
}

RtfBlocks RtfBlocks::OfTables() const {
  RtfBlocks whole = *this;
  whole.grain_ = Grain::Tables;
  whole.blocks_.clear();
  for (std::size_t i = 0; are_sound_ && i < block_of_.size(); ++i) {
    const RtfBlock& block = blocks_[block_of_[i]];
    const bool begins = block.paragraph == i;
    if (begins && block.kind == Kind::Row) {
      RtfBlock& table = whole.blocks_.back();
      table.cell_end = block.cell_end, table.row_end = block.row_end, table.table_end = block.table_end;
    } else if (begins) {
      whole.blocks_.push_back(block);
    }
    whole.block_of_[i] = static_cast<std::uint32_t>(whole.blocks_.size() - 1);
    if (cells_of_[i] >= 0) whole.cells_of_[i] += static_cast<std::int32_t>(block.cell - whole.blocks_.back().cell);
  }
  return whole;
}

/// False where a row comes before the one around it.
bool RtfBlocks::FindOuterRows() {
  const auto& [cells, rows, tables] = *structure_;
  outer_of_row_.resize(rows.size());
  outer_of_table_.assign(tables.size(), 0);
  std::vector<bool> is_begun(tables.size());
  for (std::uint32_t row = 0; row < rows.size(); ++row) {
    const std::uint32_t table = rows[row].table;
    const std::int32_t parent = tables[table].parent_cell;
    const std::uint32_t around = parent < 0 ? row : CellAt(parent).row;
    if (parent >= 0 && around >= row) return false;
    outer_of_row_[row] = parent < 0 ? row : outer_of_row_[around];
    if (!is_begun[table]) outer_of_table_[table] = outer_of_row_[row];
    is_begun[table] = true;
  }
  return true;
}

std::uint32_t RtfBlocks::OuterRowOf(std::int32_t cell) const { return outer_of_row_[CellAt(cell).row]; }

/// The parts of a row stand side by side; those of a table without any paragraph come before the one that took its
/// place.
void RtfBlocks::AddBlock(std::uint32_t paragraph, std::int32_t cell) {
  const auto& [cells, rows, tables] = *structure_;
  const RtfBlock before = blocks_.empty() ? RtfBlock() : blocks_.back();
  RtfBlock block{.paragraph = paragraph, .cell = before.cell_end, .row = before.row_end, .table = before.table_end};
  block.cell_end = block.cell, block.row_end = block.row, block.table_end = block.table;
  if (cell >= 0) {
    const std::uint32_t last = OuterRowOf(cell);
    while (block.table_end < tables.size() && outer_of_table_[block.table_end] <= last) ++block.table_end;
    while (block.row_end < rows.size() && outer_of_row_[block.row_end] <= last) ++block.row_end;
    while (block.cell_end < cells.size() && outer_of_row_[cells[block.cell_end].row] <= last) ++block.cell_end;
    const bool goes_on = before.IsTable() && rows[outer_of_row_[before.row_end - 1]].table == rows[last].table;
    block.kind = goes_on ? Kind::Row : Kind::Table;
  }
  blocks_.push_back(block);
}

bool RtfBlocks::FindBlocks(const RtfDocument& document) {
  const auto& [cells, rows, tables] = *structure_;
  const auto is_inside = [this](std::int32_t cell) {
    return cell >= static_cast<std::int32_t>(blocks_.back().cell) &&
           cell < static_cast<std::int32_t>(blocks_.back().cell_end);
  };
  for (std::uint32_t i = 0; i < document.paragraphs.size(); ++i) {
    const std::int32_t own = document.paragraphs[i].cell;
    if (own < 0 || blocks_.empty() || !is_inside(own)) AddBlock(i, own);
    if (own >= 0 && !is_inside(own)) return false;
    block_of_.push_back(static_cast<std::uint32_t>(blocks_.size() - 1));
    cells_of_.push_back(own < 0 ? -1 : own - static_cast<std::int32_t>(blocks_.back().cell));
  }
  const RtfBlock last = blocks_.empty() ? RtfBlock() : blocks_.back();
  return last.cell_end == cells.size() && last.row_end == rows.size() && last.table_end == tables.size();
}

std::size_t RtfBlocks::DepthOf(std::size_t paragraph) const {
  if (cells_of_[paragraph] < 0) return 0;
  std::size_t depth = 0;
  auto cell = static_cast<std::int32_t>(blocks_[block_of_[paragraph]].cell) + cells_of_[paragraph];
  for (; cell >= 0; ++depth) cell = structure_->tables[structure_->rows[CellAt(cell).row].table].parent_cell;
  return depth;
}

bool RtfBlocks::HasKindsOf(const RtfBlocks& others) const {
  const auto goes_on = [&](std::size_t block) {
    return blocks_[block].kind == Kind::Row && block > 0 && others[block].kind == Kind::Table &&
           others[block - 1].IsTable();
  };
  if (Count() != others.Count()) return false;
  for (std::size_t i = 0; i < Count(); ++i)
    if (blocks_[i].kind != others[i].kind && !goes_on(i)) return false;
  return true;
}

/// A table in a block, counted from 1; 0 for that of the text itself.
std::uint32_t RtfBlocks::TableIn(std::uint32_t table, const RtfBlock& block) const {
  return structure_->tables[table].parent_cell < 0 ? 0 : table - block.table + (block.kind == Kind::Table ? 0 : 1);
}

/// The cell around a table, counted in its block from 1; 0 where it stands in none.
std::uint32_t RtfBlocks::ParentIn(std::uint32_t table, const RtfBlock& block) const {
  const std::int32_t parent = structure_->tables[table].parent_cell;
  return parent < 0 ? 0 : static_cast<std::uint32_t>(parent) - block.cell + 1;
}

std::uint64_t RtfBlocks::HashOf(std::size_t block) const {
  const RtfBlock& it = blocks_[block];
  const auto& [cells, rows, tables] = *structure_;
  std::size_t hash = it.IsTable() ? 1 : 0;
  for (std::uint32_t i = it.cell; i < it.cell_end; ++i) {
    const Cell& cell = cells[i];
    hash = MixHash(hash, (std::uint64_t{cell.row - it.row} << 32) | static_cast<std::uint32_t>(cell.right_edge));
    hash = MixHash(hash, (static_cast<std::uint64_t>(MergingOf(cell)) << 16) | cell.column_span);
  }
  for (std::uint32_t i = it.row; i < it.row_end; ++i)
    hash = MixHash(MixHash(hash, TableIn(rows[i].table, it)), std::hash<std::string>{}(rows[i].definition));
  for (std::uint32_t i = it.table; i < it.table_end; ++i)
    if (tables[i].parent_cell >= 0) hash = MixHash(hash, ParentIn(i, it));
  return hash;
}

bool RtfBlocks::IsLike(std::size_t block, const RtfBlocks& others, std::size_t other, Definitions definitions) const {
  const RtfBlock &one = blocks_[block], &two = others.blocks_[other];
  const std::uint32_t cells = one.cell_end - one.cell, rows = one.row_end - one.row;
  if (one.IsTable() != two.IsTable() || cells != two.cell_end - two.cell || rows != two.row_end - two.row) return false;
  const auto &my = *structure_, &their = *others.structure_;
  for (std::uint32_t i = 0; i < cells; ++i) {
    const Cell &cell = my.cells[one.cell + i], &like = their.cells[two.cell + i];
    const bool is_like = cell.row - one.row == like.row - two.row && cell.column_span == like.column_span &&
                         (cell.row_span == 0) == (like.row_span == 0);
    const bool is_made = definitions == Definitions::MayBeMade && their.rows[like.row].definition.empty();
    if (!is_like || (!is_made && cell.right_edge != like.right_edge)) return false;
  }
  for (std::uint32_t i = 0; i < rows; ++i) {
    const Row &row = my.rows[one.row + i], &like = their.rows[two.row + i];
    const bool is_made = definitions == Definitions::MayBeMade && row.definition.starts_with(like.definition);
    const std::uint32_t table = TableIn(row.table, one), its = others.TableIn(like.table, two);
    if (table != its || (!is_made && row.definition != like.definition)) return false;
    if (table != 0 && ParentIn(row.table, one) != others.ParentIn(like.table, two)) return false;
  }
  return true;
}

}  // namespace tme::rtf
