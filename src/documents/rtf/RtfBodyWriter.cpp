#include "documents/rtf/RtfBodyWriter.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "documents/rtf/RtfPicture.h"

namespace tme::rtf {

namespace {

constexpr std::string_view kParagraphEnd = "\\par";

}  // namespace

RtfBodyWriter::RtfBodyWriter(const RtfDocument& document, RtfOutput& out)
    : document_(document),
      out_(out),
      walk_(document, *this),
      plain_(PlainFormat(document)),
      alphabets_(AlphabetsOf(document.fonts)),
      controls_(document.paragraph_formats.size()) {
  BeginPlain();
}

void RtfBodyWriter::BeginPlain() {
  format_ = plain_;
  format_.said = 0;
  format_number_ = entry_ = kNoFormat;
}

void RtfBodyWriter::WriteAll() {
  const std::size_t count = document_.paragraphs.size();
  for (std::size_t i = 0; i < count && !out_.Stopped(); ++i)
    Paragraph(i, i + 1 < count ? &document_.paragraphs[i + 1] : nullptr);
  CloseFields(0);
}

void RtfBodyWriter::WritePart(const RtfPart& part) {
  text_at_ = part.text;
  BeginPlain();
  place_ = {};
  out_.Words("\\plain");
  for (std::size_t i = part.begin; i < part.end; ++i) {
    const bool ends_part = i + 1 == part.end;
    if (part.depth > 0 || (ends_part && document_.paragraphs[i].cell < 0))
      ParagraphOfPart(i, part);
    else
      Paragraph(i, ends_part ? nullptr : &document_.paragraphs[i + 1]);
  }
  CloseFields(0);
}

/// What stands before the paragraph in a list, as many as there may be before it.
std::string RtfBodyWriter::NextItem(std::size_t index) {
  std::string item;
  for (; numbered_ <= index; ++numbered_) {
    const std::uint32_t format = document_.paragraphs[numbered_].format;
    item = numbering_.Next(format < document_.paragraph_formats.size() ? document_.paragraph_formats[format]
                                                                       : default_paragraph_);
  }
  return item;
}

void RtfBodyWriter::BeginParagraph(std::size_t index, std::size_t depth) {
  const rtf::Paragraph& paragraph = document_.paragraphs[index];
  const bool has_format = paragraph.format < document_.paragraph_formats.size();
  wanted_ = {has_format ? paragraph.format : kNoFormat - 1, depth};
  WriteParagraphFormat(wanted_, NextItem(index));
  in_paragraph_ = true;
  BeginFormats(index);
  section_ = document_.SectionBreakOf(index);
  Text(paragraph.first_run, document_.EndOfRuns(index) - (section_ != nullptr ? 1 : 0));
  SetFormat(paragraph.mark_format);
  in_paragraph_ = false;
}

void RtfBodyWriter::Paragraph(std::size_t index, const rtf::Paragraph* next) {
  walk_.Enter(document_.paragraphs[index]);
  BeginParagraph(index, walk_.Depth());
  if (!walk_.Leave(next)) EndParagraph();
}

void RtfBodyWriter::EndParagraph() {
  if (section_ != nullptr) {
    LeaveGroup();  // the end of its group would take back what the section says
    out_.Kept(section_->rtf);
    place_ = {};
    return out_.LineEnd();
  }
  out_.Words(kParagraphEnd);
  LeaveGroup();
  out_.LineEnd();
}

/// One that ends no cell that the part begins.
void RtfBodyWriter::ParagraphOfPart(std::size_t index, const RtfPart& part) {
  BeginParagraph(index, part.depth);
  if (index + 1 < part.end || part.mark == kParagraphEnd) return EndParagraph();
  LeaveFields();
  out_.Words(part.mark);
  LeaveGroup();
}

/// `item`: what stands before an item of a list; empty for others.
void RtfBodyWriter::WriteParagraphFormat(const Place& place, std::string_view item) {
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

void RtfBodyWriter::Text(std::size_t from, std::size_t to) {
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

void RtfBodyWriter::Object(const rtf::Object& object) {
  if (object.kind == ObjectKind::SectionBreak && wanted_.depth > 0) return out_.Words("\\page");
  if (!object.rtf.empty()) return out_.Kept(object.rtf);
  if (!object.picture.empty()) out_.Kept(RtfOfPicture(object.picture, object.width, object.height));
}

/// Where a paragraph's formats are not those of the one before, the format of its end comes first, which is often what
/// all of it has in common, and groups say the rest.
void RtfBodyWriter::BeginFormats(std::size_t index) {
  const rtf::Paragraph& paragraph = document_.paragraphs[index];
  const bool is_empty = paragraph.first_run == document_.EndOfRuns(index);
  const std::uint32_t first = is_empty ? paragraph.mark_format : document_.runs[paragraph.first_run].format;
  const CharFormat& wanted = CharFormatOf(first);
  if (first == format_number_ ||
      (LeadsTo(document_, plain_, wanted, format_) && LeadsTo(document_, plain_, format_, wanted)))
    return;
  for (const std::uint32_t candidate : {paragraph.mark_format, first}) {
    CharFormat format = CharFormatOf(candidate);
    if (format.font_class == wanted.font_class) format.text_class = wanted.text_class;
    if (NeedsGroup(document_, format) || !LeadsTo(document_, plain_, format, wanted)) continue;
    WriteCharFormat(document_, plain_, format_, format, out_);
    format_ = format;
    format_number_ = entry_ = kNoFormat;
    return;
  }
}

void RtfBodyWriter::SetFormat(std::uint32_t format) {
  if (format == format_number_) return;
  LeaveGroup();
  const CharFormat& wanted = CharFormatOf(format);
  EnterField(wanted.field);
  const Step& step = StepTo(format);
  if (step.needs_group) {
    format_around_group_ = format_;
    entry_around_group_ = entry_;
    in_group_ = true;
    out_.Open();
  }
  out_.Words(step.words);
  format_ = wanted;
  format_number_ = entry_ = format;
}

/// Texts go to and fro between a few formats.
const RtfBodyWriter::Step& RtfBodyWriter::StepTo(std::uint32_t format) {
  constexpr std::size_t kSteps = 256, kSpread = 17;
  if (steps_.empty()) {
    steps_.resize(kSteps);
    words_out_ = std::make_unique<RtfOutput>(take_words_);
  }
  Step& step = steps_[(entry_ * kSpread + format) % kSteps];
  if (entry_ != kNoFormat && step.from == entry_ && step.to == format) return step;
  const CharFormat& wanted = CharFormatOf(format);
  words_.clear();
  WriteCharFormat(document_, plain_, format_, wanted, *words_out_);
  words_out_->Finish();
  // What no word takes back ends with its group.
  const bool needs_group = NeedsGroup(document_, wanted) || !LeadsTo(document_, plain_, wanted, format_);
  step = {entry_, format, needs_group, words_};
  return step;
}

void RtfBodyWriter::LeaveGroup() {
  if (!in_group_) return;
  in_group_ = false;
  out_.Close();
  format_ = format_around_group_;
  entry_ = entry_around_group_;
  format_number_ = kNoFormat;
}

void RtfBodyWriter::EnterField(std::uint32_t number) {
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

void RtfBodyWriter::OpenField(std::uint32_t number) {
  const Field& field = document_.fields[number - 1];
  fields_.push_back({number, format_, entry_, place_});
  out_.Open("\\field");
  out_.Words(field.words);
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
void RtfBodyWriter::CloseFields(std::size_t stay_open) {
  LeaveGroup();
  if (fields_.size() <= stay_open) return;
  format_ = fields_[stay_open].format_outside;
  entry_ = fields_[stay_open].entry_outside;
  format_number_ = kNoFormat;
  place_ = fields_[stay_open].place_outside;
  for (; fields_.size() > stay_open; fields_.pop_back()) {
    out_.Close();
    out_.Close();
  }
  if (in_paragraph_ && place_ != wanted_) WriteParagraphFormat(wanted_, {});
}

/// Before the end of a paragraph that no field can go on behind.
void RtfBodyWriter::LeaveFields() {
  if (!fields_.empty()) CloseFields(0);
  if (place_ != wanted_) WriteParagraphFormat(wanted_, {});
}

void RtfBodyWriter::RowDefinition(std::uint32_t row) {
  std::span<const std::uint32_t> cells = walk_.CellsOf(row);
  if (document_.rows[row].definition.empty()) return out_.Words(RowControls(document_, cells));
  while (cells.size() > 1 && !HasText(cells.back())) cells = cells.first(cells.size() - 1);
  out_.Words(CompletedDefinition(document_, cells));
}

bool RtfBodyWriter::HasText(std::uint32_t cell) {
  if (has_text_.empty()) {
    has_text_.resize(document_.cells.size());
    for (std::size_t i = 0; i < document_.paragraphs.size(); ++i) {
      const rtf::Paragraph& paragraph = document_.paragraphs[i];
      const bool is_there = paragraph.cell >= 0 && document_.EndOfRuns(i) > paragraph.first_run;
      if (is_there) has_text_[static_cast<std::size_t>(paragraph.cell)] = true;
    }
  }
  return has_text_[cell];
}

void RtfBodyWriter::BeginRow(std::uint32_t row, std::size_t depth) {
  CloseFields(0);
  place_ = {};  // readers forget the format of the paragraph, and whether it is in a table, with each row
  has_nested_row_ = depth > 0;
  if (has_nested_row_) return;
  RowDefinition(row);
  out_.LineEnd();
}

void RtfBodyWriter::EndCell(std::size_t depth) {
  LeaveFields();
  out_.Words(depth == 0 ? "\\cell" : "\\nestcell");
  LeaveGroup();
  out_.LineEnd();
}

void RtfBodyWriter::EmptyCell(std::size_t depth) {
  WriteParagraphFormat({kNoFormat - 1, depth + 1}, {});
  out_.Words(depth == 0 ? "\\cell" : "\\nestcell");
}

void RtfBodyWriter::EndRow(std::uint32_t row, std::size_t depth) {
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

}  // namespace tme::rtf
