#include <algorithm>
#include <cctype>
#include <utility>

#include "documents/rtf/RtfParser.h"

namespace tme::rtf {
namespace {

constexpr std::string_view kLineBreak = "\xE2\x80\xA8";
constexpr std::int32_t kMaxHalfPoints = 3276;
constexpr std::uint32_t kDefaultHalfPoints = 24;
constexpr std::size_t kMaxTabs = 64;
constexpr std::size_t kMaxRowCells = 1024;
constexpr std::size_t kMaxColors = 65'536;
constexpr std::size_t kMaxUnknownDocumentWords = 256;
constexpr std::int32_t kMaxFontNumber = 65'535;
constexpr std::size_t kMaxNameBytes = 256;
constexpr int kMaxUnicodeSkip = 255;

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

/// For change: the group's own from now on.
Parser::ParagraphState& Parser::OwnParagraph() {
  if (!Top().owns_paragraph) {
    ParagraphState copy = Paragraph();
    paragraphs_.push_back(std::move(copy));
    Top().paragraph = static_cast<std::uint32_t>(paragraphs_.size() - 1);
    Top().owns_paragraph = true;
  }
  return Paragraph();
}

CharFormat& Parser::Character() {
  Top().character_id = kStale;
  return Top().character;
}

void Parser::ReadWord(const ControlWord& word) {
  if (fallback_left_ > 0 && word.control == Control::Character) {
    --fallback_left_;
    return;
  }
  if (word.control != Control::Unicode) fallback_left_ = 0;
  if (word.control >= Control::FontTable) {
    if (!IsOfField(word.control)) ++effects_;
    if (states_.size() > 2) ReadGroupWord(word);
    return;
  }
  if (reading_ == Reading::Label) {
    ReadLabelWord(word);
    return;
  }
  if (Top().destination == Destination::FontTable || Top().destination == Destination::ColorTable) {
    ReadFontWord(word);
    return;
  }
  if (word.control == Control::Ignored) return;
  if (ReadTextWord(word)) {
    if (word.control != Control::UnicodeSkip) Touch();
    return;
  }
  if (ReadCharacterWord(word)) return;
  if (word.control >= Control::ParagraphReset && word.control <= Control::TableDepth) OwnParagraph();
  if (ReadParagraphWord(word)) return;
  if (ReadTableWord(word) || ReadFileWord(word)) {
    Touch();
    return;
  }
  KeepWord(word);
}

void Parser::ReadLabelWord(const ControlWord& word) {
  switch (word.control) {
    case Control::FontNumber:
      SetFont(token_.value);
      break;
    case Control::Plain:
      Top().page = &fonts_.PageOf(fonts_.IndexOf(default_font_number_));
      break;
    case Control::RowEnd:
    case Control::NestedRowEnd:
      EndParagraph(0);
      break;
    case Control::CellEnd:
    case Control::NestedCellEnd:
      EmitCharacter('\t');
      break;
    default:
      ReadTextWord(word);
      break;
  }
}

bool Parser::ReadTextWord(const ControlWord& word) {
  switch (word.control) {
    case Control::Character:
      EmitCharacter(static_cast<char32_t>(word.value));
      return true;
    case Control::Unicode:
      if (token_.has_value) ReadUnicode(token_.value);
      return true;
    case Control::UnicodeSkip:
      Top().unicode_skip =
          static_cast<std::uint8_t>(token_.has_value ? std::clamp(token_.value, 0, kMaxUnicodeSkip) : 1);
      return true;
    case Control::Paragraph:
      EndParagraph(Paragraph().TableLevel());
      Top().is_untouched = false;
      return true;
    case Control::Line:
      Emit(kLineBreak);
      return true;
    case Control::Page:
      Emit("\f");
      return true;
    case Control::Section:
      if (reading_ == Reading::Label || Top().destination != Destination::Body) return true;
      if (builder_.HasVisiblePending()) EndParagraph(Paragraph().TableLevel());
      is_section_pending_ = true;
      is_first_section_ = false;
      return true;
    case Control::InvisibleMark:
      if (reading_ == Reading::Document) KeepInvisible(InBraces(RawWord()));
      return true;
    case Control::DynamicText: {
      if (reading_ == Reading::Label) return true;
      const bool is_number = word.name == "chpgn" || word.name == "sectnum";
      const std::string_view label = is_number ? "Number" : word.name == "chtime" ? "Time" : "Date";
      AddObject(ObjectKind::Placeholder, InBraces(RawWord()), std::string(label));
      return true;
    }
    default:
      return false;
  }
}

bool Parser::ReadCharacterWord(const ControlWord& word) {
  switch (word.control) {
    case Control::Plain: {
      const std::uint32_t field = Top().character.field;
      Character() = default_character_;
      Top().character.field = field;
      Top().page = &fonts_.PageOf(default_character_.font);
      return true;
    }
    case Control::FontNumber:
      SetFont(token_.value);
      return true;
    case Control::FontSize:
      Character().half_points =
          token_.value > 0 ? static_cast<std::uint32_t>(std::min(token_.value, kMaxHalfPoints)) : kDefaultHalfPoints;
      return true;
    case Control::Color:
      Character().color = ColorOf(token_.value);
      return true;
    case Control::Background:
      Character().background = ColorOf(token_.value);
      return true;
    case Control::Bold:
      Character().bold = IsOn();
      return true;
    case Control::Italic:
      Character().italic = IsOn();
      return true;
    case Control::Hidden:
      Character().hidden = IsOn();
      return true;
    case Control::Underlined:
      Character().underline = IsOn() ? static_cast<Underline>(word.value) : Underline::None;
      return true;
    case Control::Struck:
      Character().strike = IsOn() ? static_cast<Strike>(word.value) : Strike::None;
      return true;
    case Control::Scripted:
      Character().script = IsOn() ? static_cast<Script>(word.value) : Script::Normal;
      return true;
    case Control::Raised: {
      const bool is_up = (word.value > 0) == (token_.value > 0);
      Character().script = !IsOn() ? Script::Normal : is_up ? Script::Super : Script::Sub;
      return true;
    }
    case Control::Capital:
      Character().capitals = IsOn() ? static_cast<Capitals>(word.value) : Capitals::None;
      return true;
    default:
      return false;
  }
}

bool Parser::ReadParagraphWord(const ControlWord& word) {
  ParagraphState& paragraph = Paragraph();
  ParagraphFormat& format = paragraph.format;
  const std::int32_t value = token_.value;
  switch (word.control) {
    case Control::ParagraphReset:
      if (Top().destination == Destination::Body) StartBody();
      paragraph = {};
      open_row_ = 0;
      return true;
    case Control::Aligned:
      format.alignment = static_cast<Alignment>(word.value);
      return true;
    case Control::IndentLeft:
      format.left = value;
      return true;
    case Control::IndentRight:
      format.right = value;
      return true;
    case Control::IndentFirst:
      format.first_line = value;
      return true;
    case Control::SpaceBefore:
      format.space_before = value;
      return true;
    case Control::SpaceAfter:
      format.space_after = value;
      return true;
    case Control::LineSpacing:
      format.line_spacing = value;
      return true;
    case Control::LineMultiple:
      format.line_multiple = IsOn();
      return true;
    case Control::TabAt:
      AddTab(word.value != 0 ? TabKind::Bar : paragraph.next_tab);
      return true;
    case Control::TabKindNext:
      paragraph.next_tab = static_cast<TabKind>(word.value);
      return true;
    case Control::TabLeaderNext:
      paragraph.next_leader = static_cast<TabLeader>(word.value);
      return true;
    case Control::PageBreakBefore:
      format.page_break_before = IsOn();
      return true;
    case Control::ListOverride:
      format.list_id = value;
      FindList(format);
      return true;
    case Control::ListLevel:
      format.list_level = static_cast<std::uint8_t>(std::clamp(value, 0, 8));
      FindList(format);
      return true;
    case Control::InTable:
      paragraph.is_in_table = IsOn();
      return true;
    case Control::TableDepth:
      paragraph.table_depth = std::clamp(value, 0, kMaxTableLevel);
      document_.losses.deep_tables = document_.losses.deep_tables || value > kMaxTableLevel;
      return true;
    default:
      return false;
  }
}

void Parser::AddTab(TabKind kind) {
  ParagraphState& paragraph = Paragraph();
  if (paragraph.format.tabs.size() < kMaxTabs) {
    paragraph.format.tabs.push_back({token_.value, kind, paragraph.next_leader});
  } else {
    ++document_.losses.limits;
  }
  paragraph.next_tab = TabKind::Left;
  paragraph.next_leader = TabLeader::None;
}

void Parser::FindList(ParagraphFormat& format) {
  if (format.list_id == 0) return;
  const ListLook look = lists_.Find(format.list_id, format.list_level);
  format.list = look.kind;
  format.list_start = look.start;
}

RowDefinition& Parser::RowDefinitionOf(int level) {
  const auto index = static_cast<std::size_t>(std::clamp(level, 1, kMaxTableLevel)) - 1;
  if (index >= row_definitions_.size()) row_definitions_.resize(index + 1);
  return row_definitions_[index];
}

bool Parser::ReadTableWord(const ControlWord& word) {
  const int nested = std::max(2, Paragraph().TableLevel());
  switch (word.control) {
    case Control::RowStart: {
      if (Top().destination == Destination::Body) StartBody();
      open_row_ = static_cast<std::uint32_t>(Top().is_nested_properties ? nested : 1);
      RowDefinition& row = RowDefinitionOf(static_cast<int>(open_row_));
      row = {};
      row.words = RawWord();
      return true;
    }
    case Control::CellEnd:
    case Control::NestedCellEnd: {
      if (Top().destination != Destination::Body) return true;
      const int level = word.control == Control::CellEnd ? 1 : nested;
      EndParagraph(level);
      builder_.EndCell(level);
      Top().is_untouched = false;
      return true;
    }
    case Control::RowEnd:
      EndRow(1);
      return true;
    case Control::NestedRowEnd:
      EndRow(nested);
      return true;
    default:
      break;
  }
  const bool is_named_as_row =
      word.control == Control::Unknown &&
      (token_.text.starts_with("tr") || token_.text.starts_with("cl") || token_.text.starts_with("ts"));
  const bool is_row_word =
      is_named_as_row || (word.control >= Control::RowWord && word.control <= Control::HorizontalMerge);
  if (open_row_ == 0) return is_row_word;
  if (!is_row_word && word.control != Control::BorderWord && word.control != Control::Unknown) return false;
  RowDefinition& row = RowDefinitionOf(static_cast<int>(open_row_));
  row.words += RawWord();
  if (word.control == Control::VerticalMerge) row.next.vertical_merge = static_cast<std::uint8_t>(word.value);
  if (word.control == Control::HorizontalMerge) row.next.horizontal_merge = static_cast<std::uint8_t>(word.value);
  if (word.control != Control::CellEdge) return true;
  if (row.cells.size() < kMaxRowCells) {
    row.next.right_edge = token_.value;
    row.cells.push_back(row.next);
    row.words_to_last_edge = row.words.size();
  } else {
    ++document_.losses.limits;
  }
  row.next = {};
  return true;
}

bool Parser::ReadFileWord(const ControlWord& word) {
  switch (word.control) {
    case Control::CodePage: {
      const int page = word.value != 0 ? word.value : token_.value;
      if (page <= kPrivateSymbolPage) return true;
      fonts_.ansi_page = page;
      for (State& state : states_) state.page = &fonts_.PageOf(state.character.font);
      return true;
    }
    case Control::DefaultFont:
      if (is_body_) return true;  // text without a font stands already
      default_font_number_ = token_.value;
      ApplyDefaultFont();
      return true;
    case Control::SectionBreak:
      section_begins_page_ = word.name != "sbknone" && word.name != "sbkcol";
      break;
    case Control::SectionReset:
      section_begins_page_ = true;
      break;
    case Control::DocumentWord:
      KeepDocumentWord(word.value);
      return true;
    case Control::SectionWord:
      break;
    default:
      return false;
  }
  if (is_first_section_) {
    KeepDocumentWord(word.value);
  } else if (word.control == Control::SectionWord && document_.losses.named.empty()) {
    document_.losses.named.emplace_back("page layout of later sections");
  }
  return true;
}

void Parser::KeepDocumentWord(std::int32_t number) {
  document_word_places_.resize(static_cast<std::size_t>(DocumentWordCount()));
  std::uint32_t& place = document_word_places_[static_cast<std::size_t>(number)];
  if (place == 0) {
    document_words_.push_back(RawWord());
    place = static_cast<std::uint32_t>(document_words_.size());
  } else {
    document_words_[place - 1] = RawWord();
  }
}

/// What is not shown, but goes with the text.
void Parser::KeepWord(const ControlWord& word) {
  const bool is_border = word.control == Control::BorderWord;
  if (word.control == Control::LeftToRight) {
    const bool is_kept = Top().character.extra != 0;
    if (is_kept) Character().extra = builder_.AddExtra(Top().character.extra, RawWord(), "rtlch", Extra::Remove);
  } else if (is_border || word.control == Control::ParagraphWord) {
    ParagraphFormat& format = Paragraph().format;
    format.extra = builder_.AddExtra(format.extra, RawWord(), token_.text, is_border ? Extra::Append : Extra::Replace);
  } else if (word.control == Control::CharacterWord || (word.control == Control::Unknown && is_body_)) {
    CharFormat& format = Character();
    format.extra = builder_.AddExtra(format.extra, RawWord(), token_.text, Extra::Replace);
  } else if (word.control == Control::Unknown && document_words_.size() < kMaxUnknownDocumentWords &&
             std::find(document_words_.begin(), document_words_.end(), RawWord()) == document_words_.end()) {
    document_words_.push_back(RawWord());
  }
}

void Parser::SetFont(std::int32_t number) {
  std::uint32_t index = fonts_.IndexOf(number);
  if (index == FontContext::kNoFont) index = default_character_.font;
  Character().font = index;
  Top().page = &fonts_.PageOf(index);
}

void Parser::ReadFontWord(const ControlWord& word) {
  switch (word.control) {
    case Control::FontNumber:
      EndFont();
      font_ = {};
      font_.number = token_.value;
      font_code_page_ = -1;
      is_in_font_ = true;
      break;
    case Control::FontFamily:
      font_.family = word.name.substr(1);
      break;
    case Control::FontCharset:
    case Control::FontCodePage: {
      const bool is_charset = word.control == Control::FontCharset;
      if (is_charset) font_.charset = token_.value;
      const int page = is_charset ? CodePageOfCharset(token_.value) : token_.value;
      if (is_charset || page > kPrivateSymbolPage) font_code_page_ = page;
      // The name itself is never in symbols.
      if (font_code_page_ > kPrivateSymbolPage) Top().page = &fonts_.pages.Get(font_code_page_);
      break;
    }
    case Control::Red:
    case Control::Green:
    case Control::Blue: {
      const auto shift = word.control == Control::Red ? 16u : word.control == Control::Green ? 8u : 0u;
      color_ |= static_cast<std::uint32_t>(std::clamp(token_.value, 0, 255)) << shift;
      is_color_given_ = true;
      break;
    }
    default:
      ReadTextWord(word);
      break;
  }
}

void Parser::EmitFontName(std::string_view text) {
  while (is_in_font_ && !text.empty()) {
    const std::size_t end = std::min(text.find(';'), text.size());
    if (font_.name.size() < kMaxNameBytes) font_.name += text.substr(0, end);
    if (end == text.size()) return;
    EndFont();
    text.remove_prefix(end + 1);
  }
}

void Parser::EndFont() {
  if (!is_in_font_) return;
  is_in_font_ = false;
  const std::size_t first = std::min(font_.name.find_first_not_of(' '), font_.name.size());
  font_.name.erase(0, first);
  font_.name.erase(font_.name.find_last_not_of(' ') + 1);
  // Text without a font stands already; a default font that comes after it must not turn its letters into symbols.
  const int usual_page = CodePageOfFont(font_.charset, font_.name);
  const bool is_symbols = usual_page == kSymbolPage || usual_page == kPrivateSymbolPage;
  const bool is_late_symbols =
      is_body_ && default_character_.font == FontContext::kNoFont && font_.number == default_font_number_ && is_symbols;
  if (is_late_symbols || document_.fonts.size() >= kMaxFonts || font_.number < 0 || font_.number > kMaxFontNumber) {
    ++document_.losses.limits;
    return;
  }
  // A name alone makes symbols only where nothing else is said; a charset of symbols does so whatever page follows.
  if (font_.name == "Symbol" && font_code_page_ == -1) font_code_page_ = kSymbolPage;
  if (is_symbols) font_code_page_ = usual_page;
  const auto number = static_cast<std::size_t>(font_.number);
  std::vector<std::uint32_t>& indices = fonts_.index_of_number;
  if (number >= indices.size()) indices.resize(number + 1, FontContext::kNoFont);
  indices[number] = static_cast<std::uint32_t>(document_.fonts.size());
  fonts_.page_of_font.push_back(font_code_page_);
  document_.fonts.push_back(std::move(font_));
}

/// A font that text has goes under a number of its own when its number has come to mean another.
void Parser::NumberFonts() {
  std::vector<std::uint32_t>& indices = fonts_.index_of_number;
  std::vector<bool> is_used(document_.fonts.size());
  for (const CharFormat& format : document_.char_formats) {
    if (format.font < is_used.size()) is_used[format.font] = true;
  }
  std::size_t unused = 0;
  for (std::uint32_t index = 0; index < document_.fonts.size(); ++index) {
    std::int32_t& number = document_.fonts[index].number;
    if (!is_used[index] || fonts_.IndexOf(number) == index) continue;
    const auto is_taken = [&](std::size_t at) {
      return std::cmp_equal(at, default_font_number_) || (at < indices.size() && indices[at] != FontContext::kNoFont);
    };
    while (is_taken(unused)) ++unused;
    if (unused >= indices.size()) indices.resize(unused + 1, FontContext::kNoFont);
    indices[unused] = index;
    number = static_cast<std::int32_t>(unused);
  }
  const bool has_default = default_character_.font < document_.fonts.size();
  document_.default_font = has_default ? document_.fonts[default_character_.font].number : default_font_number_;
}

void Parser::EndColors() {
  if (first_color_ == 0 || color_of_zero_ != 0) return;
  document_.colors.push_back(first_color_);
  color_of_zero_ = static_cast<std::uint32_t>(document_.colors.size() - 1);
}

/// Of the text that names no font.
void Parser::ApplyDefaultFont() {
  const std::uint32_t index = fonts_.IndexOf(default_font_number_);
  if (is_body_ || index == FontContext::kNoFont) return;
  for (State& state : states_) {
    if (state.character.font != default_character_.font) continue;
    state.character.font = index;
    state.character_id = kStale;
    state.page = &fonts_.PageOf(index);
  }
  default_character_.font = index;
}

void Parser::EmitColors(std::string_view text) {
  for (const char c : text) {
    if (c != ';') continue;
    std::vector<std::uint32_t>& colors = document_.colors;
    if (colors.size() >= kMaxColors) {
      ++document_.losses.limits;
      continue;
    }
    const bool is_first = colors.empty();
    colors.push_back(is_first ? 0 : color_);
    // A first colour that is given is a colour like the others; it goes on under another number.
    if (is_first && is_color_given_) first_color_ = color_;
    color_ = 0;
    is_color_given_ = false;
  }
}

std::uint32_t Parser::ColorOf(std::int32_t number) const {
  if (number <= 0) return color_of_zero_;
  return static_cast<std::size_t>(number) < document_.colors.size() ? static_cast<std::uint32_t>(number) : 0;
}

}  // namespace tme::rtf
