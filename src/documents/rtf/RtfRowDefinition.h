#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfControls.h"

namespace tme::rtf {

/// The definition of a table row, between \trowd and its last \cellx.
struct RowDefinition {
  struct CellPart {
    std::int32_t right_edge = 0;
    std::uint8_t vertical_merge = 0;    ///< 1 first, 2 continued
    std::uint8_t horizontal_merge = 0;  ///< the same
  };
  std::string words;
  std::size_t words_to_last_edge = 0;
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

}  // namespace tme::rtf
