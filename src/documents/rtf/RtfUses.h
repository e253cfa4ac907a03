#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfNames.h"

namespace tme::rtf {

/// Which entries of its document's tables text names: itself, and in control words and groups that are kept.
class RtfUses {
 public:
  /// The document outlives this.
  explicit RtfUses(const RtfDocument& document);

  /// Of some paragraphs, with the rows that they stand in.
  void Note(std::size_t begin, std::size_t end);

  /// Indices into RtfDocument::fonts, in the order in which they were noted.
  const std::vector<std::uint32_t>& Fonts() const { return fonts_; }
  /// The last colour that is needed, an index into RtfDocument::colors.
  std::uint32_t LastColor() const { return color_; }
  /// Of the joined entries those that are needed, in their order.
  std::vector<const JoinedEntry*> Joined() const;

 private:
  void NoteCharFormat(std::uint32_t format);
  void NoteParagraphFormat(std::uint32_t format);
  void NoteFont(std::size_t font);
  void NoteExtra(std::uint32_t extra);
  void NoteWords(std::string_view rtf);
  void NoteEntry(HeaderTable table, std::int32_t number);

  const RtfDocument& document_;
  std::vector<bool> char_formats_, paragraph_formats_, extras_, rows_, objects_, known_fonts_, joined_;
  std::vector<std::uint32_t> fonts_;
  std::uint32_t color_ = 0;
  std::set<std::pair<RtfName, std::int32_t>> names_;  ///< that are known
  std::vector<std::size_t> to_read_;                  ///< joined entries that were just found
};

}  // namespace tme::rtf
