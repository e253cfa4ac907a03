#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Where what a document holds stands in the bytes that it was read from. Offsets count bytes.
struct RtfSource {
  enum class Kind : std::uint8_t {
    Plain,   ///< text whose bytes are its characters
    Coded,   ///< one character, as \'hh, \u or a control word, or of the code page
    Object,  ///< a group or control word
    Fixed,   ///< text or an object that stands for something else: its bytes are not to be touched
  };
  /// What stands side by side in a paragraph, in its order.
  struct Piece {
    std::uint32_t text = 0;  ///< where it begins in RtfDocument::text; it ends where the next one begins
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::uint32_t object = 0;  ///< index into RtfDocument::objects plus 1; 0 for text
    Kind kind = Kind::Plain;
    std::uint8_t unicode_skip = 1;  ///< the N of \ucN there
    bool takes_next = false;        ///< a letter right behind it would be taken for a part of it
  };
  enum class MarkKind : std::uint8_t {
    Paragraph,  ///< \par, or a line end behind a backslash
    Fixed,      ///< a cell's end, a section's, or that of the file
  };
  /// The end of a paragraph.
  struct Mark {
    std::uint32_t first_piece = 0;  ///< the paragraph's pieces end where those of the next one begin
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    /// Where what goes with it has ended, as far as it was read: behind the \row of a table of the text itself, behind
    /// the words of the section that it begins; 0 where nothing does.
    std::uint32_t whole_end = 0;
    /// The group before the paragraph that says its number or bullet in a list; both 0 without one.
    std::uint32_t label_begin = 0;
    std::uint32_t label_end = 0;
    MarkKind kind = MarkKind::Fixed;
    std::uint8_t unicode_skip = 1;
  };
  /// A control word or a group about a section, behind the break that begins it.
  struct SectionPart {
    std::uint32_t object = 0;  ///< the break, as Run::object
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
  };
  /// Where the file's own tables can be added to.
  struct Header {
    std::uint32_t begin = 0;       ///< behind the control words at the beginning
    std::uint32_t end = 0;         ///< behind the groups before the text
    std::uint32_t fonts_end = 0;   ///< at the brace that ends the first \fonttbl; 0 without one
    std::uint32_t colors_end = 0;  ///< the same of the last \colortbl
    std::uint32_t colors = 0;      ///< how many entries that has
    std::uint32_t kept = 0;        ///< how much of RtfDocument::kept_header stands in front of `end`
    std::uint32_t body = 0;        ///< where the text begins, with what says how it looks; 0 where that is not known
    /// At the brace that ends the first of each HeaderTable; 0 without one.
    std::array<std::uint32_t, kHeaderTables> table_ends{};
  };

  Header header;
  std::vector<Piece> pieces;
  std::vector<Mark> marks;                 ///< by paragraph
  std::vector<SectionPart> section_parts;  ///< in the order of the file

  std::size_t EndOfPieces(std::size_t paragraph) const {
    return paragraph + 1 < marks.size() ? marks[paragraph + 1].first_piece : pieces.size();
  }
};

}  // namespace tme::rtf
