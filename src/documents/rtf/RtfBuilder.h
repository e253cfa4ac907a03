#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfCharacterWords.h"
#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfInternTable.h"
#include "documents/rtf/RtfTableBuilder.h"

/// What the reader pours into. Internal to the reader.
namespace tme::rtf {

/// What a kept control word does to the one of its name before it.
enum class Extra : std::uint8_t { Append, Replace };

/// Fills a document: text, runs, paragraphs and tables, in their order. Equal formats become one.
class Builder {
 public:
  /// `input_bytes`: bounds what is repeated.
  Builder(RtfDocument& document, std::size_t input_bytes)
      : document_(document), input_bytes_(input_bytes), tables_(document, input_bytes) {}

  std::uint32_t Intern(const CharFormat& format);
  std::uint32_t Intern(const ParagraphFormat& format);
  /// `old` with one more control word, which is called `name`; indices as in ParagraphFormat::extra. The word must live
  /// as long as this.
  std::uint32_t AddExtra(std::uint32_t old, std::string_view word, std::string_view name, Extra how);
  /// The same of CharFormat::extra, as RtfCharacterWords.h orders them.
  std::uint32_t AddExtra(std::uint32_t old, std::string_view word, std::string_view name, FontPlace place);
  /// A group that is kept with a format; 0 when it is over a limit.
  std::uint32_t AddGroup(const std::string& group) { return EnterExtra(group); }

  void AddText(std::string_view text, std::uint32_t format);
  void AddObject(Object&& object, std::uint32_t format);

  /// Whether anything, or anything that is seen, stands behind the last paragraph's end.
  bool HasPending() const { return document_.runs.size() > first_run_; }
  bool HasVisiblePending() const { return visible_pending_; }
  /// Grows with whatever is added to the text.
  std::size_t Additions() const { return document_.text.size() + document_.paragraphs.size() + objects_added_; }

  /// Ends the paragraph. `table_level`: 0 outside tables, 1 in a cell, 2 in a cell of a table in a cell …
  void EndParagraph(const ParagraphFormat& format, std::uint32_t mark_format, int table_level);
  /// What stands behind the last paragraph's end, and is not seen, becomes a part of that one.
  void GivePendingBack() { first_run_ = document_.runs.size(); }
  void EndCell(int level) { tables_.EndCell(level); }
  void EndRow(int level, RowDefinition& definition) { tables_.EndRow(level, definition); }
  void Finish();

 private:
  std::uint32_t WithinLimit(std::uint32_t index);
  std::uint32_t EnterExtra(const std::string& words);
  std::uint32_t FieldOf(std::uint32_t format) const { return document_.char_formats[format].field; }

  RtfDocument& document_;
  std::size_t input_bytes_;
  InternTable char_formats_;
  InternTable paragraph_formats_;
  InternTable extras_;
  TableBuilder tables_;
  std::size_t extra_bytes_ = 0;
  std::size_t tab_bytes_ = 0;
  std::size_t first_run_ = 0;  ///< of the paragraph
  std::uint32_t last_paragraph_format_ = 0;
  bool visible_pending_ = false;
  std::size_t objects_added_ = 0;

  struct Transition {
    std::uint32_t from = 0;
    std::uint32_t to = 0;
    std::string_view word{};
    std::uint8_t kind = 0;
  };
  template <typename Join>
  std::uint32_t AddKnown(std::uint32_t old, std::string_view word, std::uint8_t kind, Join join);
  std::vector<Transition> transitions_;
};

}  // namespace tme::rtf
