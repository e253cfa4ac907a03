#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "documents/rtf/RtfComparison.h"
#include "documents/rtf/RtfDocument.h"

/// Edits of a rich-text document, for a fuzz target and a test.
namespace tme::rtf {

/// A document that is edited, and which paragraphs of its file the edits may change.
class EditedRtf {
 public:
  explicit EditedRtf(const RtfDocument& read) : document_(read), origins_(read.paragraphs.size()) {
    for (std::size_t i = 0; i < origins_.size(); ++i) origins_[i] = i;
    touched_.resize(origins_.size());
  }

  const RtfDocument& Document() const { return document_; }
  /// By paragraph of the file.
  const std::vector<bool>& Touched() const { return touched_; }
  std::ptrdiff_t Edits() const { return edits_; }

  /// Whether a cell that it stands in is seen: not where it is merged into the one above or before.
  bool IsSeen(std::size_t paragraph) const {
    std::int32_t cell = document_.paragraphs[paragraph].cell;
    while (cell >= 0) {
      const Cell& it = document_.cells[static_cast<std::size_t>(cell)];
      if (it.row_span == 0 || it.column_span == 0) return false;
      cell = document_.tables[document_.rows[it.row].table].parent_cell;
    }
    return true;
  }

  /// How many places for a caret a paragraph has.
  std::size_t PlacesIn(std::size_t paragraph) const { return Places(paragraph).size(); }

  /// Puts text at a place of a paragraph, in the format of what stands before it, else behind it.
  void Type(std::size_t paragraph, std::size_t place, std::string_view text) {
    Touch(paragraph);
    const std::size_t run = RunAt(paragraph, place);
    const Place at = Places(paragraph)[place];
    document_.text.insert(at.text, text);
    const auto size = static_cast<std::uint32_t>(text.size());
    if (run < document_.EndOfRuns(paragraph) && document_.runs[run].object == 0) {
      document_.runs[run].bytes += size;
      return;
    }
    InsertRun(paragraph, at.run, {size, FormatAt(paragraph, place), 0});
  }

  /// Takes out what stands between two places of a paragraph.
  void Remove(std::size_t paragraph, std::size_t first, std::size_t last) {
    Touch(paragraph);
    const auto [begin, end] = Cut(paragraph, first, last);
    const Place at = Places(paragraph)[first];
    std::uint32_t bytes = 0;
    for (std::size_t run = begin; run < end; ++run) bytes += document_.runs[run].bytes;
    document_.text.erase(at.text, bytes);
    document_.runs.erase(RunsAt(begin), RunsAt(end));
    MoveRuns(paragraph, static_cast<std::int64_t>(begin) - static_cast<std::int64_t>(end));
  }

  /// Gives what stands between two places of a paragraph another look.
  template <typename Change>
  void Format(std::size_t paragraph, std::size_t first, std::size_t last, Change change) {
    Touch(paragraph);
    const auto [begin, end] = Cut(paragraph, first, last);
    for (std::size_t run = begin; run < end; ++run) {
      CharFormat format = document_.char_formats[document_.runs[run].format];
      change(format);
      document_.runs[run].format = Added(document_.char_formats, format);
    }
  }

  void FormatParagraph(std::size_t paragraph, Alignment alignment) {
    Touch(paragraph);
    ParagraphFormat format = document_.paragraph_formats[document_.paragraphs[paragraph].format];
    format.alignment = alignment;
    document_.paragraphs[paragraph].format = Added(document_.paragraph_formats, format);
  }

  void Split(std::size_t paragraph, std::size_t place) {
    Touch(paragraph);
    Paragraph second = document_.paragraphs[paragraph];
    second.first_run = static_cast<std::uint32_t>(Cut(paragraph, place, place).first);
    document_.paragraphs[paragraph].mark_format = FormatAt(paragraph, place);
    Insert(paragraph + 1, second);
  }

  /// With the next one. Nothing at the end of a cell.
  void Join(std::size_t paragraph) {
    if (!HasNextInCell(paragraph)) return;
    Touch(paragraph);
    Touch(paragraph + 1);
    document_.paragraphs[paragraph].format = document_.paragraphs[paragraph + 1].format;
    document_.paragraphs[paragraph].mark_format = document_.paragraphs[paragraph + 1].mark_format;
    Erase(paragraph + 1);
  }

  /// An empty one in front of another.
  void AddParagraph(std::size_t paragraph) {
    Touch(paragraph);
    if (paragraph > 0) Touch(paragraph - 1);
    Paragraph added = document_.paragraphs[paragraph];
    Insert(paragraph, added);
  }

  /// Behind the next one. Nothing at the end of a cell.
  void Move(std::size_t paragraph) {
    if (!HasNextInCell(paragraph)) return;
    for (std::size_t i = std::max(paragraph, std::size_t{1}) - 1; i < std::min(paragraph + 3, origins_.size()); ++i)
      Touch(i);
    auto& paragraphs = document_.paragraphs;
    const std::size_t begin = paragraphs[paragraph].first_run, middle = paragraphs[paragraph + 1].first_run;
    const std::size_t end = document_.EndOfRuns(paragraph + 1);
    const std::uint32_t text = TextStarts(document_)[paragraph];
    std::uint32_t first = 0, second = 0;
    for (std::size_t run = begin; run < end; ++run) (run < middle ? first : second) += document_.runs[run].bytes;
    const auto at = document_.text.begin() + text;
    std::rotate(at, at + first, at + first + second);
    std::rotate(RunsAt(begin), RunsAt(middle), RunsAt(end));
    std::swap(paragraphs[paragraph], paragraphs[paragraph + 1]);
    paragraphs[paragraph].first_run = static_cast<std::uint32_t>(begin);
    paragraphs[paragraph + 1].first_run = static_cast<std::uint32_t>(begin + (end - middle));
  }

