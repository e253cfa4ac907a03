// What the list says of a part when its group has ended.

#include <algorithm>
#include <utility>

#include "documents/rtf/RtfContentsWalk.h"
#include "documents/rtf/RtfFieldInstruction.h"
#include "documents/rtf/RtfOleData.h"

namespace tme::rtf {
namespace {

std::string Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

}  // namespace

void ContentsWalk::EndPart(Open& part) {
  using W = ContentsWord;
  Open* const object = InnermostObject();
  switch (part.word) {
    case W::Object:
      return EndObject(part);
    case W::ObjectData:
      if (object == nullptr) return EndObject(part);
      object->text.append(part.text, 0, kMaxObjectBytesRead - std::min(object->text.size(), kMaxObjectBytesRead));
      object->part.bytes += part.part.bytes;
      return;
    case W::ObjectClass:
      if (object != nullptr) object->part.name = Trimmed(part.text);
      return;
    case W::ObjectName:
      if (object != nullptr) object->object_name = Trimmed(part.text);
      return;
    case W::Picture:
      part.part.kind = PartKind::Picture;
      return Add(std::move(part.part));
    case W::Instruction:
      return EndInstruction(part.text);
    case W::Template:
      return AddTarget(PartKind::Template, {}, part.text);
    case W::Reference:
      return AddTarget(PartKind::Reference, part.name, part.text);
    case W::LinkTarget:
      return AddTarget(PartKind::Link, part.name, part.text);
    case W::PropertyName:
      property_ = Trimmed(part.text);
      return;
    case W::PropertyValue:
      return EndProperty(part.text);
    default:
      return NoteUnshown(part);
  }
}

/// Word processors go by the class that the data name.
void ContentsWalk::EndObject(Open& object) {
  OleData data = ReadOleData(object.text, decode_);
  object.part.kind = PartKind::Object;
  if (!data.class_name.empty()) {
    std::string declared = std::exchange(object.part.name, std::move(data.class_name));
    if (declared != object.part.name) object.part.declared_class = std::move(declared);
  }
  object.part.targets = std::move(data.names);
  if (!object.object_name.empty()) object.part.targets.push_back(std::move(object.object_name));
  Add(std::move(object.part));
}

void ContentsWalk::EndInstruction(const std::string& text) {
  ++contents_.fields;
  // In another field's instruction, it stands in braces.
  if (!open_.empty() && open_.back().word == ContentsWord::Instruction) {
    const std::string inner = "{ " + Trimmed(text) + " }";
    if (open_.back().text.size() + inner.size() <= kMaxTargetBytes) open_.back().text += inner;
  }
  std::string_view rest = text;
  const std::string word = FieldWord(rest);
  if (word == "HYPERLINK") {
    link_ = contents_.parts.size();
    AddTarget(PartKind::Link, word, UrlOfInstruction(word + std::string(rest)));
    if (contents_.parts.size() > link_) link_depth_ = groups_.size();
    return;
  }
  if (word.starts_with('{')) return AddTarget(PartKind::ActiveField, {}, text);
  if (IsActiveField(word)) AddTarget(PartKind::ActiveField, word, std::string(rest));
}

void ContentsWalk::BeginResult() {
  if (Top().destination == Destination::Body && groups_.size() == link_depth_)
    link_text_depth_ = std::exchange(link_depth_, 0);
}

/// Properties of drawings that lead elsewhere.
void ContentsWalk::EndProperty(const std::string& value) {
  const bool is_place = property_ == "pibName" && value.find_first_of("/\\") != std::string::npos;
  if (is_place || value.find("://") != std::string::npos || value.starts_with("\\\\"))
    AddTarget(PartKind::Reference, property_, value);
}

void ContentsWalk::NoteUnshown(const Open& part) {
  const auto found = unshown_.find(part.name);
  const std::uint64_t bytes = tokens_.Position() - part.begin;
  if (found != unshown_.end()) {
    ++found->second.count;
    found->second.bytes += bytes;
  } else if (unshown_.size() < kMaxParts) {
    Part unshown;
    unshown.kind = PartKind::Unshown;
    unshown.name = part.name.substr(0, kMaxTargetBytes);
    unshown.bytes = bytes;
    unshown_.emplace(part.name, std::move(unshown));
  } else {
    ++unlisted_;
  }
}

void ContentsWalk::AddTarget(PartKind kind, std::string_view name, std::string target) {
  target = Trimmed(target);
  if (target.empty() && kind != PartKind::ActiveField && kind != PartKind::Link) return;
  Part part;
  part.kind = kind;
  part.name = name;
  if (!target.empty()) part.targets.push_back(std::move(target));
  Add(std::move(part));
}

void ContentsWalk::Add(Part&& part) {
  if (++TotalOf(part.kind) <= kMaxParts) contents_.parts.push_back(std::move(part));
}

}  // namespace tme::rtf
