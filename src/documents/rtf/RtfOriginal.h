#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfBlocks.h"
#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfHunks.h"
#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfSource.h"
#include "documents/rtf/RtfTablePatch.h"

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
  /// formats as groups around their text, ends of paragraphs as \par. Where that is not possible, the paragraphs, else
  /// the tables, are written anew in their place. New fonts and colours are added to the file's tables. All other bytes
  /// stay, and the result was read again and compared. Null when it cannot be done. edited: its tables of formats,
  /// fonts, colours, objects and fields begin with those of the document that was read. done: how much was written anew
  /// for what, in paragraphs of the document that was read; null for nobody.
  std::optional<std::string> WithEdits(const RtfDocument& edited, const DecodeCodePage& decode,
                                       std::vector<RtfHunk>* done = nullptr) const;

  std::string_view Bytes() const { return bytes_; }

 private:
  /// A document as the view gave it back, beside that of the file.
  struct View {
    RtfDigest unedited;
    std::vector<BlockShape> shapes;  ///< by block
    bool stands_in_file = false;
  };
  struct Edited {
    const RtfDocument& document;
    const RtfBlocks& blocks;
    const RtfDigest& digest;
    const DecodeCodePage& decode;
  };
  static View ViewOf(RtfDigest unedited, const RtfDigest& file);
  std::optional<std::string> Splice(const RtfBlocks& blocks, const View& view, const Edited& edited,
                                    std::vector<RtfHunk>* done) const;
  bool HasSameRest(const RtfDocument& read, const RtfTablePatch& tables) const;

  const std::string bytes_;
  /// Text and paragraphs alone.
  RtfDocument document_;
  RtfBlocks blocks_;
  const RtfSource source_;
  /// What a save would write but for the text.
  std::string kept_header_;
  std::string kept_section_;
  std::string document_controls_;
  std::size_t kept_behind_;  ///< its bytes
  bool ended_early_;
  std::size_t fonts_;
  View view_;
};

}  // namespace tme::rtf
