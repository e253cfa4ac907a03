#include <algorithm>
#include <utility>

#include "documents/rtf/RtfParser.h"

namespace tme::rtf {
namespace {

constexpr std::int32_t kMaxListLevel = 8;
constexpr std::size_t kMaxTabs = 64;

/// Words that set a length to their number.
constexpr std::pair<Control, std::int32_t ParagraphFormat::*> kLengths[] = {
    {Control::IndentLeft, &ParagraphFormat::left},        {Control::IndentRight, &ParagraphFormat::right},
    {Control::IndentFirst, &ParagraphFormat::first_line}, {Control::SpaceBefore, &ParagraphFormat::space_before},
    {Control::SpaceAfter, &ParagraphFormat::space_after}, {Control::LineSpacing, &ParagraphFormat::line_spacing}};

void AddTab(std::int32_t position, TabKind kind, ParagraphState& paragraph, Losses& losses) {
  if (paragraph.format.tabs.size() < kMaxTabs) {
    paragraph.format.tabs.push_back({position, kind, paragraph.next_leader});
  } else {
    ++losses.limits;
  }
  paragraph.next_tab = TabKind::Left;
  paragraph.next_leader = TabLeader::None;
}

void FindList(const ListTables& lists, ParagraphFormat& format) {
  if (format.list_id == 0) return;
  const ListStyle& style = lists.Find(format.list_id, format.list_level);
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
  for (const auto& [control, length] : kLengths) {
    if (control == word.control) format.*length = value;
  }
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
      format.list_id = value;
      return FindList(lists, format);
    case Control::ListLevel:
      format.list_level = static_cast<std::uint8_t>(std::clamp(value, 0, kMaxListLevel));
      return FindList(lists, format);
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
    if (destination == Destination::FontTable) return fonts_.ReadWord(word, token_.value, Top().encoding);
    colors_.ReadWord(word, token_.value);
  } else {
    ReadBodyWord(word);
  }
}

void Parser::ReadBodyWord(const ControlWord& word) {
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
      if (!IsBody()) return;
      if (builder_.HasVisiblePending()) EndParagraph(Paragraph().TableLevel());
      is_section_pending_ = true;
      is_first_section_ = false;
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
      if (IsBody()) StartBody();
      paragraph = {};
      return rows_.End();
    case Control::ParagraphWord:
      return KeepWithParagraph(Extra::Replace);
    default:
      return ApplyParagraphWord(word, token_, lists_, paragraph, document_.losses);
  }
}

void Parser::ReadBorderWord(const ControlWord& word) {
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
      if (IsBody()) StartBody();
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
    source_->marks.back().row_end = static_cast<std::uint32_t>(tokens_.Position());
}

void Parser::ReadFileWord(const ControlWord& word) {
  switch (word.control) {
    case Control::CodePage: {
      const int page = word.value != 0 ? word.value : token_.value;
      if (page <= kPrivateSymbolPage) return;
      fonts_.SetAnsiPage(page);
      for (State& state : states_) state.encoding.page = &fonts_.PageOf(state.character.font);
      return;
    }
    case Control::DefaultFont:
      if (is_body_) return;  // text without a font stands already
      fonts_.SetDefaultNumber(token_.value);
      return ApplyDefaultFont();
    case Control::DocumentWord:
      return document_controls_.Keep(word, RawWord());
    case Control::SectionBreak:
      section_begins_page_ = word.name != "sbknone" && word.name != "sbkcol";
      break;
    case Control::SectionReset:
      section_begins_page_ = true;
      break;
    default:
      break;
  }
  if (is_first_section_) {
    document_controls_.Keep(word, RawWord());
  } else if (word.control == Control::SectionWord && document_.losses.named.empty()) {
    document_.losses.named.emplace_back("page layout of later sections");
  }
}

/// Goes with the row that is being defined, else with the text, else with the document.
void Parser::ReadUnknownWord(const ControlWord& word) {
  const std::string_view name = token_.text;
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
