#include "documents/compare/OutlineReading.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "documents/compare/KeyPaths.h"

namespace tme {
Outline::Reading::Reading(Kind kind, std::string text, const OutlineOptions& options) {
  outline_.kind_ = kind;
  outline_.options_ = options;
  outline_.text_ = std::make_unique<const std::string>(std::move(text));
  const auto count = [this](char end) { return static_cast<std::size_t>(std::ranges::count(Text(), end)); };
  const std::size_t ends = count('\n');
  outline_.items_.reserve((ends > 0 ? ends : count('\r')) + 1);
  outline_.groups_.push_back({.path = "",
                              .sort = GroupSort::Top,
                              .follows_keys = false,
                              .is_deleted = false,
                              .number = 0,
                              .joined = 0,
                              .next_joined = kNone,
                              .begin = 0,
                              .end = 0});
}

Outline::Index Outline::Reading::Add(std::string_view lines, Sort sort) {
  const auto group = static_cast<Index>(outline_.groups_.size() - 1);
  outline_.items_.push_back({.at = PlaceOf(lines),
                             .name_at = 0,
                             .name_size = 0,
                             .value_at = 0,
                             .value_size = 0,
                             .group = group,
                             .number = 0,
                             .sort = sort,
                             .has_value = false,
                             .has_next = false,
                             .is_escaped = false});
  return static_cast<Index>(outline_.items_.size() - 1);
}

void Outline::Reading::SetName(Index item, std::string_view name) {
  if (name.empty()) return;
  outline_.items_[item].name_at = PlaceOf(name);
  outline_.items_[item].name_size = static_cast<std::uint32_t>(name.size());
}

void Outline::Reading::SetEscapedName(Index item, std::string_view name) {
  SetName(item, name);
  outline_.items_[item].is_escaped = true;
}

void Outline::Reading::SetValue(Index item, std::string_view value) {
  outline_.items_[item].value_at = PlaceOf(value);
  outline_.items_[item].value_size = static_cast<std::uint32_t>(value.size());
  outline_.items_[item].has_value = true;
}

void Outline::Reading::BeginGroup(std::string_view path, GroupSort sort) {
  const auto header = static_cast<Index>(outline_.items_.size() - 1);
  const auto group = static_cast<Index>(outline_.groups_.size());
  outline_.items_[header].group = group;
  outline_.groups_.back().end = header;
  outline_.groups_.push_back({.path = outline_.kind_ == Kind::Reg ? PathOf(path) : path,
                              .sort = sort,
                              .follows_keys = false,
                              .is_deleted = false,
                              .number = 0,
                              .joined = group,
                              .next_joined = kNone,
                              .begin = header,
                              .end = header});
}

std::string_view Outline::Reading::PathOf(std::string_view path) {
  if (!path.starts_with('\\') && !path.ends_with('\\') && path.find("\\\\") == path.npos) return path;
  std::string& plain = outline_.paths_.emplace_back();
  for (const char c : path)
    if (c != '\\' || (!plain.empty() && plain.back() != '\\')) plain += c;
  if (plain.ends_with('\\')) plain.pop_back();
  return plain;
}

Outline Outline::Reading::Finish() && {
  outline_.groups_.back().end = static_cast<Index>(outline_.items_.size());
  EnterGroups();
  EnterItems();
  FindDeletedKeys();
  return std::move(outline_);
}

void Outline::Reading::EnterGroups() {
  std::vector<Group>& groups = outline_.groups_;
  const bool are_joined = outline_.kind_ == Kind::Reg && outline_.options_.blocks == OutlineOptions::Blocks::Joined;
  // By the first group of a path that comes several times: how many of it there are, and the last one.
  std::unordered_map<Index, std::pair<std::uint32_t, Index>> several;
  outline_.found_groups_.Reset(groups.size());
  for (Index at = 0; at < groups.size(); ++at) {
    const Index first = outline_.EnterGroup(at);
    if (first == at) continue;
    const auto place = several.try_emplace(first, 1, first).first;
    auto& [count, last] = place->second;
    if (are_joined) {
      groups[at].joined = first;
      groups[last].next_joined = at;
    } else {
      groups[at].number = count;
      outline_.EnterGroup(at);
    }
    ++count;
    last = at;
  }
}

void Outline::Reading::EnterItems() {
  std::vector<Item>& items = outline_.items_;
  const auto is_content = [this](const Item& item) { return outline_.IsContent(item); };
  outline_.found_items_.Reset(static_cast<std::size_t>(std::ranges::count_if(items, is_content)));
  // By the first of a name that comes several times: how many of it there are, and the last one.
  std::unordered_map<Index, std::pair<std::uint32_t, Index>> several;
  for (Index at = 0; at < items.size(); ++at) {
    if (!is_content(items[at])) continue;
    const Index first = outline_.EnterItem(at);
    if (first == at) continue;
    auto& [count, last] = several.try_emplace(first, 0, first).first->second;
    items[last].has_next = true;
    items[at].number = ++count;
    last = at;
    outline_.EnterItem(at);
  }
}

void Outline::Reading::FindDeletedKeys() {
  KeyPaths deletions;
  // By the first deletion of a path: the last one of it, and the first key that it may delete.
  struct Place {
    Index last_deletion;
    Index first_key;
  };
  std::unordered_map<Index, Place> places;
  std::vector<Group>& groups = outline_.groups_;
  for (Index at = 0; at < groups.size(); ++at)
    if (groups[at].sort == GroupSort::Deletion)
      places.try_emplace(deletions.Add(groups[at].path, at), Place{at, kNone}).first->second.last_deletion = at;
  if (deletions.IsEmpty()) return;
  for (Index at = 0; at < groups.size(); ++at) {
    if (groups[at].sort != GroupSort::Named) continue;
    deletions.ForEachAtOrAbove(groups[at].path, [&](Index deletion) {
      Place& place = places.find(deletion)->second;
      place.first_key = std::min(place.first_key, at);
      if (at < place.last_deletion) groups[at].is_deleted = true;
    });
  }
  for (Index at = 0; at < groups.size(); ++at)
    if (groups[at].sort == GroupSort::Deletion)
      groups[at].follows_keys = places.find(deletions.Add(groups[at].path, at))->second.first_key < at;
}

}  // namespace tme
