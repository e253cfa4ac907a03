#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfSource.h"

namespace tme::rtf {

/// A file as it was read, to be saved with nothing changed but what was edited.
class RtfOriginal {
 public:
  /// bytes: of a file that `document` and `source` were read from.
  RtfOriginal(std::string bytes, const RtfDocument& document, RtfSource source);

  /// What a view gives back of the document before any edit; it may say some things in another way. Formats, fonts,
  /// colours, objects and fields are those of the document that was read.
  void SetUnedited(const RtfDocument& exported);

  /// The bytes of the file with the edits of a document put in between: text where its neighbours stand, changed
  /// formats as groups around their text, ends of paragraphs as \par. All other bytes stay, and the result was read
  /// again and compared. Null when some edit has no such place: a changed table, an object that came or moved to
  /// another field, text that stands for something else. edited: its tables of formats, fonts, colours, objects and
  /// fields begin with those of the document that was read.
  std::optional<std::string> WithEdits(const RtfDocument& edited, const DecodeCodePage& decode) const;

  std::string_view Bytes() const { return bytes_; }

 private:
  const std::string bytes_;
  /// Text and structure, without formats and what else the edited document has.
  RtfDocument document_;
  const RtfSource source_;
  std::size_t fonts_;
  std::size_t colors_;
  /// A number for each paragraph of the unedited view.
  std::vector<std::uint64_t> unedited_;
  /// Its cells, rows and tables alone.
  RtfDocument unedited_tables_;
};

}  // namespace tme::rtf
