#pragma once

#include <cstdint>
#include <vector>

#include "windows/rich/RtfShape.h"
#include "windows/rich/RtfStore.h"

/// Tables that a view shows as lines, a paragraph each; RtfShape decides which.
namespace tme {

/// Keeps such tables of a document that is imported in the store.
class RtfFlatKeeper {
 public:
  /// All outlive this.
  RtfFlatKeeper(const rtf::RtfDocument& source, const RtfShape& shape, RtfStore& store)
      : source_(source), shape_(shape), flat_(store.flat) {}

  /// The number of a cell of the source, as kFlatCell. All of its table joins the store with the first cell.
  int NumberOf(std::int32_t cell);

 private:
  const rtf::RtfDocument& source_;
  const RtfShape& shape_;
  RtfStore::FlatTables& flat_;
  std::vector<int> numbers_;  ///< of the cells, where they are known; else 0
};

/// Makes tables again of the lines that their cells are shown as. A row without any line is gone.
class RtfFlatExport {
 public:
  RtfFlatExport(const RtfStore::FlatTables& flat, rtf::RtfDocument& document) : flat_(flat), document_(document) {}

  /// The document's cell for a line of a flat cell. around: the cell that both stand in, -1: none.
  std::int32_t CellOf(std::int32_t flat_cell, std::int32_t around);
  /// The next line, if any, begins tables of its own.
  void Close() { CloseTo(0); }

 private:
  struct Open {
    std::int32_t flat_cell;
    std::uint32_t table;
    std::uint32_t row;
    std::int32_t cell;
  };
  const RtfStore::FlatTables::Row& RowOf(std::int32_t flat_cell) const {
    return flat_.rows[flat_.cells[static_cast<std::size_t>(flat_cell)].row];
  }
  void GoTo(Open& open, std::int32_t flat_cell);
  void BeginRow(Open& open, std::int32_t flat_cell);
  /// Adds empty cells of the row.
  void Skip(const Open& open, std::uint32_t from, std::uint32_t to);
  void CloseTo(std::size_t levels);

  const RtfStore::FlatTables& flat_;
  rtf::RtfDocument& document_;
  std::vector<Open> open_;          ///< outermost first
  std::vector<std::int32_t> path_;  ///< the flat cells around a line, outermost first
};

/// Of a document that is exported: a cell of a row, and a paragraph without text in a cell.
std::int32_t AddCell(rtf::RtfDocument& document, std::uint32_t row, rtf::Cell cell);
void AddEmptyParagraph(rtf::RtfDocument& document, std::int32_t cell);

}  // namespace tme
