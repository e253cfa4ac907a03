#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "documents/diff/SequenceDiff.h"
#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// A character, an object or the end of a paragraph.
struct RtfItem {
  enum class Kind : std::uint8_t { Text, Object, Mark };
  static constexpr std::uint32_t kNoPiece = std::numeric_limits<std::uint32_t>::max();

  Kind kind = Kind::Text;
  std::uint32_t text = 0;    ///< where a character stands in RtfDocument::text
  std::uint32_t size = 0;    ///< its bytes
  std::uint32_t format = 0;  ///< index into RtfDocument::char_formats
  std::uint32_t object = 0;  ///< as Run::object
  std::uint32_t paragraph = 0;
  std::uint32_t piece = kNoPiece;  ///< of an RtfSource; none of a mark
};

/// Those of some paragraphs. text: where that of the first one begins.
std::vector<RtfItem> ItemsOf(const RtfDocument& document, std::size_t begin, std::size_t end, std::uint32_t text);

/// What leads from one to the other; formats do not count. Where whole paragraphs came behind the end of one, what was
/// added begins with that end: there the format of the text before is known.
std::vector<DiffStep> DiffItems(const RtfDocument& before, const std::vector<RtfItem>& before_items,
                                const RtfDocument& after, const std::vector<RtfItem>& after_items);

}  // namespace tme::rtf
