#include "documents/rtf/RtfContentsWalk.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "base/Utf8.h"
#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfFieldInstruction.h"
#include "documents/rtf/RtfOleData.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kTokensBetweenSteps = 100'000;
/// Parts of the list inside each other; what is deeper is counted with the part around.
constexpr std::size_t kMaxOpenParts = 1000;

constexpr int kHexBase = 16;
constexpr std::uint8_t kNoDigit = 0xFF;
constexpr std::array<std::uint8_t, 256> kHexDigits = [] {
  std::array<std::uint8_t, 256> digits{};
  digits.fill(kNoDigit);
  for (std::uint8_t i = 0; i < 10; ++i) digits[static_cast<std::size_t>('0') + i] = i;
  for (std::uint8_t i = 10; i < kHexBase; ++i)
    digits[static_cast<std::size_t>('a') + i - 10] = digits[static_cast<std::size_t>('A') + i - 10] = i;
  return digits;
}();

std::string Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

/// A group whose name the list does not know, and that is kept without being shown.
bool IsUnshown(std::string_view name) {
  const ControlWord& word = FindControl(name);
  const bool is_row_word = name.starts_with("ts") || name.starts_with("tr") || name.starts_with("cl");
  if (word.control_class == ControlClass::Unknown) return !is_row_word;
  return word.control == Control::HeaderGroup || word.control == Control::InvisibleGroup || name == "fontemb";
}

}  // namespace

ContentsWalk::ContentsWalk(std::string_view bytes, const DecodeCodePage& decode, Contents& contents)
    : decode_(decode),
      contents_(contents),
      tokens_(bytes),
      pages_(decode),
      decoder_(*this),
      encoding_{&pages_.Get(1252)},
      groups_(1) {}

void ContentsWalk::Run(const ContentsStep& step) {
  const std::string_view bytes = tokens_.Bytes();
  std::size_t until_step = kTokensBetweenSteps;
  for (tokens_.Next(token_); token_.kind != TokenKind::End; tokens_.Next(token_)) {
    Read();
    if (--until_step > 0) continue;
    until_step = kTokensBetweenSteps;
    if (step && !step(tokens_.Position(), bytes.size())) {
      contents_.is_complete = false;
      break;
    }
  }
  while (!open_.empty()) {
    groups_.resize(open_.back().depth);
    CloseGroup();
  }
  for (auto& [name, part] : unshown_) Add(std::move(part));
  TotalOf(PartKind::Unshown) += unlisted_;
}

void ContentsWalk::Read() {
  switch (token_.kind) {
    case TokenKind::GroupStart: {
      decoder_.Flush();
      decoder_.EndFallback();
      Group group = Top();
      group.is_starred = false;
      group_begin_ = token_.begin;
      return groups_.push_back(group);
    }
    case TokenKind::GroupEnd:
      return CloseGroup();
    case TokenKind::Symbol:
      if (token_.byte == '*') return ReadStar();
      return ReadText();
    case TokenKind::Word:
      return ReadWord();
    default:
      return ReadText();
  }
}

void ContentsWalk::ReadStar() {
  decoder_.Flush();
  Top().is_starred = true;
}

void ContentsWalk::ReadWord() {
  const ContentsWordEntry& entry = FindContentsWord(token_.text);
  const bool names_group = std::exchange(Top().is_starred, false);
  if (entry.word != ContentsWord::None) {
    decoder_.Flush();
    return ReadKnownWord(entry);
  }
  if (names_group && IsUnshown(token_.text)) {
    const bool is_data = !open_.empty() && open_.back().word != ContentsWord::Object;
    if (!is_data && !Top().is_unshown) {
      BeginPart(ContentsWord::None, Destination::Nowhere);
      Top().is_unshown = true;
    }
    Top().destination = Destination::Nowhere;
    return;
  }
  if (Top().destination == Destination::Body) return token_.text == "u" ? NoteRevision() : void();
  if (Top().destination != Destination::Gathered) return;
  encoding_.unicode_skip = Top().unicode_skip;
  decoder_.ReadWord(FindControl(token_.text), token_, encoding_);
  Top().unicode_skip = encoding_.unicode_skip;
}

std::uint64_t* ContentsWalk::CountOf(ContentsWord word) {
  using W = ContentsWord;
  constexpr std::pair<W, std::uint64_t Contents::*> kCounts[] = {
      {W::Header, &Contents::headers},     {W::Footer, &Contents::footers},
      {W::Footnote, &Contents::footnotes}, {W::Endnote, &Contents::endnotes},
      {W::Comment, &Contents::comments},   {W::Formula, &Contents::formulas},
      {W::Bookmark, &Contents::bookmarks}, {W::IndexEntry, &Contents::index_entries},
      {W::Drawing, &Contents::drawings}};
  const auto known = std::ranges::find(kCounts, word, &std::pair<W, std::uint64_t Contents::*>::first);
  return known != std::end(kCounts) ? &(contents_.*known->second) : nullptr;
}

