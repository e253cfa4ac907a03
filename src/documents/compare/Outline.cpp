#include "documents/compare/Outline.h"

#include <algorithm>
#include <functional>

#include "base/LineReader.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/reg/RegHex.h"
#include "documents/reg/RegNames.h"

namespace tme {
namespace {

bool SameIniPath(std::string_view one, std::string_view other) { return one == other || SameRegName(one, other); }

std::uint32_t Mixed(std::uint32_t hash, std::uint32_t more) {
  constexpr std::uint32_t kGolden = 0x9E3779B1;
  constexpr std::uint32_t kMixer = 0x2C1B3C6D;
  hash = (hash ^ more * kGolden) * kMixer;
  return hash ^ hash >> 15U;
}

}  // namespace

std::string_view Outline::Lines(Index begin, Index end) const {
  const auto place = [this](Index item) { return item < items_.size() ? items_[item].at : text_->size(); };
  return std::string_view(*text_).substr(place(begin), place(end) - place(begin));
}

std::uint64_t Outline::LineNumberOf(Index item) const {
  LineReader lines(Lines(0, item));
  for (std::string_view line; lines.Next(line);) {
  }
  return lines.Number() + 1;
}

std::string Outline::IniValueOf(const Item& item, std::string_view between) const {
  const std::string_view value = ValueOf(item);
  if (value.find_first_of("\r\n") == value.npos) return std::string(value);
  const bool are_comments_found = options_.comments == OutlineOptions::Comments::Found;
  LineReader lines(value);
  std::string text;
  bool is_first = true;
  for (std::string_view line; lines.Next(line); is_first = false) {
    line = TrimIniBlanks(line);
    const bool is_comment = !is_first && SourceKindOf(line) == IniLine::Comment;
    if (!is_first && (line.empty() || (is_comment && !are_comments_found))) continue;
    text.append(is_first ? "" : between).append(line);
  }
  return text;
}

std::string Outline::CommentsOf(Index item) const {
  const Item& it = items_[item];
  if (options_.comments != OutlineOptions::Comments::Found || kind_ == Kind::Ini || !it.has_value) return {};
  std::string text;
  for (const std::string_view comment : CommentsInHex(ValueOf(it))) text.append(" ").append(TrimIniBlanks(comment));
  const std::string_view lines = LinesOf(item);
  std::string_view behind = lines.substr(it.value_at + it.value_size - it.at);
  behind = TrimIniBlanks(behind.substr(0, behind.find_first_of("\r\n")));
  if (!behind.empty()) text.append(" ").append(behind);
  return text;
}

std::string Outline::NameOf(const Item& item) const {
  return item.is_escaped ? UnescapedRegText(RawNameOf(item)) : std::string(RawNameOf(item));
}

Outline::Index Outline::EnterGroup(Index at) {
  const Group& group = groups_[at];
  return found_groups_.FindOrEnter(HashOfGroup(group), at,
                                   [&](Index other) { return SameGroup(groups_[other], group); });
}

Outline::Index Outline::EnterItem(Index at) {
  const Item& item = items_[at];
  const Index group = groups_[item.group].joined;
  return found_items_.FindOrEnter(HashOfItem(group, *this, item), at,
                                  [&](Index other) { return IsItem(other, group, *this, item); });
}

Outline::Index Outline::FindGroup(const Group& theirs) const {
  return found_groups_.Find(HashOfGroup(theirs), [&](Index at) { return SameGroup(groups_[at], theirs); });
}

Outline::Index Outline::FindItem(Index group, const Outline& other, const Item& theirs, Index guess) const {
  if (guess < items_.size() && IsContent(items_[guess]) && IsItem(guess, group, other, theirs)) return guess;
  return found_items_.Find(HashOfItem(group, other, theirs),
                           [&](Index at) { return IsItem(at, group, other, theirs); });
}

std::uint32_t Outline::HashOfGroup(const Group& group) {
  return Mixed(HashOfRegName(group.path), group.number + (group.sort == GroupSort::Deletion ? UINT32_MAX : 0));
}

bool Outline::SameGroup(const Group& one, const Group& other) {
  return one.sort == other.sort && one.number == other.number && SameIniPath(one.path, other.path);
}

std::uint32_t Outline::HashOfItem(Index group, const Outline& other, const Item& theirs) {
  const std::string_view name = other.RawNameOf(theirs);
  std::uint32_t hash = 0;
  if (theirs.sort != Sort::Entry)
    hash = static_cast<std::uint32_t>(std::hash<std::string_view>()(name));
  else
    hash = theirs.is_escaped ? HashOfRegName(UnescapedRegText(name)) : HashOfRegName(name);
  return Mixed(Mixed(hash, group + 1), theirs.number);
}

bool Outline::IsItem(Index at, Index group, const Outline& other, const Item& theirs) const {
  const Item& item = items_[at];
  if (groups_[item.group].joined != group || item.number != theirs.number || item.sort != theirs.sort) return false;
  const std::string_view name = RawNameOf(item), their_name = other.RawNameOf(theirs);
  if (item.is_escaped || theirs.is_escaped) return SameRegName(NameOf(item), other.NameOf(theirs));
  return name == their_name || (item.sort == Sort::Entry && SameRegName(name, their_name));
}

bool Outline::SameValue(Index item, const Outline& other, Index theirs) const {
  const Item& one = items_[item];
  const Item& two = other.items_[theirs];
  const std::string_view value = ValueOf(one), their_value = other.ValueOf(two);
  if (one.has_value != two.has_value) return false;
  if (options_.comments == OutlineOptions::Comments::Found && CommentsOf(item) != other.CommentsOf(theirs))
    return false;
  if (value == their_value && coding_.version == other.coding_.version) return true;
  if (kind_ == Kind::Ini && one.has_value) return IniValueOf(one, "\n") == other.IniValueOf(two, "\n");
  if (!one.has_value) return value == their_value;
  const std::optional<RegData> data = DecodeAssignment(value, coding_);
  const std::optional<RegData> their_data = DecodeAssignment(their_value, other.coding_);
  // What cannot be decoded is a deletion.
  if (data == their_data || !data || !their_data || coding_.version == other.coding_.version) return data == their_data;
  const RegContent content = ContentOf(data->type);
  const bool is_broken_text = (content == RegContent::Text || content == RegContent::Strings) &&
                              data->type == their_data->type && data->content == RegContent::Bytes &&
                              their_data->content == RegContent::Bytes;
  return is_broken_text && RecodedRegText(their_data->bytes, data->type, other.coding_, coding_) == data->bytes;
}

}  // namespace tme
