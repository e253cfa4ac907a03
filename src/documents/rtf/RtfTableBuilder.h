#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

// What a hostile file could blow up by repeating a few bytes is bounded by its own size; no real letter comes near.
inline constexpr std::size_t kSmallInput = std::size_t{64} << 10;
inline constexpr std::size_t kBytesPerObject = 32;

/// The definition of a table row: what follows \trowd but for cells without a \cellx.
struct RowDefinition {
  struct CellPart {
    std::int32_t right_edge = 0;
    std::uint8_t vertical_merge = 0;    ///< 1 first, 2 continued
    std::uint8_t horizontal_merge = 0;  ///< the same
  };
  std::string words;
  std::size_t kept_words = 0;  ///< how much of them is about the row or its cells
  bool is_in_cell = false;     ///< words of another cell have come
  std::vector<CellPart> cells;
  CellPart next;
  bool was_used = false;
};

/// Reads the definitions of rows, one for each level of tables in tables. Internal to the reader.
class RowDefinitions {
 public:
  /// Of rows at a level; 1 is a table of the text itself.
  RowDefinition& Of(int level);

  /// \trowd, as it stands in the file. What follows belongs to the row.
  void Begin(int level, std::string_view raw);
  bool IsOpen() const { return open_level_ != 0; }
  /// Adds a word as it stands in the file to the open definition. False for a cell over the limit, which is left out.
  bool Add(const ControlWord& word, std::int32_t value, std::string_view raw);
  void End() { open_level_ = 0; }
  void End(int level) { open_level_ = open_level_ == level ? 0 : open_level_; }

 private:
  std::vector<RowDefinition> definitions_;  ///< by level, less 1
  int open_level_ = 0;                      ///< whose definition is being read; 0: none
};

/// Opens and ends the tables, rows and cells of a document as its paragraphs come. A level counts the tables around: 0
/// outside tables, 1 in a cell, 2 in a cell of a table in a cell. Internal to the reader.
class TableBuilder {
 public:
  /// `input_bytes`: bounds what is repeated.
  TableBuilder(RtfDocument& document, std::size_t input_bytes) : document_(document), input_bytes_(input_bytes) {}

  /// Opens the cell of a level and closes what is deeper. Its index into RtfDocument::cells; -1 outside tables.
  std::int32_t OpenCell(int level);
  /// The open cells hold something that is seen.
  void MarkText();
  void EndCell(int level);
  void EndRow(int level, RowDefinition& definition);
  void EndAll() { CloseLevels(0); }

 private:
  struct RowCell {
    std::uint32_t cell = 0;
    bool has_text = false;
  };
  struct Above {
    std::int32_t right_edge = 0;
    std::uint32_t owner = 0;
  };
  struct Level {
    std::uint32_t table = 0;
    std::int64_t row = -1;
    std::int64_t cell = -1;
    bool is_used = false;  ///< not only opened on the way to a deeper one
    std::vector<RowCell> row_cells;
    std::vector<Above> above;  ///< the merged cells of the row before
  };

  void CloseLevels(std::size_t stay_open);
  void ApplyDefinition(Level& level, const RowDefinition& definition);
  void MergeBelow(const Level& level, const RowCell& cell, std::uint8_t merge, std::vector<Above>& merged,
                  std::size_t& above);

  RtfDocument& document_;
  std::size_t input_bytes_;
  std::size_t repeated_bytes_ = 0;
  std::vector<Level> levels_;
};

}  // namespace tme::rtf
