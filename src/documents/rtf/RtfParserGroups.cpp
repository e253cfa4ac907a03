#include <algorithm>
#include <utility>

#include "documents/rtf/RtfFieldInstruction.h"
#include "documents/rtf/RtfNames.h"
#include "documents/rtf/RtfParser.h"
#include "documents/rtf/RtfPicture.h"

namespace tme::rtf {
/// The group that the control word stands in, as it came; it is closed.
std::string Parser::TakeGroup() {
  const bool is_whole = Top().has_only_words && too_deep_ == 0;
  const int skip = (is_whole ? states_.end()[-2] : Top()).encoding.unicode_skip;
  object_begin_ = is_whole ? Top().begin : kUnknown;
  std::string group;
  tokens_.TakeGroup(is_whole ? Top().begin : word_begin_, &group);
  if (!is_whole) group.insert(group.begin(), '{');
  // Among others it is written back.
  if (skip != 1) SayUnicodeSkip(group, skip);
  LeaveGroup();
  return group;
}

void Parser::SkipGroup() {
  tokens_.TakeGroup(word_begin_, nullptr);
  LeaveGroup();
}

/// A group that is no text; an entry of a font keeps its own.
void Parser::PassGroup() {
  const std::string_view before = tokens_.Bytes().substr(Top().begin, word_begin_ - Top().begin);
  const bool is_own = too_deep_ == 0 && before.find_first_not_of("{\r\n") == std::string_view::npos;
  if (Top().destination != Destination::FontTable || !is_own) return SkipGroup();
  fonts_.Keep(TakeGroup());
}

void Parser::LeaveGroup() {
  if (too_deep_ > 0) {
    --too_deep_;
    return;
  }
  if (Top().owns_paragraph) paragraphs_.pop_back();
  states_.pop_back();
  NoteHeaderEnd();
}

std::string Parser::LabelOfGroup(std::string_view group, LabelText which) {
  return LabelOf(group, which, fonts_, Top().encoding);
}

void Parser::ReadUnknownGroup() {
  if (states_.size() <= 2) return;
  if (!IsBody()) {
    PassGroup();
  } else if (is_body_) {
    KeepInvisible(TakeGroup());
  } else {
    document_.kept_header += TakeGroup();
  }
}

/// It stands in the text, though no text came yet.
void Parser::ReadLabel() {
  const std::uint32_t header_end = source_ != nullptr ? source_->header.end : 0;
  text_of_list_ = LabelOfGroup(TakeGroup(), LabelText::All);
  if (source_ != nullptr) source_->header.end = header_end;
  NoteLabel();
}

/// In a group over the limit, which has no formats and tables of its own.
void Parser::ReadDeepWord(const ControlWord& word) {
  switch (word.control) {
    case Control::Field:
    case Control::TransparentGroup:
    case Control::TwoForms:
    case Control::UnicodeForm:
    case Control::NestedTableProperties:
      return;
    case Control::FontTable:
    case Control::ColorTable:
    case Control::LegacyNumbering:
    case Control::FieldInstruction:
      return SkipGroup();
    default:
      if (word.control_class == ControlClass::Text) return ReadTextWord(word);
      if (word.control_class == ControlClass::Group) ReadGroupWord(word);
  }
}

void Parser::ReadGroupWord(const ControlWord& word) {
  switch (word.control) {
    case Control::SkippedGroup:
      return PassGroup();
    case Control::TransparentGroup:
      return;
    case Control::TwoForms:
      Top().outer_destination = Top().destination;
      Top().destination = Destination::Nowhere;
      return;
    case Control::UnicodeForm:
      if (Top().destination == Destination::Nowhere) Top().destination = Top().outer_destination;
      return;
    default:
      return IsBody() ? ReadBodyGroup(word) : PassGroup();
  }
}

void Parser::ReadBodyGroup(const ControlWord& word) {
  switch (word.control) {
    case Control::FontTable:
      Top().destination = Destination::FontTable;
      return;
    case Control::ColorTable:
      Top().destination = Destination::ColorTable;
      return;
    case Control::HeaderGroup:
      return ReadHeaderGroup(word);
    case Control::ListTable:
      return ReadLists(word);
    case Control::SectionGroup:
      return KeepGroupWithSection();
    case Control::LegacyNumbering: {
      const std::string group = TakeGroup();
      ParagraphFormat& format = OwnParagraph().format;
      format.list_group = builder_.AddGroup(group);
      return ReadLegacyNumbering(group, fonts_, format);
    }
    case Control::ListText:
      return ReadLabel();
    case Control::Field:
      return BeginField();
    case Control::FieldInstruction:
      return AddField();
    case Control::NestedTableProperties:
      Top().is_nested_properties = true;
      return;
    case Control::Picture:
      return AddPicture(TakeGroup());
    case Control::ShownPicture:
      return AddShownPicture();
    case Control::Object:
      return AddDrawing(kObjectLabel);
    case Control::Drawing:
      return AddDrawing("Drawing");
    case Control::Footnote:
      return AddNote({});
    case Control::Formula:
      return AddNote("Formula");
    default:
      return KeepInvisible(TakeGroup());
  }
}

void Parser::ReadHeaderGroup(const ControlWord& word) {
  if (word.name == "stylesheet") said_properties_ = kAllCharacterProperties;
  document_.kept_header += TakeGroup();
  if (word.name == "stylesheet") NoteKeptTable(HeaderTable::Styles);
  if (word.name == "revtbl") NoteKeptTable(HeaderTable::Authors);
}

void Parser::ReadLists(const ControlWord& word) {
  const std::string group = TakeGroup();
  const bool all = word.value == 0 ? lists_.ReadLists(group, &fonts_) : lists_.ReadOverrides(group, &fonts_);
  if (!all) ++document_.losses.limits;
  document_.kept_header += group;
  NoteKeptTable(word.value == 0 ? HeaderTable::Lists : HeaderTable::Overrides);
}

void Parser::AddObject(Object&& object) {
  if (!IsBody()) return;
  StartBody(object_begin_);
  Top().has_only_words = false;
  const std::size_t begin = std::exchange(object_begin_, kUnknown);
  NotePiece(begin == kUnknown ? RtfSource::Kind::Fixed : RtfSource::Kind::Object, begin == kUnknown ? 0 : begin,
            tokens_.Position());
  builder_.AddObject(std::move(object), CharacterId());
  if (source_ != nullptr) source_->pieces.back().object = static_cast<std::uint32_t>(document_.objects.size());
}

void Parser::KeepInvisible(std::string group) { AddObject({.kind = ObjectKind::Invisible, .rtf = std::move(group)}); }

void Parser::AddPicture(std::string group) {
  PictureGroup picture = ReadPicture(group);
  if (picture.too_large) ++document_.losses.limits;
  if (picture.bytes.empty()) {
    return AddObject({.rtf = std::move(group), .label = std::string(picture.label)});
  }
  AddObject({.kind = ObjectKind::Picture,
             .rtf = std::move(group),
             .picture = std::move(picture.bytes),
             .width = picture.width,
             .height = picture.height});
}

/// With the form for other readers, which follows.
void Parser::AddShownPicture() {
  std::string group = TakeGroup();
  const std::size_t next = tokens_.Bytes().find_first_not_of("\r\n", tokens_.Position());
  if (next != std::string_view::npos && tokens_.Bytes().substr(next).starts_with("{\\nonshppict")) {
    std::string alternative;
    tokens_.Seek(next + 1);
    tokens_.TakeGroup(next, &alternative);
    group += alternative;
  }
  AddPicture(std::move(group));
}

/// A drawing or an embedded object is shown as its text, else as its picture, else as what it is.
void Parser::AddDrawing(std::string_view what) {
  std::string group = TakeGroup();
  std::string label = LabelOfGroup(group, LabelText::OfDrawing);
  if (label.empty() && !ReadPicture(group).bytes.empty()) return AddPicture(std::move(group));
  AddObject({.rtf = std::move(group), .label = label.empty() ? std::string(what) : std::move(label)});
}

/// what: its label without text.
void Parser::AddNote(std::string_view what) {
  std::string group = TakeGroup();
  std::string label = LabelOfGroup(group, LabelText::All);
  if (label.empty()) label = what;
  AddObject({.rtf = std::move(group), .label = std::move(label)});
}

void Parser::BeginField() {
  State& state = Top();
  state.is_field = state.has_only_words;  // text before the word is not the field's
  state.output_before = builder_.Additions();
  state.effects_before = effects_;
  state.fields_before = document_.fields.size();
}

void Parser::AddField() {
  std::string group = TakeGroup();
  Field field;
  field.url = UrlOfInstruction(LabelOfGroup(group, LabelText::All));
  field.instruction = std::move(group);
  for (std::size_t i = 0; i < kFieldWords.size(); ++i)
    if ((Top().field_words >> i & 1) != 0) field.words.append("\\").append(kFieldWords[i]);
  // Of the group around: one that the same group named before ends here.
  field.parent = states_.end()[-2].character.field;
  if (IsFieldTooDeep(field.parent)) {
    ++document_.losses.limits;
    object_begin_ = kUnknown;
    return KeepInvisible("{\\field" + field.words + field.instruction + "}");
  }
  document_.fields.push_back(std::move(field));
  Character().field = static_cast<std::uint32_t>(document_.fields.size());
}

/// Each field is two groups when it is written, and groups have a limit.
bool Parser::IsFieldTooDeep(std::uint32_t parent) const {
  constexpr int kMaxFieldDepth = 100;
  int depth = 0;
  for (; parent != 0 && depth < kMaxFieldDepth; ++depth) parent = document_.fields[parent - 1].parent;
  return depth == kMaxFieldDepth;
}

}  // namespace tme::rtf
