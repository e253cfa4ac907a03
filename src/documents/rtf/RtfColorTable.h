#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Reads \colortbl and knows which colour of the document a \cf or \highlight means. Internal to the reader.
class ColorTable {
 public:
  /// Fills the colours of `document`, which outlives this.
  explicit ColorTable(RtfDocument& document) : document_(document) {}

  /// raw: as it stands in the file.
  void ReadWord(const ControlWord& word, std::int32_t value, std::string_view raw);
  /// Each semicolon ends an entry.
  void ReadText(std::string_view text);
  void EndTable();

  /// Index into RtfDocument::colors; 0 (automatic) for what is in no table.
  std::uint32_t IndexOf(std::int32_t number) const;

 private:
  void EndEntry();

  RtfDocument& document_;
  std::uint32_t entry_ = 0;
  std::string words_{};          ///< what it says besides
  bool is_entry_given_ = false;  ///< an entry without components is the automatic colour
  std::uint32_t first_ = 0;      ///< the colour of the first entry, where that is not automatic
  std::uint32_t index_of_zero_ = 0;
};

}  // namespace tme::rtf
