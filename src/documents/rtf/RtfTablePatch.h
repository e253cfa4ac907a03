#pragma once

#include <cstddef>
#include <string>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfHunks.h"
#include "documents/rtf/RtfPatch.h"
#include "documents/rtf/RtfSource.h"
#include "documents/rtf/RtfUses.h"

namespace tme::rtf {

/// Which fonts, colours and other entries of tables text names that came into a file.
class RtfTablePatch {
 public:
  /// fonts: how many the file's own table has; those of `after` begin with them. Both documents outlive this.
  RtfTablePatch(const RtfDocument& after, const RtfSource& source, std::size_t fonts);

  /// The font that the view gives text that has none.
  std::size_t UnnamedFont() const { return unnamed_font_; }

  void Note(const RtfHunk& hunk) { uses_.Note(hunk.after_begin, hunk.after_end); }
  /// Adds what the file does not have to its tables, or makes these.
  void Write(Patch& patch) const;
  /// Whether that made of a file's kept header what was read again.
  bool HasMade(const std::string& read_header, const std::string& kept_header) const;

 private:
  const RtfDocument& after_;
  const RtfSource& source_;
  const std::size_t file_fonts_;
  std::size_t unnamed_font_;
  RtfUses uses_;
};

}  // namespace tme::rtf
