#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/Parts.h"
#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfFormatOutput.h"
#include "documents/rtf/RtfNumbering.h"
#include "documents/rtf/RtfOutput.h"
#include "documents/rtf/RtfTableWalk.h"

namespace tme::rtf {

/// Some paragraphs of a document: whole tables and what stands outside of tables, or such as stand in one cell.
struct RtfPart {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::uint32_t text = 0;  ///< where its text begins
  std::size_t depth = 0;   ///< how many tables are around all of it
  /// Ends the last paragraph when that stands in no table of the part.
  std::string_view mark = "\\par";
};

/// Writes paragraphs with their tables. Fonts and colours go by the document's numbers.
class RtfBodyWriter : private RtfTableWalk::Listener {
 public:
  /// Both outlive this.
  RtfBodyWriter(const RtfDocument& document, RtfOutput& out);

  /// Behind a header of its own.
  void WriteAll();
  /// Anywhere in a group; what comes behind it is written in formats of its own.
  void WritePart(const RtfPart& part);

 private:
  static constexpr std::uint32_t kNoFormat = 0xFFFFFFFF;

  /// Which format of a paragraph stands in the file.
  struct Place {
    std::uint32_t format = kNoFormat;
    std::size_t depth = 0;
    bool operator==(const Place&) const = default;
  };

  /// What leads from the format of one number to that of another.
  struct Step {
    std::uint32_t from = kNoFormat;
    std::uint32_t to = kNoFormat;
    bool needs_group = false;
    std::string words{};
  };

  void BeginParagraph(std::size_t index, std::size_t depth);
  void Paragraph(std::size_t index, const rtf::Paragraph* next);
  void ParagraphOfPart(std::size_t index, const RtfPart& part);
  std::string NextItem(std::size_t index);
  void EndParagraph();
  void WriteParagraphFormat(const Place& place, std::string_view item);
  void Text(std::size_t from, std::size_t to);
  void Object(const rtf::Object& object);
  void SetFormat(std::uint32_t format);
  const Step& StepTo(std::uint32_t format);
  void LeaveGroup();
  void LeaveFields();
  void BeginPlain();
  void BeginFormats(std::size_t index);
  void EnterField(std::uint32_t number);
  void OpenField(std::uint32_t number);
  void CloseFields(std::size_t stay_open);

  void BeginRow(std::uint32_t row, std::size_t depth) override;
  void EndCell(std::size_t depth) override;
  void EmptyCell(std::size_t depth) override;
  void EndRow(std::uint32_t row, std::size_t depth) override;
  void RowDefinition(std::uint32_t row);
  bool HasText(std::uint32_t cell);

  const CharFormat& CharFormatOf(std::uint32_t format) const {
    return format < document_.char_formats.size() ? document_.char_formats[format] : plain_;
  }

  const RtfDocument& document_;
  RtfOutput& out_;
  RtfTableWalk walk_;
  RtfNumbering numbering_;
  std::size_t numbered_ = 0;  ///< how many paragraphs it knows
  const CharFormat plain_;
  const std::vector<Alphabet> alphabets_;
  CharFormat format_;                        ///< of text that would be written now, but for its field
  std::uint32_t format_number_ = kNoFormat;  ///< whose entry `format_` and the open field are
  std::uint32_t entry_ = kNoFormat;          ///< the same but for the field
  std::vector<Step> steps_;                  ///< those made last, each at the place that its numbers make
  std::string words_;                        ///< of the step that is made
  const PartSink take_words_ = [this](std::string_view words) { return words_.append(words), true; };
  std::unique_ptr<RtfOutput> words_out_;
  Place place_;
  Place wanted_;  ///< of the paragraph that is being written
  bool in_paragraph_ = false;
  const rtf::Object* section_ = nullptr;  ///< the break that ends the paragraph
  std::vector<std::string> controls_;     ///< of paragraph formats, made when first used
  const ParagraphFormat default_paragraph_;
  std::vector<bool> has_text_;  ///< of cells, once somebody asks
  std::size_t text_at_ = 0;
  bool has_nested_row_ = false;  ///< the row of depth 0 does

  struct FieldAround {
    std::uint32_t number;
    CharFormat format_outside;
    std::uint32_t entry_outside;
    Place place_outside;
  };
  CharFormat format_around_group_;
  std::uint32_t entry_around_group_ = kNoFormat;
  bool in_group_ = false;                     ///< of one format
  std::vector<FieldAround> fields_;           ///< outermost first
  std::vector<std::uint32_t> fields_wanted_;  ///< the same of the text to come
};

}  // namespace tme::rtf
