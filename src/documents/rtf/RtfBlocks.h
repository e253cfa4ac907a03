#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// A paragraph outside of tables, or a row of a table of the text itself with all that stands in it; of RtfBlocks that
/// have tables as wholes, such a table.
struct RtfBlock {
  enum class Kind : std::uint8_t {
    Text,
    Table,  ///< its first row, or all of it
    Row,    ///< goes on with the table of the block before
  };
  std::uint32_t paragraph = 0;  ///< the first one; the last one stands before the next block's first
  // Of a table: the first of its cells, rows and tables in it, and behind the last ones.
  std::uint32_t cell = 0, cell_end = 0;
  std::uint32_t row = 0, row_end = 0;
  std::uint32_t table = 0, table_end = 0;
  Kind kind = Kind::Text;

  bool IsTable() const { return kind != Kind::Text; }
};

/// The blocks of a document, and where its paragraphs stand in them.
class RtfBlocks {
 public:
  enum class Grain : std::uint8_t {
    Rows,
    Tables,  ///< as wholes
  };
  /// Of a document's tables it keeps a copy, which can be compared later.
  explicit RtfBlocks(const RtfDocument& document, Grain grain = Grain::Rows);
  /// With tables as wholes; the copy is shared.
  RtfBlocks OfTables() const;
  Grain GrainOfTables() const { return grain_; }

  /// False for tables whose parts do not stand side by side; then there are no blocks.
  bool AreSound() const { return are_sound_; }
  std::size_t Count() const { return blocks_.size(); }
  const RtfBlock& operator[](std::size_t block) const { return blocks_[block]; }
  std::size_t EndOf(std::size_t block) const {
    return block + 1 < blocks_.size() ? blocks_[block + 1].paragraph : block_of_.size();
  }
  std::size_t BlockOf(std::size_t paragraph) const { return block_of_[paragraph]; }
  /// The innermost cell of a paragraph, counted in its block; -1 outside of tables.
  std::int32_t CellOf(std::size_t paragraph) const { return cells_of_[paragraph]; }
  /// How many tables a paragraph stands in.
  std::size_t DepthOf(std::size_t paragraph) const;
  /// Whether the blocks of a file are of the kinds of those that it was written from. A table right behind another goes
  /// on with it there.
  bool HasKindsOf(const RtfBlocks& others) const;

  /// A number for what a block is apart from the text in it, and from the blocks around: the same for all that are the
  /// same.
  std::uint64_t HashOf(std::size_t block) const;

  enum class Definitions : std::uint8_t {
    Count,      ///< those of rows are the same
    MayBeMade,  ///< the other's, where it has none, count as those that were made for it
  };
  bool IsLike(std::size_t block, const RtfBlocks& others, std::size_t other, Definitions definitions) const;

 private:
  struct Structure {
    std::vector<Cell> cells;
    std::vector<Row> rows;
    std::vector<Table> tables;
  };

  bool FindBlocks(const RtfDocument& document);
  bool FindOuterRows();
  void AddBlock(std::uint32_t paragraph, std::int32_t cell);
  std::uint32_t OuterRowOf(std::int32_t cell) const;
  std::uint32_t TableIn(std::uint32_t table, const RtfBlock& block) const;
  std::uint32_t ParentIn(std::uint32_t table, const RtfBlock& block) const;
  const Cell& CellAt(std::int32_t cell) const { return structure_->cells[static_cast<std::size_t>(cell)]; }

  Grain grain_ = Grain::Rows;
  bool are_sound_ = false;
  std::vector<RtfBlock> blocks_;
  std::vector<std::uint32_t> block_of_;
  std::vector<std::int32_t> cells_of_;
  std::shared_ptr<const Structure> structure_;
  // While blocks are found: the row of the text itself around each row, and the one that each table begins with or
  // stands in.
  std::vector<std::uint32_t> outer_of_row_;
  std::vector<std::uint32_t> outer_of_table_;
};

}  // namespace tme::rtf
