#include "documents/rtf/RtfWriter.h"

#include <algorithm>
#include <string>
#include <vector>

#include "documents/rtf/RtfFormatOutput.h"
#include "documents/rtf/RtfNumbering.h"
#include "documents/rtf/RtfOutput.h"
#include "documents/rtf/RtfTableWalk.h"

namespace tme::rtf {

namespace {

constexpr std::uint32_t kNoFormat = 0xFFFFFFFF;
constexpr std::string_view kPngSignature = "\x89PNG";

class Writer : private RtfTableWalk::Listener {
 public:
  Writer(const RtfDocument& document, const PartSink& sink)
      : document_(document),
        out_(sink),
        walk_(document, *this),
        plain_(PlainFormat(document)),
        alphabets_(AlphabetsOf(document.fonts)),
        format_(plain_),
        controls_(document.paragraph_formats.size()) {}

  bool Write() {
    Header();
    for (std::size_t i = 0; i < document_.paragraphs.size() && !out_.Stopped(); ++i) Paragraph(i);
    CloseFields(0);
    out_.Close();
    out_.LineEnd();
    return out_.Finish();
  }

 private:
  /// Which format of a paragraph stands in the file.
  struct Place {
    std::uint32_t format = kNoFormat;
    std::size_t depth = 0;
    bool operator==(const Place&) const = default;
  };

  void Header();
  void Paragraph(std::size_t index);
  void WriteParagraphFormat(const Place& place, std::string_view item);
  void Text(std::size_t from, std::size_t to);
  void Object(const rtf::Object& object);
  void SetFormat(std::uint32_t format);
  void LeaveSuperscript();
  void EnterField(std::uint32_t number);
  void OpenField(std::uint32_t number);
  void CloseFields(std::size_t stay_open);

  void BeginRow(std::uint32_t row, std::size_t depth) override;
  void EndCell(std::size_t depth) override;
  void EmptyCell(std::size_t depth) override;
  void EndRow(std::uint32_t row, std::size_t depth) override;
  void RowDefinition(std::uint32_t row);

  const CharFormat& CharFormatOf(std::uint32_t format) const {
    return format < document_.char_formats.size() ? document_.char_formats[format] : plain_;
  }

  const RtfDocument& document_;
  RtfOutput out_;
  RtfTableWalk walk_;
  RtfNumbering numbering_;
  const CharFormat plain_;
  std::vector<Alphabet> alphabets_;
  CharFormat format_;                        ///< of text that would be written now, but for its field
  std::uint32_t format_number_ = kNoFormat;  ///< whose entry `format_` and the open field are
  Place place_;
  Place wanted_;  ///< of the paragraph that is being written
  bool in_paragraph_ = false;
  std::vector<std::string> controls_;  ///< of paragraph formats, made when first used
  const ParagraphFormat default_paragraph_;
  std::size_t text_at_ = 0;
  bool has_nested_row_ = false;  ///< the row of depth 0 does

