#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfHunks.h"
#include "documents/rtf/RtfPatch.h"
#include "documents/rtf/RtfSource.h"

namespace tme::rtf {

/// Which fonts and colours text has that came into a file.
class RtfTablePatch {
 public:
  /// fonts: how many the file's own table has; those of `after` begin with them. Both documents outlive this.
  RtfTablePatch(const RtfDocument& after, const RtfSource& source, std::size_t fonts);

  /// The font that the view gives text that has none.
  std::size_t UnnamedFont() const { return unnamed_font_; }

  void Note(const RtfHunk& hunk);
  /// Adds what the file does not have to its tables, or makes these.
  void Write(Patch& patch) const;

 private:
  void NoteFormat(std::uint32_t format);

  const RtfDocument& after_;
  const RtfSource& source_;
  const std::size_t file_fonts_;
  std::size_t unnamed_font_;
  std::vector<bool> known_formats_;
  std::vector<bool> known_fonts_;
  std::vector<std::uint32_t> fonts_;  ///< to be added
  std::uint32_t color_ = 0;           ///< the last one that is needed
};

}  // namespace tme::rtf
