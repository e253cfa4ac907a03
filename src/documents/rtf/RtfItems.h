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
  std::uint32_t object = 0;  ///< as Run::object; of an end: the section break that it is
  std::uint32_t paragraph = 0;
  std::uint32_t piece = kNoPiece;  ///< of an RtfSource; none of a mark
};

/// Some paragraphs, one at least.
struct RtfItemRange {
  const RtfDocument& document;
  const std::vector<Object>& objects;  ///< that its runs name
  std::size_t begin = 0;
  std::size_t end = 0;
  std::uint32_t text = 0;       ///< where that of the first one begins
  std::uint32_t last_text = 0;  ///< where that of the last one does
};

/// What is the same at both ends of two ranges, formats too, and stands in their first and in their last paragraph:
/// bytes of text, and objects, each as one. Next to what differs, some of it is left. Nothing
/// of short ones.
struct RtfCommonEnds {
  std::size_t front = 0;
  std::size_t back = 0;
};
RtfCommonEnds CommonEndsOf(const RtfItemRange& one, const RtfItemRange& other);

/// All items but for those at its ends; the last paragraph's mark is there always. A section break is the end of its
/// paragraph.
std::vector<RtfItem> ItemsOf(const RtfItemRange& range, const RtfCommonEnds& left_out);

/// What leads from one to the other; formats do not count. Where whole paragraphs came behind the end of one, what was
/// added begins with that end: there the format of the text before is known.
std::vector<DiffStep> DiffItems(const RtfDocument& before, const std::vector<RtfItem>& before_items,
                                const RtfDocument& after, const std::vector<RtfItem>& after_items);

}  // namespace tme::rtf
