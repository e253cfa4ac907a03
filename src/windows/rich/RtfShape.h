#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "documents/rtf/RtfDocument.h"

namespace tme {

// A view lays out a paragraph and an outermost table as a whole, at opening and after each key in it, and every cell
// twice, so that what stands in tables in tables doubles with each. Costs are characters that are laid out once; a
// million of them take about 0.15 s (release build, 3 GHz).
inline constexpr std::size_t kMaxCostAtOnce = 1'000'000;  ///< of what cannot be laid out in parts
inline constexpr std::size_t kCostOfPart = 300'000;       ///< of a part of a table: a key in it takes 50 ms
inline constexpr std::size_t kCostOfCell = 300;           ///< an empty one, as measured
inline constexpr std::size_t kCostOfRun = 30;             ///< the same; an object is a run
/// Of all tables of a document that lie more than two deep, beyond what they would cost two deep.
inline constexpr std::size_t kMaxCostOfDepth = 5'000'000;
/// Two to this power times the cost of the smallest table is about what can be laid out at once.
inline constexpr int kMaxShownDepth = 10;
/// A paragraph of more bytes of text, or runs, is shown in pieces of about the smaller size. No letter has one; a key
/// in it takes 5 ms. The pieces are so small because a layout that goes on bit by bit goes by the height of the lines.
inline constexpr std::size_t kLongBytes = 20'000, kBytesOfPiece = 2'000;
inline constexpr std::size_t kLongRuns = 1'000, kRunsOfPiece = 200;

/// A list of the view has no more items: with each that joins or changes, the toolkit looks at all. The next ones stand
/// in a list of the same look, which a save does not tell apart.
inline constexpr int kItemsOfList = 250;

/// How much of a document's structure a view shows.
class RtfShape {
 public:
  /// source: texts, runs, paragraphs, cells, rows, tables. It outlives this.
  explicit RtfShape(const rtf::RtfDocument& source);

  /// Of a table whose cells are shown as lines, and of all in it.
  bool IsFlat(std::uint32_t table) const { return is_flat_[table] != 0; }
  std::size_t FlatTables() const;

  std::uint32_t TableOf(std::int32_t cell) const {
    return source_.rows[source_.cells[static_cast<std::size_t>(cell)].row].table;
  }
  /// The cell around a cell's table; -1 for none.
  std::int32_t CellAround(std::int32_t cell) const;
  const std::vector<std::uint32_t>& RowsOf(std::uint32_t table) const { return rows_of_table_[table]; }
  const std::vector<std::uint32_t>& CellsOf(std::uint32_t row) const { return cells_of_row_[row]; }
  /// A table that is not flat is shown as one table for each of these stretches of RowsOf: where each ends.
  std::vector<std::size_t> PartsOf(std::uint32_t table) const;

  bool IsLong(std::size_t paragraph) const { return bytes_[paragraph] > kLongBytes || RunsOf(paragraph) > kLongRuns; }

 private:
  std::size_t RunsOf(std::size_t paragraph) const {
    return source_.EndOfRuns(paragraph) - source_.paragraphs[paragraph].first_run;
  }
  void Measure();
  void Flatten();
  /// Of a row of an outermost table, when no more than `depth` tables are shown inside each other.
  std::size_t CostOf(std::uint32_t row, int depth) const;
  std::vector<std::size_t> Split(std::uint32_t table, int depth) const;
  /// How many tables inside each other are shown of an outermost one; 0: it is flat itself.
  int ShownDepth(std::uint32_t table);

  const rtf::RtfDocument& source_;
  std::vector<std::vector<std::uint32_t>> rows_of_table_;
  std::vector<std::vector<std::uint32_t>> cells_of_row_;
  std::vector<std::size_t> bytes_;  ///< of each paragraph
  std::vector<int> depth_;          ///< of each table; 1: an outermost one
  std::vector<int> shown_depth_;    ///< of each outermost table
  std::vector<std::uint8_t> is_flat_;
  std::size_t depth_allowed_ = kMaxCostOfDepth;  ///< what is left of it
  std::vector<std::vector<std::size_t>> cost_;   ///< of the rows of outermost tables, by depth from 1, laid out once
};

}  // namespace tme
