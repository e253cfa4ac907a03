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
    Blocks,      ///< these, too, but tables as wholes
  };
  std::size_t before_begin = 0;
  std::size_t before_end = 0;
  std::size_t after_begin = 0;
  std::size_t after_end = 0;
  Level level = Level::Splice;
};

/// What a document says, as numbers that are the same for what is the same in documents with the same tables of formats
/// and objects, as far as a hash can tell.
struct RtfDigest {
  std::vector<std::uint64_t> paragraphs;
  std::vector<std::uint64_t> blocks;        ///< what each is apart from the text in it
  std::vector<std::uint32_t> block_begins;  ///< the first paragraph of each; one more at the end
  std::vector<bool> are_tables;             ///< by block

  bool operator==(const RtfDigest&) const = default;
};
RtfDigest DigestOf(const RtfDocument& document, const RtfBlocks& blocks);

/// What differs, in its order. is_fixed: whether a block before can be changed as a whole alone.
std::vector<RtfHunk> HunksBetween(const RtfDigest& before, const RtfDigest& after, const std::vector<bool>& is_fixed);

/// Raises hunks to the next level; what then overlaps becomes one. False when one of them has the last level.
/// which: indices, ascending. The blocks are those of the documents of the hunks' paragraphs.
bool RaiseHunks(std::vector<RtfHunk>& hunks, const std::vector<std::size_t>& which, const RtfBlocks& before);

}  // namespace tme::rtf
