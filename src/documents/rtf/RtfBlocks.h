#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// A paragraph outside of tables, or a table with all that stands in it.
struct RtfBlock {
  std::uint32_t paragraph = 0;  ///< the first one; the last one stands before the next block's first
  // Of a table: the first of its cells, rows and tables in it, and behind the last ones.
  std::uint32_t cell = 0, cell_end = 0;
  std::uint32_t row = 0, row_end = 0;
  std::uint32_t table = 0, table_end = 0;

  bool IsTable() const { return table < table_end; }
};

/// The blocks of a document, and where its paragraphs stand in them.
class RtfBlocks {
 public:
  /// Of a document's tables it keeps a copy, which can be compared later.
  explicit RtfBlocks(const RtfDocument& document);

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

  /// A number for what a block is apart from the text in it: the same for all that are the same.
  std::uint64_t HashOf(std::size_t block) const;

  enum class Definitions : std::uint8_t {
    Count,      ///< those of rows are the same
    MayBeMade,  ///< the other's, where it has none, count as those that were made for it
  };
  bool IsLike(std::size_t block, const RtfBlocks& others, std::size_t other, Definitions definitions) const;

 private:
  bool FindBlocks(const RtfDocument& document);

  bool are_sound_ = false;
  std::vector<RtfBlock> blocks_;
  std::vector<std::uint32_t> block_of_;
  std::vector<std::int32_t> cells_of_;
  std::vector<Cell> cells_;
  std::vector<Row> rows_;
  std::vector<Table> tables_;
};

}  // namespace tme::rtf
