#include <algorithm>
#include <utility>

#include "documents/rtf/RtfParser.h"

namespace tme::rtf {
namespace {

constexpr std::int32_t kMaxListLevel = 8;
constexpr std::size_t kMaxTabs = 64;

/// Words that set a property, and the length that becomes their number.
struct PropertyWord {
  Control control;
  ParagraphProperty property;
  std::int32_t ParagraphFormat::*length;
};
constexpr PropertyWord kProperties[] = {{Control::IndentLeft, kIndentLeft, &ParagraphFormat::left},
                                        {Control::IndentRight, kIndentRight, &ParagraphFormat::right},
                                        {Control::IndentFirst, kIndentFirst, &ParagraphFormat::first_line},
                                        {Control::SpaceBefore, kSpaceBefore, &ParagraphFormat::space_before},
                                        {Control::SpaceAfter, kSpaceAfter, &ParagraphFormat::space_after},
                                        {Control::LineSpacing, kLineSpacing, &ParagraphFormat::line_spacing},
                                        {Control::LineMultiple, kLineSpacing, nullptr},
                                        {Control::Aligned, kAlignment, nullptr},
                                        {Control::PageBreakBefore, kPageBreakBefore, nullptr},
                                        {Control::ListOverride, kList, nullptr}};

void AddTab(std::int32_t position, TabKind kind, ParagraphState& paragraph, Losses& losses) {
  if (paragraph.format.tabs.size() < kMaxTabs) {
    paragraph.format.tabs.push_back({position, kind, paragraph.next_leader});
  } else {
    ++losses.limits;
  }
  paragraph.next_tab = TabKind::Left;
  paragraph.next_leader = TabLeader::None;
}

void FindList(const ListTables& lists, ParagraphFormat& format, std::int32_t list_id) {
  format.list_id = list_id;
  const ListStyle& style = lists.Find(format.list_id, format.list_level);
  // One that no table knows is what its own words say.
  if (list_id != 0 && style.kind == ListKind::None && format.list_group != 0) return;
  format.list = style.kind;
  format.list_start = style.start;
  format.list_text = style.text;
}

/// Words of ControlClass::ParagraphFormat but \pard and words that are kept as they are; what is over a limit counts as
/// a loss.
void ApplyParagraphWord(const ControlWord& word, const Token& token, const ListTables& lists, ParagraphState& paragraph,
                        Losses& losses) {
  ParagraphFormat& format = paragraph.format;
  const std::int32_t value = token.value;
  switch (word.control) {
    case Control::Aligned:
      format.alignment = static_cast<Alignment>(word.value);
      return;
    case Control::LineMultiple:
      format.line_multiple = token.IsOn();
      return;
    case Control::TabAt:
      return AddTab(value, word.value != 0 ? TabKind::Bar : paragraph.next_tab, paragraph, losses);
    case Control::TabKindNext:
      paragraph.next_tab = static_cast<TabKind>(word.value);
      return;
    case Control::TabLeaderNext:
      paragraph.next_leader = static_cast<TabLeader>(word.value);
      return;
    case Control::PageBreakBefore:
      format.page_break_before = token.IsOn();
      return;
    case Control::ListOverride:
      // Without tables the list is that of its own words.
      if (value != 0 || format.list_id != 0) FindList(lists, format, value);
      return;
    case Control::ListLevel:
      format.list_level = static_cast<std::uint8_t>(std::clamp(value, 0, kMaxListLevel));
      if (format.list_id != 0) FindList(lists, format, format.list_id);
      return;
    case Control::InTable:
      paragraph.is_in_table = token.IsOn();
      return;
    case Control::TableDepth:
      paragraph.table_depth = std::clamp(value, 0, kMaxTableLevel);
      losses.deep_tables = losses.deep_tables || value > kMaxTableLevel;
      return;
    default:
      return;
  }
}

/// A word about a property has come.
void NoteProperty(const ControlWord& word, std::int32_t value, ParagraphFormat& format) {
  for (const PropertyWord& it : kProperties) {
    if (it.control != word.control) continue;
    if (it.length != nullptr) format.*it.length = value;
    const bool is_indent = it.property == kIndentLeft || it.property == kIndentRight;
    const int said = it.property | (is_indent && word.value != 0 ? kLeadingIndents : 0);
    format.said = static_cast<std::uint16_t>((format.said | said) & DefaultsOf(format));
    return;
  }
}

std::string InBraces(std::string_view word) {
  std::string text("{");
  return text.append(word).append("}");
}

constexpr bool IsOfField(Control control) {
  return control == Control::Field || control == Control::FieldInstruction || control == Control::TransparentGroup ||
         control == Control::SkippedGroup;
}

}  // namespace

/// The control word as it came, without the blank that ended it.
std::string_view Parser::RawWord() const {
  std::string_view raw = tokens_.Bytes().substr(token_.begin, tokens_.Position() - token_.begin);
  if (raw.ends_with(' ')) raw.remove_suffix(1);
  return raw;
}

void Parser::ReadWord(const ControlWord& word) {
  if (word.control == Control::Character && decoder_.SkipFallback(token_.end)) return;
  if (word.control != Control::Unicode) decoder_.EndFallback();
  if (too_deep_ > 0 && IsBody()) return ReadDeepWord(word);
  const Destination destination = Top().destination;
  if (word.control_class == ControlClass::Group) {
    if (!IsOfField(word.control)) ++effects_;
    if (states_.size() > 2) ReadGroupWord(word);
  } else if (destination == Destination::FontTable || destination == Destination::ColorTable) {
    if (word.control_class == ControlClass::Text) return ReadTextWord(word);
    if (destination == Destination::FontTable) return fonts_.ReadWord(word, token_.value, RawWord(), Top().encoding);
    colors_.ReadWord(word, token_.value, RawWord());
  } else {
    ReadBodyWord(word);
  }
}

void Parser::ReadBodyWord(const ControlWord& word) {
  is_page_border_ = is_page_border_ && word.control_class == ControlClass::Border;
  switch (word.control_class) {
    case ControlClass::CharacterFormat:
      return ReadCharacterWord(word);
    case ControlClass::ParagraphFormat:
      return ReadParagraphWord(word);
    case ControlClass::Text:
      ReadTextWord(word);
      if (word.control != Control::UnicodeSkip) NoteEffect();
      return;
    case ControlClass::Border:
      return ReadBorderWord(word);
    case ControlClass::Row:
      ReadRowWord(word);
      return NoteEffect();
    case ControlClass::File:
      ReadFileWord(word);
      return NoteEffect();
    case ControlClass::Unknown:
      return ReadUnknownWord(word);
    case ControlClass::Ignored:
      if (word.control == Control::FieldWord) ReadFieldWord();
      return;
    case ControlClass::TableEntry:
    case ControlClass::Group:
      return;
  }
}

void Parser::ReadTextWord(const ControlWord& word) {
  switch (word.control) {
    case Control::Paragraph:
      EndParagraph(Paragraph().TableLevel(), RtfSource::MarkKind::Paragraph);
      Top().has_only_words = false;
      return;
    case Control::Section:
      if (IsBody()) BreakSection();
      return;
    case Control::InvisibleMark:
      object_begin_ = token_.begin;
      return KeepInvisible(InBraces(RawWord()));
    case Control::DynamicText: {
      object_begin_ = token_.begin;
      const bool is_number = word.name == "chpgn" || word.name == "sectnum";
      const std::string_view label = is_number ? "Number" : word.name == "chtime" ? "Time" : "Date";
      return AddObject({.kind = ObjectKind::Placeholder, .rtf = InBraces(RawWord()), .label = std::string(label)});
    }
    default:
      return decoder_.ReadWord(word, token_, Top().encoding);
  }
}

void Parser::ReadFieldWord() {
  const auto found = std::ranges::find(kFieldWords, token_.text);
  if (Top().is_field) Top().field_words |= static_cast<std::uint8_t>(1 << (found - kFieldWords.begin()));
}

void Parser::ReadParagraphWord(const ControlWord& word) {
  ParagraphState& paragraph = OwnParagraph();
  switch (word.control) {
    case Control::ParagraphReset:
      if (IsBody()) StartBody(token_.begin);
      paragraph = {};
      return rows_.End();
    case Control::ParagraphWord:
      return KeepWithParagraph(Extra::Replace);
    default:
      ApplyParagraphWord(word, token_, lists_, paragraph, document_.losses);
      return NoteProperty(word, token_.value, paragraph.format);
  }
}

void Parser::ReadBorderWord(const ControlWord& word) {
  if (is_page_border_) return KeepWordWithSection();
  if (IsOfCharacterBorder()) {
    character_border_end_ = tokens_.Position();
    return KeepWithCharacters(token_.text);
  }
  OwnParagraph();
  if (!rows_.IsOpen()) return KeepWithParagraph(Extra::Append);
  AddRowWord(word);
  NoteEffect();
}

void Parser::ReadRowWord(const ControlWord& word) {
  const int nested = std::max(2, Paragraph().TableLevel());
  switch (word.control) {
    case Control::RowStart:
      if (IsBody()) StartBody(token_.begin);
      return rows_.Begin(Top().is_nested_properties ? nested : 1, RawWord());
    case Control::CellEnd:
      return EndCell(word.value == 0 ? 1 : nested);
    case Control::RowEnd:
      return EndRow(word.value == 0 ? 1 : nested);
    default:
      if (rows_.IsOpen()) AddRowWord(word);
      return;
  }
}

void Parser::AddRowWord(const ControlWord& word) {
  if (!rows_.Add(word, token_.value, RawWord())) ++document_.losses.limits;
}

void Parser::EndCell(int level) {
  if (!IsBody()) return;
  EndParagraph(level);
  builder_.EndCell(level);
}

void Parser::EndRow(int level) {
  if (!IsBody()) return;
  if (builder_.HasVisiblePending()) EndCell(level);  // text without a cell's end stands in a cell all the same
  if (builder_.HasPending() && !document_.paragraphs.empty()) {
    builder_.GivePendingBack();
    if (source_ != nullptr) first_piece_ = static_cast<std::uint32_t>(source_->pieces.size());
  }
  builder_.EndRow(level, rows_.Of(level));
  rows_.End(level);
  if (level == 1 && source_ != nullptr && !source_->marks.empty())
    source_->marks.back().whole_end = static_cast<std::uint32_t>(tokens_.Position());
}

/// Goes with what its name begins like: a border, the section, the row that is being defined; else with the text, else
/// with the document.
void Parser::ReadUnknownWord(const ControlWord& word) {
  const std::string_view name = token_.text;
  if (name.starts_with("brdr")) return ReadBorderWord(word);
  if (name.starts_with("pgn") || name.starts_with("sftnn") || name.starts_with("saftnn")) {
    KeepWordWithSection();
    return NoteEffect();
  }
  const bool is_named_as_row = name.starts_with("tr") || name.starts_with("cl") || name.starts_with("ts");
  if (rows_.IsOpen() || is_named_as_row) {
    if (rows_.IsOpen()) AddRowWord(word);
    NoteEffect();
  } else if (is_body_) {
    KeepWithCharacters(name);
  } else {
    document_controls_.KeepUnknown(RawWord());
  }
}

void Parser::KeepWithParagraph(Extra how) {
  ParagraphFormat& format = Paragraph().format;
  format.extra = builder_.AddExtra(format.extra, RawWord(), token_.text, how);
}

}  // namespace tme::rtf
