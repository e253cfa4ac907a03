#include "documents/rtf/RtfContentsWalk.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "base/Utf8.h"
#include "documents/rtf/RtfControls.h"

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
  if (Top().destination == Destination::Body) {
    if (token_.text == "u") NoteRevision();
    if (!IsInLink()) return;
  } else if (Top().destination != Destination::Gathered) {
    return;
  }
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
      return BeginResult();
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
      NoteRevision();
      if (!IsInLink()) return;
      [[fallthrough]];
    case Destination::Gathered:
      encoding_.unicode_skip = Top().unicode_skip;
      return decoder_.Read(token_, encoding_);
    case Destination::Nowhere:
      return;
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
  const bool is_shown = Top().destination == Destination::Body && IsInLink();
  if (open_.empty() && !is_shown) return;
  std::string& gathered = is_shown ? contents_.parts[link_].shown : open_.back().text;
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
  if (groups_.size() == link_text_depth_) link_text_depth_ = 0;
  if (groups_.size() < link_depth_) link_depth_ = 0;
  if (groups_.size() > 1) groups_.pop_back();
  if (groups_.size() > 1 || !contents_.is_complete) return;
  const std::string_view behind = tokens_.Bytes().substr(tokens_.Position());
  const std::size_t last = behind.find_last_not_of(std::string_view(" \t\r\n\0", 5));
  contents_.bytes_behind_end = last == std::string_view::npos ? 0 : last + 1;
}

}  // namespace tme::rtf