  /// An index into what a format of the document may name.
  std::uint32_t AddFont() {
    // Files name fonts that they do not have.
    std::int32_t number = 100;
    for (const Font& font : document_.fonts) number = std::max(number, font.number + 1);
    // The first one would count as that of text without any.
    if (document_.fonts.empty()) document_.fonts.push_back({.number = number++, .name = "First", .family = "nil"});
    document_.fonts.push_back({.number = number, .name = "Some Other", .family = "nil"});
    return static_cast<std::uint32_t>(document_.fonts.size() - 1);
  }
  std::uint32_t AddColor() {
    document_.colors.push_back(0x123456);
    return static_cast<std::uint32_t>(document_.colors.size() - 1);
  }

 private:
  struct Place {
    std::size_t run = 0;     ///< that a run at it comes before
    std::size_t text = 0;    ///< in the document
    std::uint32_t used = 0;  ///< bytes of that run that stand before it
  };

  static bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

  std::vector<Place> Places(std::size_t paragraph) const {
    std::size_t run = document_.paragraphs[paragraph].first_run, text = TextStarts(document_)[paragraph];
    std::vector<Place> places{{run, text, 0}};
    for (; run < document_.EndOfRuns(paragraph); ++run) {
      const Run& it = document_.runs[run];
      for (std::uint32_t used = 1; used < it.bytes; ++used)
        if (BeginsCharacter(document_.text[text + used])) places.push_back({run, text + used, used});
      text += it.bytes;
      if (it.bytes > 0 || it.object != 0) places.push_back({run + 1, text, 0});
    }
    return places;
  }

  /// The run whose format text at a place takes; behind the last one in a paragraph without any.
  std::size_t RunAt(std::size_t paragraph, std::size_t place) const {
    const Place at = Places(paragraph)[place];
    return at.used == 0 && place > 0 ? at.run - 1 : at.run;
  }
  std::uint32_t FormatAt(std::size_t paragraph, std::size_t place) const {
    const std::size_t run = RunAt(paragraph, place);
    return run < document_.EndOfRuns(paragraph) ? document_.runs[run].format
                                                : document_.paragraphs[paragraph].mark_format;
  }

  std::vector<Run>::iterator RunsAt(std::size_t run) {
    return document_.runs.begin() + static_cast<std::ptrdiff_t>(run);
  }
  void MoveRuns(std::size_t paragraph, std::int64_t by) {
    for (std::size_t i = paragraph + 1; i < document_.paragraphs.size(); ++i)
      document_.paragraphs[i].first_run =
          static_cast<std::uint32_t>(static_cast<std::int64_t>(document_.paragraphs[i].first_run) + by);
  }
  void InsertRun(std::size_t paragraph, std::size_t run, const Run& added) {
    document_.runs.insert(RunsAt(run), added);
    MoveRuns(paragraph, 1);
  }

  /// The runs between two places, which then begin and end there.
  std::pair<std::size_t, std::size_t> Cut(std::size_t paragraph, std::size_t first, std::size_t last) {
    const auto cut = [&](std::size_t place) {
      const Place at = Places(paragraph)[place];
      if (at.used == 0) return at.run;
      Run second = document_.runs[at.run];
      second.bytes -= at.used;
      document_.runs[at.run].bytes = at.used;
      InsertRun(paragraph, at.run + 1, second);
      return at.run + 1;
    };
    cut(last);
    const std::size_t begin = cut(first);
    return {begin, cut(last)};
  }

  template <typename Kind>
  static std::uint32_t Added(std::vector<Kind>& formats, const Kind& format) {
    formats.push_back(format);
    return static_cast<std::uint32_t>(formats.size() - 1);
  }

  bool HasNextInCell(std::size_t paragraph) const {
    const auto& all = document_.paragraphs;
    return paragraph + 1 < all.size() && all[paragraph].cell == all[paragraph + 1].cell;
  }
  void Insert(std::size_t at, const Paragraph& paragraph) {
    document_.paragraphs.insert(document_.paragraphs.begin() + static_cast<std::ptrdiff_t>(at), paragraph);
    const std::size_t origin = origins_[std::min(at, origins_.size() - 1)];
    origins_.insert(origins_.begin() + static_cast<std::ptrdiff_t>(at), origin);
  }
  void Erase(std::size_t at) {
    document_.paragraphs.erase(document_.paragraphs.begin() + static_cast<std::ptrdiff_t>(at));
    origins_.erase(origins_.begin() + static_cast<std::ptrdiff_t>(at));
  }
  void Touch(std::size_t paragraph) {
    touched_[origins_[paragraph]] = true;
    ++edits_;
  }

  RtfDocument document_;
  std::vector<std::size_t> origins_;  ///< by paragraph: one of the file
  std::vector<bool> touched_;
  std::ptrdiff_t edits_ = 0;
};

}  // namespace tme::rtf
