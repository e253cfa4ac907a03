#include "documents/rtf/RtfParser.h"

#include <algorithm>
#include <utility>

#include "base/Utf8.h"

namespace tme::rtf {
namespace {

// Behind the last brace.
constexpr std::string_view kBlanksBehind(" \t\r\n\0\x1A", 6);
constexpr std::string_view kBlanksAndBraces("} \t\r\n\0\x1A", 7);

/// Of braces from one on that end no group behind it, where the last one stands. Where another file follows, its own
/// brace counts.
std::size_t LastBraceTooMany(std::string_view bytes, std::size_t from) {
  std::size_t last = from, open = 0;
  for (std::size_t at = from + 1; at < bytes.size(); ++at) {
    if (bytes[at] == '\\') {
      ++at;
    } else if (bytes[at] == '{') {
      ++open;
    } else if (bytes[at] == '}') {
      open == 0 ? last = at : --open;
    }
  }
  const std::size_t next = std::min(bytes.find_first_not_of(" \t\r\n", last + 1), bytes.size());
  return bytes.substr(next).starts_with("{\\") ? std::max(bytes.rfind('}'), last) : last;
}

}  // namespace

Parser::Parser(std::string_view bytes, RtfDocument& document, const DecodeCodePage& decode, RtfSource* source)
    : document_(document),
      tokens_(bytes),
      decoder_(*this),
      fonts_(document, decode),
      colors_(document),
      builder_(document, bytes.size()),
      source_(source) {
  State base;
  base.character.font = FontTable::kNoFont;
  base.encoding.page = &fonts_.PageOf(FontTable::kNoFont);
  states_.push_back(base);
  paragraphs_.emplace_back();
}

void Parser::Read(Form form) {
  // A fragment stands as if in the braces of a file.
  if (form == Form::Fragment) states_.push_back(states_.back());
  for (tokens_.Next(token_); token_.kind != TokenKind::End; tokens_.Next(token_)) ReadToken();
  decoder_.Flush();
  if (form == Form::Fragment && !is_closed_ && states_.size() == 2) {
    is_closed_ = true;
    root_end_ = tokens_.Bytes().size();
  }
  document_.losses.ended_early = document_.losses.ended_early || tokens_.CutShort() || !is_closed_;
  Top().destination = Destination::Body;  // the file may have ended inside a table of fonts
  StartBody(root_end_);
  // What nobody sees goes with the text before it, but not over the break of a section.
  const bool begins_section = section_ > 0 && document_.paragraphs.size() == section_begin_ && builder_.HasPending();
  if (builder_.HasVisiblePending() || document_.paragraphs.empty() || begins_section)
    EndParagraph(Paragraph().TableLevel());
  // Behind the last break there is no page.
  if (document_.SectionBreakOf(document_.paragraphs.size() - 1) != nullptr) SetSectionStart(false);
  document_.document_controls = document_controls_.Joined();
  document_.ansi_code_page = fonts_.AnsiPage();
  fonts_.NumberFonts();
  builder_.Finish();
}

void Parser::ReadToken() {
  switch (token_.kind) {
    case TokenKind::Word:
      decoder_.Flush();
      word_begin_ = token_.begin;
      return ReadWord(FindControl(token_.text));
    case TokenKind::GroupStart:
      return OpenGroup();
    case TokenKind::GroupEnd:
      return CloseGroup();
    case TokenKind::Symbol:
      if (token_.byte == '*') return ReadStar();
      if (!token_.IsLineEnd()) return decoder_.Read(token_, Top().encoding);
      if (decoder_.SkipFallback(token_.end)) return;
      decoder_.Flush();
      word_begin_ = token_.begin;
      return ReadWord(FindControl("par"));
    case TokenKind::Binary:
      Top().has_only_words = false;
      return decoder_.Read(token_, Top().encoding);
    default:
      return decoder_.Read(token_, Top().encoding);
  }
}

void Parser::ReadStar() {
  decoder_.Flush();
  const std::size_t begin = token_.begin;
  tokens_.Next(token_);
  if (token_.kind != TokenKind::Word) return tokens_.Seek(token_.begin);
  word_begin_ = begin;
  const ControlWord& word = FindControl(token_.text);
  if (word.control_class == ControlClass::Group) return ReadWord(word);
  decoder_.EndFallback();
  ++effects_;
  ReadUnknownGroup();
}

void Parser::OpenGroup() {
  decoder_.Flush();
  decoder_.EndFallback();
  // What is deeper looks like the text around it.
  if (states_.size() > static_cast<std::size_t>(kMaxGroupDepth)) {
    if (too_deep_++ == 0) ++document_.losses.limits;
    return;
  }
  if (states_.size() == 2) NoteHeader(token_.begin);
  Top().has_only_words = states_.size() == 1;
  State state = Top();
  state.begin = token_.begin;
  state.owns_paragraph = state.is_field = false;
  state.field_words = 0;
  state.has_only_words = true;
  states_.push_back(state);
}

void Parser::CloseGroup() {
  decoder_.Flush();
  decoder_.EndFallback();
  if (too_deep_ > 0) {
    --too_deep_;
    return;
  }
  if (states_.size() <= 2) return CloseRoot();
  const State closed = Top();
  states_.pop_back();
  if (closed.owns_paragraph) paragraphs_.pop_back();
  if (closed.destination == Destination::FontTable) {
    fonts_.EndEntry();
    if (Top().destination != Destination::FontTable) ApplyDefaultFont();
  }
  if (closed.destination != Top().destination) NoteTable(closed.destination);
  if (closed.destination == Destination::ColorTable && IsBody()) colors_.EndTable();
  if (closed.is_field) EndField(closed);
  NoteHeaderEnd();
}

/// A brace too many does not end the text when more of it follows before another one. What stands behind the last one
/// is none.
void Parser::CloseRoot() {
  if (tokens_.Position() <= text_behind_braces_) return;
  NoteHeader(token_.begin);
  root_end_ = token_.begin;
  const std::string_view bytes = tokens_.Bytes();
  if (last_brace_ == kUnknown) last_brace_ = LastBraceTooMany(bytes, root_end_);
  if (last_brace_ > root_end_) {
    document_.losses.ended_early = true;
    const std::size_t text = bytes.substr(0, last_brace_).find_first_not_of(kBlanksAndBraces, tokens_.Position());
    if (text != std::string_view::npos) {
      text_behind_braces_ = text;
      return;
    }
  }
  const std::string_view rest = bytes.substr(std::max(last_brace_, root_end_) + 1);
  if (rest.find_first_not_of(kBlanksBehind) != std::string_view::npos) document_.kept_behind = rest;
  tokens_.Seek(bytes.size());
  is_closed_ = true;
}

/// A field that shows nothing keeps its place. What its group did beyond itself is done, and does not come twice.
void Parser::EndField(const State& field) {
  if (builder_.Additions() != field.output_before) return;
  if (effects_ == field.effects_before) {
    const std::string_view group = tokens_.Bytes().substr(field.begin, tokens_.Position() - field.begin);
    object_begin_ = field.begin;
    return KeepInvisible(std::string(group));
  }
  for (std::size_t i = field.fields_before; i < document_.fields.size(); ++i) {
    object_begin_ = kUnknown;
    KeepInvisible("{\\field" + document_.fields[i].words + document_.fields[i].instruction + "}");
  }
}

void Parser::Text(std::string_view text, const TextDecoder::Place& place) {
  Top().has_only_words = false;
  switch (Top().destination) {
    case Destination::Body:
      StartBody(place.end > 0 ? place.begin : kUnknown);
      NotePiece(place.is_plain  ? RtfSource::Kind::Plain
                : place.end > 0 ? RtfSource::Kind::Coded
                                : RtfSource::Kind::Fixed,
                place.begin, place.end, place.takes_next);
      return builder_.AddText(text, CharacterId());
    case Destination::FontTable:
      return fonts_.ReadText(text);
    case Destination::ColorTable:
      return colors_.ReadText(text);
    case Destination::Nowhere:
      return;
  }
}

void Parser::UnknownCharacter(const TextDecoder::Place& place) {
  // Names of fonts are often in another page than they say; that is no loss.
  if (IsBody()) ++document_.losses.unknown_characters;
  Text(utf8::kReplacement, place);
}

void Parser::FallbackPassed(std::size_t end, bool takes_next) {
  // A character that is not taken has a fallback, too.
  if (source_ == nullptr || !IsBody() || source_->pieces.empty()) return;
  RtfSource::Piece& last = source_->pieces.back();
  if (last.kind != RtfSource::Kind::Coded) return;
  last.end = static_cast<std::uint32_t>(end);
  last.takes_next = takes_next;
}

void Parser::NotePiece(RtfSource::Kind kind, std::size_t begin, std::size_t end, bool takes_next) {
  if (source_ == nullptr) return;
  source_->pieces.push_back({.text = static_cast<std::uint32_t>(document_.text.size()),
                             .begin = static_cast<std::uint32_t>(begin),
                             .end = static_cast<std::uint32_t>(end),
                             .object = 0,
                             .kind = kind,
                             .unicode_skip = Top().encoding.unicode_skip,
                             .takes_next = takes_next});
}

/// before: how many paragraphs there were.
void Parser::NoteMark(std::size_t before, RtfSource::MarkKind kind) {
  if (source_ == nullptr || document_.paragraphs.size() == before) return;
  source_->marks.push_back({.first_piece = first_piece_,
                            .begin = static_cast<std::uint32_t>(is_closed_ ? root_end_ : token_.begin),
                            .end = static_cast<std::uint32_t>(is_closed_ ? root_end_ : tokens_.Position()),
                            .label_begin = label_.first,
                            .label_end = label_.second,
                            .kind = kind,
                            .unicode_skip = Top().encoding.unicode_skip});
  first_piece_ = static_cast<std::uint32_t>(source_->pieces.size());
  label_ = {};
}

/// The group of a number in a list; it was passed.
void Parser::NoteLabel() {
  const std::size_t begin = std::exchange(object_begin_, kUnknown);
  if (begin == kUnknown || label_.second > 0) return;
  label_ = {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(tokens_.Position())};
}

/// end: where the first that is more than a control word stands.
void Parser::NoteHeader(std::size_t end) {
  if (source_ == nullptr || is_header_known_) return;
  is_header_known_ = true;
  source_->header.begin = static_cast<std::uint32_t>(end);
}

/// A group ends.
void Parser::NoteHeaderEnd() {
  if (source_ != nullptr && !is_body_ && states_.size() == 2 && label_.second == 0)
    source_->header.end = static_cast<std::uint32_t>(tokens_.Position());
}

/// A table ends.
void Parser::NoteTable(Destination table) {
  if (source_ == nullptr) return;
  const auto end = static_cast<std::uint32_t>(token_.begin);
  if (table == Destination::FontTable && source_->header.fonts_end == 0) source_->header.fonts_end = end;
  if (table != Destination::ColorTable) return;
  source_->header.colors_end = end;
  source_->header.colors = static_cast<std::uint32_t>(document_.colors.size());
}

/// Of the text before it; it was passed.
void Parser::NoteKeptTable(HeaderTable table) {
  if (source_ == nullptr || tokens_.CutShort()) return;
  std::uint32_t& end = source_->header.table_ends[static_cast<std::size_t>(table)];
  if (end == 0) end = static_cast<std::uint32_t>(tokens_.Position() - 1);
}

void Parser::StartBody(std::size_t at) {
  if (is_body_) return;
  NoteHeader(at == kUnknown ? token_.begin : at);
  if (source_ != nullptr) source_->header.kept = static_cast<std::uint32_t>(document_.kept_header.size());
  if (source_ != nullptr && at != kUnknown) {
    // All of the group that it stands in comes behind what is put before the text; but a fragment is known by its
    // first word.
    const bool is_fragment = states_.size() > 2 && states_[2].begin == 0;
    const std::size_t group = is_fragment ? 3 : 2;
    std::size_t begin = states_.size() > group ? std::min(at, states_[group].begin) : at;
    if (is_fragment && begin == 1) begin = tokens_.Position();
    source_->header.body = static_cast<std::uint32_t>(begin);
    source_->header.end = std::min(source_->header.end, source_->header.body);
  }
  is_body_ = true;
  fonts_.FixDefault();
  CharFormat plain;
  plain.font = fonts_.Default();
  builder_.Intern(plain);
  builder_.Intern(ParagraphFormat{});
}

void Parser::EndParagraph(int table_level, RtfSource::MarkKind kind) {
  if (!IsBody()) return;
  const std::size_t before = document_.paragraphs.size();
  StartBody(token_.begin);
  const ParagraphFormat& format = Paragraph().format;
  if (text_of_list_.empty() || format.list != ListKind::None) lists_of_text_.End();
  if (format.list == ListKind::None && !text_of_list_.empty()) {
    ParagraphFormat listed = format;
    lists_of_text_.Join(text_of_list_, listed);
    builder_.EndParagraph(listed, CharacterId(), table_level);
  } else {
    builder_.EndParagraph(format, CharacterId(), table_level);
  }
  text_of_list_.clear();
  NoteMark(before, kind);
}

/// For change: the group's own from now on.
ParagraphState& Parser::OwnParagraph() {
  if (!Top().owns_paragraph) {
    ParagraphState copy = Paragraph();
    paragraphs_.push_back(std::move(copy));
    Top().paragraph = static_cast<std::uint32_t>(paragraphs_.size() - 1);
    Top().owns_paragraph = true;
  }
  return Paragraph();
}

/// For change.
CharFormat& Parser::Character() {
  Top().character_id = kStale;
  return Top().character;
}

std::uint32_t Parser::CharacterId() {
  State& state = Top();
  if (state.character_id == kStale) {
    if (state.character.said != 0) {
      CharFormat plain;
      plain.font = fonts_.Default();
      state.character.said &= static_cast<std::uint16_t>(DefaultsOf(state.character, plain) & said_properties_);
    }
    state.character_id = builder_.Intern(state.character);
  }
  return state.character_id;
}

}  // namespace tme::rtf
