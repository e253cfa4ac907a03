#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "documents/rtf/RtfBlocks.h"
#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Paragraphs of two documents that differ; either range may be empty.
struct RtfHunk {
  /// How much of the file is written anew for it.
  enum class Level : std::uint8_t {
    Splice,      ///< what differs, character by character
    Paragraphs,  ///< the paragraphs, each in the cell that it stands in
    Blocks,      ///< these, too, but blocks as wholes: rows, or tables
  };
  std::size_t before_begin = 0;
  std::size_t before_end = 0;
  std::size_t after_begin = 0;
  std::size_t after_end = 0;
  Level level = Level::Splice;
  /// The view has the table in another shape than the file, but as many paragraphs, and none came or went: each stays
  /// in its cell of the file.
  bool keeps_cells = false;
};

/// What a document says, as numbers that are the same for what is the same in documents with the same tables of formats
/// and objects, as far as a hash can tell.
struct RtfDigest {
  std::vector<std::uint64_t> paragraphs;
  std::vector<std::uint64_t> blocks;        ///< what each is apart from the text in it
  std::vector<std::uint32_t> block_begins;  ///< the first paragraph of each; one more at the end
  std::vector<RtfBlock::Kind> kinds;        ///< by block

  bool operator==(const RtfDigest&) const = default;
};
RtfDigest DigestOf(const RtfDocument& document, const RtfBlocks& blocks);
/// The blocks alone, without paragraphs.
RtfDigest ShapeOf(const RtfBlocks& blocks);
/// The same with tables as wholes where rows are blocks.
RtfDigest DigestOfTables(const RtfDigest& digest);

/// How the view has a block of the file.
enum class BlockShape : std::uint8_t {
  Same,
  Other,           ///< but for cells and rows it is the same
  OtherParagraphs  ///< it can be changed as a whole alone
};

/// What differs, in its order. shapes: of the blocks before.
std::vector<RtfHunk> HunksBetween(const RtfDigest& before, const RtfDigest& after,
                                  const std::vector<BlockShape>& shapes);

enum class Neighbour : std::uint8_t { Last, Next };

/// What came in between two paragraphs needs one of the same cell to stand in: makes a hunk cover it. first: which one
/// where both are there. False where there is none.
bool TakeNeighbour(RtfHunk& hunk, const RtfBlocks& before, const RtfBlocks& after, Neighbour first = Neighbour::Next);

/// Raises hunks to the next level; what then overlaps becomes one. False when one of them has the last level.
/// which: indices, ascending. The blocks are those of the documents of the hunks' paragraphs.
bool RaiseHunks(std::vector<RtfHunk>& hunks, const std::vector<std::size_t>& which, const RtfBlocks& before);

}  // namespace tme::rtf
