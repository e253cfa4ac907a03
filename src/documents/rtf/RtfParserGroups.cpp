#include <algorithm>
#include <utility>

#include "documents/rtf/RtfParser.h"

namespace tme::rtf {
namespace {

/// Makes a group say how long the fallbacks of its \u are, where the groups around it said so: it is written back among
/// others. Behind the group's own word, which readers want first.
void SayUnicodeSkip(std::string& group, int skip) {
  if (skip == 1 || group.find("\\u") == std::string::npos) return;
  const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  const auto is_number = [](char c) { return (c >= '0' && c <= '9') || c == '-'; };
  const auto pass_line_ends = [&](std::size_t from) {
    return std::min(group.find_first_not_of("\r\n", from), group.size() - 1);
  };
  std::size_t word = pass_line_ends(1);
  if (group.compare(word, 2, "\\*") == 0) word = pass_line_ends(word + 2);
  std::size_t at = word + 1;
  while (at < group.size() && is_letter(group[at])) ++at;
  const bool has_word = group[word] == '\\' && at > word + 1;
  while (has_word && at < group.size() && is_number(group[at])) ++at;
  if (!has_word) at = 1;
  group.insert(at, "\\uc" + std::to_string(skip));
}

}  // namespace

/// The group that the control word stands in, as it came; it is closed.
std::string Parser::TakeGroup() {
  const bool is_whole = Top().is_untouched;
  const int skip = (is_whole ? states_.end()[-2] : Top()).unicode_skip;
  std::string group;
  tokens_.TakeGroup(is_whole ? Top().begin : word_begin_, &group);
  if (!is_whole) group.insert(group.begin(), '{');
  SayUnicodeSkip(group, skip);
  if (Top().owns_paragraph) paragraphs_.pop_back();
  states_.pop_back();
  return group;
}

void Parser::SkipGroup() {
  tokens_.TakeGroup(word_begin_, nullptr);
  if (Top().owns_paragraph) paragraphs_.pop_back();
  states_.pop_back();
}

std::string Parser::LabelOf(std::string_view group, Destination outside) {
  RtfDocument unused;
  Parser reader(group, unused, fonts_, Reading::Label);
  reader.default_font_number_ = default_font_number_;
  return reader.ReadLabel(outside, *Top().page, Top().unicode_skip);
}

void Parser::AddObject(ObjectKind kind, std::string group, std::string label) {
  Object object;
  object.kind = kind;
  object.rtf = std::move(group);
  object.label = std::move(label);
  if (Top().destination != Destination::Body) return;
  StartBody();
  if (is_section_pending_ && kind != ObjectKind::Invisible) BreakSection();
  Top().is_untouched = false;
  builder_.AddObject(std::move(object), CharacterId());
}

void Parser::KeepInvisible(std::string group) { AddObject(ObjectKind::Invisible, std::move(group), {}); }

void Parser::AddPicture(std::string group) {
  PictureGroup picture = ReadPicture(group);
  if (picture.too_large) ++document_.losses.limits;
  if (picture.bytes.empty()) {
    AddObject(ObjectKind::Placeholder, std::move(group), std::string(picture.label));
    return;
  }
  StartBody();
  if (is_section_pending_) BreakSection();
  Object object;
  object.kind = ObjectKind::Picture;
  object.rtf = std::move(group);
  object.picture = std::move(picture.bytes);
  object.width = picture.width;
  object.height = picture.height;
  builder_.AddObject(std::move(object), CharacterId());
}

/// A drawing or an embedded object: its text, else its picture, else what it is.
void Parser::AddDrawing(std::string group, std::string_view what) {
  std::string label = LabelOf(group, Destination::Nowhere);
  if (label.empty() && !ReadPicture(group).bytes.empty()) {
    AddPicture(std::move(group));
  } else {
    AddObject(ObjectKind::Placeholder, std::move(group), label.empty() ? std::string(what) : std::move(label));
  }
}

void Parser::AddField() {
  std::string group = TakeGroup();
  Field field;
  field.url = UrlOfInstruction(LabelOf(group, Destination::Body));
  field.instruction = std::move(group);
  // Of the group around: one that the same group named before ends here.
  field.parent = states_.end()[-2].character.field;
  if (IsFieldTooDeep(field.parent)) {
    ++document_.losses.limits;
    KeepInvisible("{\\field" + field.instruction + "}");
    return;
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

void Parser::ReadUnknownGroup() {
  if (states_.size() <= 2) return;
  if (reading_ == Reading::Label) {
    if (Top().destination == Destination::Body) SkipGroup();
    return;
  }
  if (Top().destination != Destination::Body) {
    SkipGroup();
  } else if (is_body_) {
    KeepInvisible(TakeGroup());
  } else {
    document_.kept_header += TakeGroup();
  }
}

void Parser::ReadGroupWord(const ControlWord& word) {
  switch (word.control) {
    case Control::SkippedGroup:
      SkipGroup();
      return;
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
      break;
  }
  if (reading_ == Reading::Label) {
    ReadLabelGroupWord(word);
    return;
  }
  if (Top().destination != Destination::Body) {
    SkipGroup();
    return;
  }
  ReadBodyGroup(word);
}

void Parser::ReadBodyGroup(const ControlWord& word) {
  switch (word.control) {
    case Control::FontTable:
      Top().destination = Destination::FontTable;
      break;
    case Control::ColorTable:
      Top().destination = Destination::ColorTable;
      break;
    case Control::HeaderGroup:
      document_.kept_header += TakeGroup();
      break;
    case Control::ListTable:
    case Control::OverrideTable: {
      const std::string group = TakeGroup();
      const bool all = word.control == Control::ListTable ? lists_.ReadLists(group) : lists_.ReadOverrides(group);
      if (!all) ++document_.losses.limits;
      document_.kept_header += group;
      break;
    }
    case Control::SectionGroup:
      if (is_first_section_) {
        document_.kept_section += TakeGroup();
      } else {
        KeepInvisible(TakeGroup());
      }
      break;
    case Control::LegacyNumbering: {
      const LegacyList list = ReadLegacyNumbering(TakeGroup());
      ParagraphFormat& format = OwnParagraph().format;
      format.list = list.look.kind;
      format.list_start = list.look.start;
      format.list_level = list.level;
      break;
    }
    case Control::ListText:
      list_of_text_ = ListKindOfText(LabelOf(TakeGroup(), Destination::Body));
      break;
    case Control::Field:
      Top().is_field = Top().is_untouched;  // text before the word is not the field's
      Top().output_before = builder_.Additions();
      Top().effects_before = effects_;
      Top().fields_before = document_.fields.size();
      break;
    case Control::FieldInstruction:
      AddField();
      break;
    case Control::NestedTableProperties:
      Top().is_nested_properties = true;
      break;
    case Control::Picture:
    case Control::AlternativePicture:
      AddPicture(TakeGroup());
      break;
    case Control::ShownPicture:
      AddShownPicture();
      break;
    case Control::Object:
      AddDrawing(TakeGroup(), "Embedded object");
      break;
    case Control::Drawing:
      AddDrawing(TakeGroup(), "Drawing");
      break;
    case Control::Footnote:
      AddFootnote();
      break;
    default:
      KeepInvisible(TakeGroup());
      break;
  }
}

void Parser::AddFootnote() {
  std::string group = TakeGroup();
  std::string label = LabelOf(group, Destination::Body);
  AddObject(ObjectKind::Placeholder, std::move(group), std::move(label));
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

/// In the text of a group that is kept: what it holds of its own kind is passed over.
void Parser::ReadLabelGroupWord(const ControlWord& word) {
  const bool is_hidden = Top().destination == Destination::Nowhere;
  switch (word.control) {
    case Control::Field:
      return;
    case Control::DrawingText:
      if (is_hidden) {
        Top().destination = Destination::Body;
        return;
      }
      break;
    case Control::Drawing:
    case Control::Object:
      if (is_hidden) return;
      break;
    default:
      break;
  }
  SkipGroup();
}

}  // namespace tme::rtf
