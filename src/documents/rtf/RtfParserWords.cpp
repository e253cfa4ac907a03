#include <algorithm>

#include "documents/rtf/RtfParser.h"

namespace tme::rtf {
namespace {

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
  if (word.control == Control::Character && decoder_.SkipFallback()) return;
  if (word.control != Control::Unicode) decoder_.EndFallback();
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
    case ControlClass::TableEntry:
    case ControlClass::Group:
      return;
  }
}

void Parser::ReadTextWord(const ControlWord& word) {
  switch (word.control) {
    case Control::Character:
    case Control::Break:
      return decoder_.Put(static_cast<char32_t>(word.value));
    case Control::Unicode:
      if (token_.has_value) decoder_.ReadUnicode(token_.value, Top().encoding);
      return;
    case Control::UnicodeSkip:
      Top().encoding.unicode_skip = UnicodeSkipOf(token_);
      return;
    case Control::Paragraph:
      EndParagraph(Paragraph().TableLevel());
      Top().has_only_words = false;
      return;
    case Control::Section:
      if (!IsBody()) return;
      if (builder_.HasVisiblePending()) EndParagraph(Paragraph().TableLevel());
      is_section_pending_ = true;
      is_first_section_ = false;
      return;
    case Control::InvisibleMark:
      return KeepInvisible(InBraces(RawWord()));
    case Control::DynamicText: {
      const bool is_number = word.name == "chpgn" || word.name == "sectnum";
      const std::string_view label = is_number ? "Number" : word.name == "chtime" ? "Time" : "Date";
      return AddObject({.kind = ObjectKind::Placeholder, .rtf = InBraces(RawWord()), .label = std::string(label)});
    }
    default:
      return;
  }
}

void Parser::ReadCharacterWord(const ControlWord& word) {
  switch (word.control) {
    case Control::Plain: {
      CharFormat plain;
      plain.font = fonts_.Default();
      plain.field = Top().character.field;
      Character() = plain;
      Top().encoding.page = &fonts_.PageOf(plain.font);
      return;
    }
    case Control::FontNumber:
      return SetFont(token_.value);
    case Control::LeftToRight:
      if (Top().character.extra != 0) KeepWithCharacters("rtlch", Extra::Remove);
      return;
    case Control::CharacterWord:
      return KeepWithCharacters(token_.text, Extra::Replace);
    default:
      return ApplyCharacterWord(word, token_, colors_, Character());
  }
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
      return EndCell(1);
    case Control::NestedCellEnd:
      return EndCell(nested);
    case Control::RowEnd:
      return EndRow(1);
    case Control::NestedRowEnd:
      return EndRow(nested);
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
  builder_.EndRow(level, rows_.Of(level));
  rows_.End(level);
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
    KeepWithCharacters(name, Extra::Replace);
  } else {
    document_controls_.KeepUnknown(RawWord());
  }
}

/// `name`: of the word that it takes the place of.
void Parser::KeepWithCharacters(std::string_view name, Extra how) {
  CharFormat& format = Character();
  format.extra = builder_.AddExtra(format.extra, RawWord(), name, how);
}

void Parser::KeepWithParagraph(Extra how) {
  ParagraphFormat& format = Paragraph().format;
  format.extra = builder_.AddExtra(format.extra, RawWord(), token_.text, how);
}

void Parser::SetFont(std::int32_t number) {
  std::uint32_t index = fonts_.IndexOf(number);
  if (index == FontTable::kNoFont) index = fonts_.Default();
  Character().font = index;
  Top().encoding.page = &fonts_.PageOf(index);
}

/// To all text that names no font.
void Parser::ApplyDefaultFont() {
  const std::uint32_t before = fonts_.Default();
  if (!fonts_.ResolveDefault()) return;
  for (State& state : states_) {
    if (state.character.font != before) continue;
    state.character.font = fonts_.Default();
    state.character_id = kStale;
    state.encoding.page = &fonts_.PageOf(fonts_.Default());
  }
}

}  // namespace tme::rtf
