#include <utility>

#include "documents/rtf/RtfParser.h"

namespace tme::rtf {

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
      if (said_properties_ != kAllCharacterProperties) said_properties_ = 0;
      fonts_.SetDefaultNumber(token_.value);
      return ApplyDefaultFont();
    case Control::DocumentWord:
      return document_controls_.Keep(word, RawWord());
    case Control::SectionBreak:
      SetSectionStart(word.name != "sbknone" && word.name != "sbkcol");
      break;
    case Control::SectionReset:
      SetSectionStart(true);
      if (section_ == 0) document_controls_.ResetSection();
      break;
    case Control::PageBorder:
      is_page_border_ = true;
      break;
    default:
      break;
  }
  KeepWordWithSection();
}

void Parser::KeepWordWithSection() {
  if (section_ == 0) return document_controls_.KeepSection(RawWord());
  document_.objects[section_ - 1].rtf += RawWord();
  NoteSectionPart(token_.begin);
}

void Parser::KeepGroupWithSection() {
  const std::string group = TakeGroup();
  const std::size_t begin = std::exchange(object_begin_, kUnknown);
  if (section_ == 0) {
    document_.kept_section += group;
    return;
  }
  document_.objects[section_ - 1].rtf += group;
  NoteSectionPart(begin);
}

/// It was passed. What stands right behind the break goes with it.
void Parser::NoteSectionPart(std::size_t begin) {
  if (source_ == nullptr || begin == kUnknown) return;
  const auto end = static_cast<std::uint32_t>(tokens_.Position());
  source_->section_parts.push_back({section_, static_cast<std::uint32_t>(begin), end});
  const bool follows_break = document_.paragraphs.size() == section_begin_ && first_piece_ == source_->pieces.size();
  if (follows_break) source_->marks.back().whole_end = end;
}

/// The break ends a paragraph, which is one of its own where none is open or a table is.
void Parser::BreakSection() {
  const int level = Paragraph().TableLevel();
  if (level > 0 && builder_.HasVisiblePending()) EndParagraph(level);
  StartBody(token_.begin);
  NotePiece(RtfSource::Kind::Fixed, token_.begin, token_.begin);
  builder_.AddObject({.kind = ObjectKind::SectionBreak, .rtf = "\\sect"}, CharacterId());
  section_ = static_cast<std::uint32_t>(document_.objects.size());
  if (source_ != nullptr) source_->pieces.back().object = section_;
  SetSectionStart(section_begins_page_);
  EndParagraph(0);
  section_begin_ = document_.paragraphs.size();
}

void Parser::SetSectionStart(bool begins_page) {
  section_begins_page_ = begins_page;
  if (section_ > 0) document_.objects[section_ - 1].label = begins_page ? kPageBreakLabel : kSectionBreakLabel;
}

}  // namespace tme::rtf