void ContentsWalk::ReadKnownWord(const ContentsWordEntry& entry) {
  using W = ContentsWord;
  Group& top = Top();
  if (std::uint64_t* count = CountOf(entry.word)) {
    ++*count;
    if (entry.word == W::Endnote && contents_.footnotes > 0) --contents_.footnotes;
    if (entry.word == W::Bookmark || entry.word == W::IndexEntry) top.destination = Destination::Nowhere;
    return;
  }
  switch (entry.word) {
    case W::CodePage:
      encoding_.page = &pages_.Get(token_.value);
      return;
    case W::Plain:
      top.is_inserted = top.is_deleted = false;
      return;
    case W::Inserted:
      top.is_inserted = token_.IsOn();
      return;
    case W::Deleted:
      top.is_deleted = token_.IsOn();
      return;
    case W::Skip:
      top.destination = Destination::Nowhere;
      return;
    case W::Result:
      // What a field shows that stands in another's instruction is no part of that.
      if (top.destination != Destination::Body) top.destination = Destination::Nowhere;
      return;
    case W::PictureCopy:
      top.is_copy = true;
      return;
    case W::PictureKind:
      if (!open_.empty() && open_.back().word == W::Picture) open_.back().part.name = entry.label;
      return;
    case W::Picture:
    case W::ObjectData:
      return BeginPart(entry.word, Destination::Data);
    case W::Instruction:
    case W::Template:
    case W::Reference:
    case W::LinkTarget:
    case W::PropertyName:
    case W::PropertyValue:
    case W::ObjectClass:
    case W::ObjectName:
      return BeginPart(entry.word, Destination::Gathered);
    default:
      return ReadObjectWord(entry.word);
  }
}

void ContentsWalk::ReadObjectWord(ContentsWord word) {
  if (word == ContentsWord::Object) return BeginPart(word, Top().destination);
  Open* object = InnermostObject();
  if (object == nullptr) return;
  if (word == ContentsWord::ObjectLinked || token_.text == "objautlink") object->part.is_linked = true;
  if (word == ContentsWord::ObjectUpdated) object->part.is_updated = true;
}

ContentsWalk::Open* ContentsWalk::InnermostObject() {
  const auto found =
      std::find_if(open_.rbegin(), open_.rend(), [](const Open& it) { return it.word == ContentsWord::Object; });
  return found == open_.rend() ? nullptr : &*found;
}

void ContentsWalk::NoteRevision() {
  const Group& top = Top();
  if (!std::exchange(was_inserted_, top.is_inserted) && top.is_inserted) ++contents_.insertions;
  if (!std::exchange(was_deleted_, top.is_deleted) && top.is_deleted) ++contents_.deletions;
}

void ContentsWalk::ReadText() {
  switch (Top().destination) {
    case Destination::Body:
      return NoteRevision();
    case Destination::Nowhere:
      return;
    case Destination::Gathered:
      encoding_.unicode_skip = Top().unicode_skip;
      return decoder_.Read(token_, encoding_);
    case Destination::Data:
      if (open_.empty()) return;
      if (token_.kind == TokenKind::Text) AddHex(open_.back(), token_.text);
      if (token_.kind == TokenKind::Binary) AddBinary(open_.back(), token_.text);
      return;
  }
}

void ContentsWalk::AddHex(Open& data, std::string_view digits) {
  const bool is_read = data.word == ContentsWord::ObjectData && data.text.size() < kMaxObjectBytesRead;
  std::size_t count = data.high < 0 ? 0 : 1;
  for (const char c : digits) {
    const std::uint8_t digit = kHexDigits[static_cast<unsigned char>(c)];
    if (digit == kNoDigit) continue;
    ++count;
    if (!is_read) continue;
    const int high = std::exchange(data.high, data.high < 0 ? digit : -1);
    if (high >= 0) data.text += static_cast<char>(high * kHexBase + digit);
  }
  if (!is_read) data.high = count % 2 == 0 ? -1 : 0;
  data.part.bytes += count / 2;
}

void ContentsWalk::AddBinary(Open& data, std::string_view bytes) {
  data.part.bytes += bytes.size();
  if (data.word == ContentsWord::ObjectData)
    data.text.append(bytes, 0, kMaxObjectBytesRead - std::min(data.text.size(), kMaxObjectBytesRead));
}

void ContentsWalk::Text(std::string_view text, const TextDecoder::Place& /*place*/) {
  if (open_.empty()) return;
  std::string& gathered = open_.back().text;
  if (gathered.size() + text.size() <= kMaxTargetBytes) gathered += text;
}

void ContentsWalk::UnknownCharacter(const TextDecoder::Place& place) { Text(utf8::kReplacement, place); }

void ContentsWalk::BeginPart(ContentsWord word, Destination destination) {
  Group& top = Top();
  top.destination = destination;
  if (open_.size() >= kMaxOpenParts) {
    if (word == ContentsWord::Object) ++TotalOf(PartKind::Object);
    top.destination = Destination::Nowhere;
    return;
  }
  Open& part = open_.emplace_back();
  part.word = word;
  part.depth = groups_.size();
  part.begin = group_begin_;
  part.name = token_.text;
  part.part.is_copy = top.is_copy;
}

void ContentsWalk::CloseGroup() {
  decoder_.Flush();
  decoder_.EndFallback();
  while (!open_.empty() && open_.back().depth >= groups_.size()) {
    Open part = std::move(open_.back());
    open_.pop_back();
    EndPart(part);
  }
  if (groups_.size() > 1) groups_.pop_back();
  if (groups_.size() > 1 || !contents_.is_complete) return;
  const std::string_view behind = tokens_.Bytes().substr(tokens_.Position());
  const std::size_t last = behind.find_last_not_of(std::string_view(" \t\r\n\0", 5));
  contents_.bytes_behind_end = last == std::string_view::npos ? 0 : last + 1;
}

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
  if (word == "HYPERLINK") return AddTarget(PartKind::Link, word, UrlOfInstruction(word + std::string(rest)));
  if (word.starts_with('{')) return AddTarget(PartKind::ActiveField, {}, text);
  if (IsActiveField(word)) AddTarget(PartKind::ActiveField, word, std::string(rest));
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