  struct FieldAround {
    std::uint32_t number;
    CharFormat format_outside;
    Place place_outside;
  };
  CharFormat format_around_superscript_;
  bool in_superscript_ = false;
  std::vector<FieldAround> fields_;           ///< outermost first
  std::vector<std::uint32_t> fields_wanted_;  ///< the same of the text to come
};

void Writer::Header() {
  out_.Open("\\rtf1");
  out_.Words(document_.ansi_code_page == 10000 ? "\\mac" : "\\ansi");
  out_.Word("\\ansicpg", document_.ansi_code_page);
  out_.Words("\\uc1");
  out_.Word("\\deff", document_.default_font);
  out_.LineEnd();
  WriteTables(document_, out_);
  for (const std::string* part : {&document_.kept_header, &document_.document_controls, &document_.kept_section}) {
    if (part->empty()) continue;
    out_.Kept(*part);
    out_.LineEnd();
  }
  // Kept control words may have said otherwise.
  out_.Words("\\uc1");
}

void Writer::Paragraph(std::size_t index) {
  const rtf::Paragraph& paragraph = document_.paragraphs[index];
  const bool is_last = index + 1 == document_.paragraphs.size();
  walk_.Enter(paragraph);
  const bool has_format = paragraph.format < document_.paragraph_formats.size();
  const ParagraphFormat& format = has_format ? document_.paragraph_formats[paragraph.format] : default_paragraph_;
  wanted_ = {has_format ? paragraph.format : kNoFormat - 1, walk_.Depth()};
  WriteParagraphFormat(wanted_, numbering_.Next(format));
  in_paragraph_ = true;
  Text(paragraph.first_run, document_.EndOfRuns(index));
  SetFormat(paragraph.mark_format);
  in_paragraph_ = false;
  if (walk_.Leave(is_last ? nullptr : &document_.paragraphs[index + 1])) return;
  out_.Words("\\par");
  LeaveSuperscript();
  out_.LineEnd();
}

/// `item`: what stands before an item of a list; empty for others.
void Writer::WriteParagraphFormat(const Place& place, std::string_view item) {
  const bool is_new = place_ != place;
  const bool known = place.format < controls_.size();
  const bool in_file_list = known && document_.paragraph_formats[place.format].list_id != 0;
  if (is_new) {
    out_.Words("\\pard");
    if (place.depth > 0) out_.Words("\\intbl");
    if (place.depth > 1) out_.Word("\\itap", static_cast<std::int64_t>(place.depth));
  }
  if (!item.empty()) {
    out_.Open(in_file_list ? "\\listtext" : "\\pntext");
    out_.Text(item);
    out_.Text("\t");
    out_.Close();
  }
  place_ = place;
  if (!is_new || !known) return;
  std::string& controls = controls_[place.format];
  if (controls.empty()) controls = ParagraphControls(document_, document_.paragraph_formats[place.format]);
  out_.Words(controls);
}

void Writer::Text(std::size_t from, std::size_t to) {
  for (std::size_t i = from; i < to; ++i) {
    const Run& run = document_.runs[i];
    SetFormat(run.format);
    if (const rtf::Object* object = EntryOf(document_.objects, run.object)) {
      Object(*object);
      continue;
    }
    const std::uint32_t font = format_.font < document_.fonts.size() ? format_.font : plain_.font;
    out_.Text(std::string_view(document_.text).substr(text_at_, run.bytes), alphabets_[font]);
    text_at_ += run.bytes;
  }
}

void Writer::Object(const rtf::Object& object) {
  if (!object.rtf.empty()) return out_.Kept(object.rtf);
  if (object.picture.empty()) return;
  out_.Open(object.picture.starts_with(kPngSignature) ? "\\pict\\pngblip" : "\\pict\\jpegblip");
  if (object.width > 0) out_.Word("\\picwgoal", object.width);
  if (object.height > 0) out_.Word("\\pichgoal", object.height);
  out_.Hex(object.picture);
  out_.Close();
}

void Writer::SetFormat(std::uint32_t format) {
  if (format == format_number_) return;
  LeaveSuperscript();
  const CharFormat& wanted = CharFormatOf(format);
  EnterField(wanted.field);
  if (wanted.script == Script::Super) {
    format_around_superscript_ = format_;
    in_superscript_ = true;
    out_.Open();
  }
  WriteCharFormat(document_, plain_, format_, wanted, out_);
  format_ = wanted;
  format_number_ = format;
}

/// Superscript has a group of its own: a word processor may take it for a footnote's mark, and holds back what follows
/// until the group ends.
void Writer::LeaveSuperscript() {
  if (!in_superscript_) return;
  in_superscript_ = false;
  out_.Close();
  format_ = format_around_superscript_;
  format_number_ = kNoFormat;
}

void Writer::EnterField(std::uint32_t number) {
  if (number == (fields_.empty() ? 0 : fields_.back().number)) return;
  fields_wanted_.clear();
  while (const Field* field = EntryOf(document_.fields, number)) {
    fields_wanted_.push_back(number);
    // A field comes before those in it; anything else would go round in a circle.
    number = field->parent < number ? field->parent : 0;
  }
  std::reverse(fields_wanted_.begin(), fields_wanted_.end());
  std::size_t common = 0;
  while (common < fields_.size() && common < fields_wanted_.size() && fields_[common].number == fields_wanted_[common])
    ++common;
  CloseFields(common);
  for (std::size_t i = common; i < fields_wanted_.size(); ++i) OpenField(fields_wanted_[i]);
}

void Writer::OpenField(std::uint32_t number) {
  const Field& field = document_.fields[number - 1];
  fields_.push_back({number, format_, place_});
  out_.Open("\\field");
  if (!field.instruction.empty()) {
    out_.Kept(field.instruction);
  } else {
    std::string instruction = "HYPERLINK \"";
    for (const char each : field.url) {
      if (each == '\\') instruction.push_back('\\');
      each == '"' ? instruction.append("%22") : instruction.append(1, each);
    }
    out_.Open("\\*\\fldinst");
    out_.Text(instruction.append("\""));
    out_.Close();
  }
  out_.Open("\\fldrslt");
}

/// The groups' ends bring back what stood before them.
void Writer::CloseFields(std::size_t stay_open) {
  LeaveSuperscript();
  if (fields_.size() <= stay_open) return;
  format_ = fields_[stay_open].format_outside;
  format_number_ = kNoFormat;
  place_ = fields_[stay_open].place_outside;
  for (; fields_.size() > stay_open; fields_.pop_back()) {
    out_.Close();
    out_.Close();
  }
  if (in_paragraph_ && place_ != wanted_) WriteParagraphFormat(wanted_, {});
}

void Writer::RowDefinition(std::uint32_t row) {
  const bool is_new = document_.rows[row].definition.empty();
  out_.Words((is_new ? RowControls : CompletedDefinition)(document_, walk_.CellsOf(row)));
}

void Writer::BeginRow(std::uint32_t row, std::size_t depth) {
  CloseFields(0);
  place_ = {};  // readers forget the format of the paragraph, and whether it is in a table, with each row
  has_nested_row_ = depth > 0;
  if (has_nested_row_) return;
  RowDefinition(row);
  out_.LineEnd();
}

void Writer::EndCell(std::size_t depth) {
  CloseFields(0);
  if (place_ != wanted_) WriteParagraphFormat(wanted_, {});
  out_.Words(depth == 0 ? "\\cell" : "\\nestcell");
  out_.LineEnd();
}

void Writer::EmptyCell(std::size_t depth) {
  WriteParagraphFormat({kNoFormat - 1, depth + 1}, {});
  out_.Words(depth == 0 ? "\\cell" : "\\nestcell");
}

void Writer::EndRow(std::uint32_t row, std::size_t depth) {
  if (depth == 0) {
    // Readers that keep one definition at a time have lost it to the inner table.
    if (has_nested_row_) RowDefinition(row);
    out_.Words("\\row");
  } else {
    out_.Open("\\*\\nesttableprops");
    RowDefinition(row);
    out_.Words("\\nestrow");
    out_.Close();
    out_.Open("\\nonesttables\\par");
    out_.Close();
  }
  out_.LineEnd();
}

}  // namespace

bool WriteRtf(const RtfDocument& document, const PartSink& sink) { return Writer(document, sink).Write(); }

}  // namespace tme::rtf
