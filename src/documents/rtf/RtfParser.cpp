#include "documents/rtf/RtfParser.h"

#include <algorithm>
#include <utility>

#include "base/Utf8.h"

namespace tme::rtf {
namespace {

constexpr std::string_view kPageBreak = "\f";

bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

}  // namespace

std::uint32_t FontContext::IndexOf(std::int32_t number) const {
  const auto place = static_cast<std::size_t>(number);
  return number >= 0 && place < index_of_number.size() ? index_of_number[place] : kNoFont;
}

CodePage& FontContext::PageOf(std::uint32_t index) {
  const int page = index < page_of_font.size() ? page_of_font[index] : -1;
  return pages.Get(page < 0 ? ansi_page : page);
}

Parser::Parser(std::string_view bytes, RtfDocument& document, FontContext& fonts, Reading reading)
    : tokens_(bytes), document_(document), fonts_(fonts), reading_(reading), builder_(document, bytes.size()) {
  default_character_.font = FontContext::kNoFont;
  State base;
  base.character = default_character_;
  base.page = &fonts.PageOf(FontContext::kNoFont);
  states_.push_back(base);
  paragraphs_.emplace_back();
}

void Parser::ReadDocument() {
  Run();
  document_.losses.ended_early = document_.losses.ended_early || tokens_.CutShort() || !is_closed_;
  Top().destination = Destination::Body;  // the file may have ended inside a table of fonts
  StartBody();
  if (builder_.HasVisiblePending() || document_.paragraphs.empty()) EndParagraph(Paragraph().TableLevel());
  for (const std::string_view word : document_words_) document_.document_controls += word;
  document_.ansi_code_page = fonts_.ansi_page;
  NumberFonts();
  builder_.Finish();
}

std::string Parser::ReadLabel(Destination outside, CodePage& page, std::uint8_t unicode_skip) {
  Top().destination = outside;
  Top().page = &page;
  Top().unicode_skip = unicode_skip;
  Run();
  const std::size_t end = label_.find_last_not_of(" \n\t");
  label_.resize(end == std::string::npos ? 0 : end + 1);
  label_.erase(0, std::min(label_.find_first_not_of(" \n"), label_.size()));
  return std::move(label_);
}

void Parser::Run() {
  for (tokens_.Next(token_); token_.kind != TokenKind::End; tokens_.Next(token_)) {
    switch (token_.kind) {
      case TokenKind::Text:
        ReadText(token_.text);
        break;
      case TokenKind::Word:
        if (!pending_bytes_.empty()) FlushBytes();
        word_begin_ = token_.begin;
        ReadWord(FindControl(token_.text));
        break;
      case TokenKind::GroupStart:
        OpenGroup();
        break;
      case TokenKind::GroupEnd:
        CloseGroup();
        break;
      case TokenKind::Hex:
        if (!SkipFallback()) ReadByte(token_.byte);
        break;
      case TokenKind::HighText:
        for (const char byte : token_.text) {
          if (!SkipFallback()) ReadByte(static_cast<unsigned char>(byte));
        }
        break;
      case TokenKind::Symbol:
        ReadSymbol();
        break;
      case TokenKind::Control:
        if (token_.byte == '\t' && !SkipFallback()) EmitCharacter('\t');
        break;
      case TokenKind::Binary:
        Top().is_untouched = false;
        SkipFallback();
        break;
      case TokenKind::End:
        break;
    }
  }
  FlushBytes();
}

void Parser::OpenGroup() {
  FlushBytes();
  fallback_left_ = 0;
  if (states_.size() > static_cast<std::size_t>(kMaxGroupDepth)) {
    ++document_.losses.limits;
    tokens_.TakeGroup(token_.begin, nullptr);
    return;
  }
  Top().is_untouched = states_.size() == 1;
  State state = Top();
  state.begin = token_.begin;
  state.owns_paragraph = state.is_field = false;
  state.is_untouched = true;
  states_.push_back(state);
}

void Parser::CloseGroup() {
  FlushBytes();
  fallback_left_ = 0;
  if (states_.size() <= 2) {
    CloseRoot();
    return;
  }
  const State closed = Top();
  states_.pop_back();
  if (closed.owns_paragraph) paragraphs_.pop_back();
  if (closed.destination == Destination::FontTable) {
    EndFont();
    if (Top().destination != Destination::FontTable) ApplyDefaultFont();
  }
  if (closed.destination == Destination::ColorTable && Top().destination == Destination::Body) EndColors();
  if (closed.is_field) EndField(closed);
}

// A brace too many does not end the text when more of it follows.
void Parser::CloseRoot() {
  if (tokens_.Position() <= text_behind_braces_) return;
  const std::string_view rest = tokens_.Bytes().substr(tokens_.Position());
  const std::size_t text = rest.find_first_not_of(std::string_view("} \t\r\n\0\x1A", 7));
  if (text != std::string_view::npos) {
    text_behind_braces_ = tokens_.Position() + text;
    document_.losses.ended_early = true;
    return;
  }
  document_.losses.ended_early = document_.losses.ended_early || rest.find('}') != std::string_view::npos;
  tokens_.Seek(tokens_.Bytes().size());
  is_closed_ = true;
}

// A field that shows nothing keeps its place. What its group did beyond itself is done, and does not come twice.
void Parser::EndField(const State& field) {
  if (reading_ == Reading::Label || builder_.Additions() != field.output_before) return;
  if (effects_ == field.effects_before) {
    const std::string_view group = tokens_.Bytes().substr(field.begin, tokens_.Position() - field.begin);
    KeepInvisible(std::string(group));
    return;
  }
  for (std::size_t i = field.fields_before; i < document_.fields.size(); ++i) {
    KeepInvisible("{\\field" + document_.fields[i].instruction + "}");
  }
}

bool Parser::SkipFallback() {
  if (fallback_left_ == 0) return false;
  --fallback_left_;
  return true;
}

void Parser::ReadSymbol() {
  const unsigned char symbol = token_.byte;
  if (symbol == '*') {
    ReadStar();
    return;
  }
  if (SkipFallback()) return;
  if (symbol == '\\' || symbol == '{' || symbol == '}') {
    ReadByte(symbol);
    return;
  }
  FlushBytes();
  switch (symbol) {
    case '~':
      EmitCharacter(0xA0);
      break;
    case '-':
      EmitCharacter(0xAD);
      break;
    case '_':
      EmitCharacter(0x2011);
      break;
    case '\t':
      EmitCharacter('\t');
      break;
    case '\r':
    case '\n':
      token_.has_value = false;
      ReadWord(FindControl("par"));
      break;
    default:
      break;
  }
}

void Parser::ReadStar() {
  FlushBytes();
  const std::size_t begin = token_.begin;
  tokens_.Next(token_);
  if (token_.kind != TokenKind::Word) {
    tokens_.Seek(token_.begin);
    return;
  }
  word_begin_ = begin;
  const ControlWord& word = FindControl(token_.text);
  if (word.control >= Control::FontTable) {
    ReadWord(word);
  } else {
    fallback_left_ = 0;
    ++effects_;
    ReadUnknownGroup();
  }
}

void Parser::ReadText(std::string_view text) {
  if (fallback_left_ > 0) {
    const std::size_t passed = std::min(text.size(), static_cast<std::size_t>(fallback_left_));
    text.remove_prefix(passed);
    fallback_left_ -= static_cast<int>(passed);
  }
  while (!pending_bytes_.empty() && !text.empty()) {
    ReadByte(static_cast<unsigned char>(text.front()));
    text.remove_prefix(1);
  }
  if (text.empty()) return;
  if (Top().page->HoldsAscii()) {
    Emit(text);
  } else {
    for (const char byte : text) ReadByte(static_cast<unsigned char>(byte));
  }
}

void Parser::ReadByte(unsigned char byte) {
  CodePage& page = *Top().page;
  if (!pending_bytes_.empty()) {
    if (page.IsTrail(byte)) {
      pending_bytes_.push_back(static_cast<char>(byte));
      if (pending_bytes_.size() < page.Bytes(static_cast<unsigned char>(pending_bytes_.front()))) return;
      const std::string bytes = std::exchange(pending_bytes_, {});
      EmitDecoded(page.Several(bytes));
      return;
    }
    FlushBytes();
  }
  if (page.Bytes(byte) > 1) {
    pending_bytes_.push_back(static_cast<char>(byte));
  } else {
    EmitDecoded(page.Single(byte));
  }
}

void Parser::FlushBytes() {
  if (pending_bytes_.empty()) return;
  pending_bytes_.clear();
  EmitDecoded(utf8::kReplacement);
}

void Parser::ReadUnicode(std::int32_t value) {
  fallback_left_ = Top().unicode_skip;
  auto character = static_cast<char32_t>(value < 0 ? value + 0x10000 : value);
  if (character > 0x10FFFF) character = 0xFFFD;
  // A symbol font's characters, as some write them.
  if (Top().page->IsSymbol() && character >= 0xF020 && character <= 0xF0FF) {
    const char32_t symbol = SymbolCharacter(static_cast<unsigned char>(character & 0xFF));
    if (symbol != 0) character = symbol;
  }
  if (IsLowSurrogate(character) && pending_surrogate_ != 0) {
    character = 0x10000 + ((pending_surrogate_ - 0xD800) << 10) + (character - 0xDC00);
    pending_surrogate_ = 0;
  } else if (IsHighSurrogate(character)) {
    if (pending_surrogate_ != 0) EmitDecoded(utf8::kReplacement);
    pending_surrogate_ = character;
    return;
  } else if (IsLowSurrogate(character)) {
    EmitDecoded(utf8::kReplacement);
    return;
  }
  // Line ends and page breaks have control words of their own; other controls are kept, as the text of a log has them.
  if (character < '\n' || character > '\r') EmitCharacter(character);
}

void Parser::EmitCharacter(char32_t character) {
  std::array<char, utf8::kMaxCharacterBytes> bytes;
  Emit({bytes.data(), utf8::PutCharacter(character, bytes.data())});
}

void Parser::EmitDecoded(std::string_view text) {
  // Names of fonts are often in another page than they say; that is no loss.
  if (text == utf8::kReplacement && Top().destination == Destination::Body) ++document_.losses.unknown_characters;
  Emit(text);
}

void Parser::Emit(std::string_view text) {
  Top().is_untouched = false;
  switch (Top().destination) {
    case Destination::Body:
      EmitBody(text);
      break;
    case Destination::FontTable:
      EmitFontName(text);
      break;
    case Destination::ColorTable:
      EmitColors(text);
      break;
    case Destination::Nowhere:
      break;
  }
}

void Parser::EmitBody(std::string_view text) {
  if (pending_surrogate_ != 0) {  // its other half did not come
    pending_surrogate_ = 0;
    EmitDecoded(utf8::kReplacement);
  }
  if (reading_ == Reading::Label) {
    label_ += text;
    return;
  }
  StartBody();
  if (is_section_pending_) BreakSection();
  builder_.AddText(text, CharacterId());
}

void Parser::StartBody() {
  if (is_body_) return;
  is_body_ = true;
  if (default_character_.font == FontContext::kNoFont) ApplyDefaultFont();
  builder_.Intern(default_character_);
  builder_.Intern(ParagraphFormat{});
}

void Parser::BreakSection() {
  is_section_pending_ = false;
  if (section_begins_page_) builder_.AddText(kPageBreak, CharacterId());
}

std::uint32_t Parser::CharacterId() {
  State& state = Top();
  if (state.character_id == kStale) state.character_id = builder_.Intern(state.character);
  return state.character_id;
}

void Parser::EndParagraph(int table_level) {
  if (reading_ == Reading::Label) {
    if (Top().destination == Destination::Body) label_ += '\n';
    return;
  }
  if (Top().destination != Destination::Body) return;
  StartBody();
  if (is_section_pending_) BreakSection();
  ParagraphFormat& format = Paragraph().format;
  if (format.list == ListKind::None && list_of_text_ != ListKind::None) {
    ParagraphFormat listed = format;
    listed.list = list_of_text_;
    builder_.EndParagraph(listed, CharacterId(), table_level);
  } else {
    builder_.EndParagraph(format, CharacterId(), table_level);
  }
  list_of_text_ = ListKind::None;
}

void Parser::EndRow(int level) {
  if (reading_ == Reading::Label || Top().destination != Destination::Body) return;
  if (builder_.HasVisiblePending()) {  // text without a cell's end stands in a cell all the same
    EndParagraph(level);
    builder_.EndCell(level);
  }
  builder_.EndRow(level, RowDefinitionOf(level));
  if (open_row_ == static_cast<std::uint32_t>(level)) open_row_ = 0;
}

}  // namespace tme::rtf
