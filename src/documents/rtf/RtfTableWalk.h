#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Where the rows and cells of a document begin and end, as one goes through its paragraphs in their order. Depth 0 is
/// a table of the text itself, depth 1 a table in a cell of that one.
class RtfTableWalk {
 public:
  class Listener {
   public:
    virtual ~Listener() = default;
    virtual void BeginRow(std::uint32_t row, std::size_t depth) = 0;
    /// The paragraph before ends the cell.
    virtual void EndCell(std::size_t depth) = 0;
    /// A cell, or the end of one after a table in it, without a paragraph to end it.
    virtual void EmptyCell(std::size_t depth) = 0;
    virtual void EndRow(std::uint32_t row, std::size_t depth) = 0;
  };

  /// Both outlive the walk.
  RtfTableWalk(const RtfDocument& document, Listener& listener);

  /// Opens what the paragraph stands in.
  void Enter(const Paragraph& paragraph);
  /// Ends cells and rows after a paragraph; `next` is null at the end of the text. False when there is nothing to end:
  /// the next one stands in the same cell, or in a table in it, or neither is in a table.
  bool Leave(const Paragraph* next);
  /// How many tables the paragraph stands in.
  std::size_t Depth() const { return open_.size(); }
  /// The cells of a row, in their order: indices into RtfDocument::cells.
  std::span<const std::uint32_t> CellsOf(std::uint32_t row) const {
    return std::span(cells_).subspan(first_cell_[row], first_cell_[row + 1] - first_cell_[row]);
  }

 private:
  void FindPath(std::int32_t cell);
  std::uint32_t RowOf(std::uint32_t cell) const { return document_.cells[cell].row; }
  bool NextStandsIn(std::size_t depth) const;
  bool GoOnInRow(std::size_t depth);
  void SkipCells(std::uint32_t from, std::uint32_t to);

  const RtfDocument& document_;
  Listener& listener_;
  std::vector<std::uint32_t> first_cell_;  ///< of each row, into cells_; one more at the end
  std::vector<std::uint32_t> cells_;       ///< by row
  std::vector<std::uint32_t> place_;       ///< of each cell in its row
  std::vector<std::uint32_t> open_;        ///< the cells one is in, outermost first
  std::vector<std::uint32_t> path_;        ///< the same of the paragraph to come
};

}  // namespace tme::rtf
