#include "documents/compare/MergeUnits.h"

#include <algorithm>

#include "base/LineReader.h"
#include "documents/SourceLines.h"

namespace tme {

MergeUnits::MergeUnits(const Outline& outline) : outline_(outline), unit_of_item_(outline.Items().size(), kNone) {
  const std::vector<Outline::Item>& items = outline.Items();
  units_.reserve(items.size());
  groups_.assign(outline.Groups().size(), {0, 0});
  Index begin = 0;
  for (Index at = 0; at < items.size();) {
    while (at < items.size() && items[at].sort == Outline::Sort::Blank) ++at;
    const Index lead = at;
    while (at < items.size() && items[at].sort == Outline::Sort::Comment) ++at;
    const bool touches = at < items.size() && items[at].sort != Outline::Sort::Blank;
    if (!touches && at == lead) break;
    if (touches) ++at;
    Add(begin, lead, touches ? at - 1 : lead, at);
    begin = at;
  }
  for (Index at = 0; at < units_.size(); ++at) {
    Range& range = groups_[units_[at].group];
    if (range.end == 0) range.begin = at;
    range.end = at + 1;
  }
}

void MergeUnits::Add(Index begin, Index lead, Index main, Index end) {
  const Outline::Item& item = outline_.Items()[main];
  const auto unit = static_cast<Index>(units_.size());
  const Sort sort = item.sort == Outline::Sort::Header    ? Sort::Header
                    : item.sort == Outline::Sort::Comment ? Sort::Comments
                                                          : Sort::Item;
  units_.push_back({begin, lead, main, end, item.group, sort});
  if (sort == Sort::Comments)
    comments_[KeyOfComments(item.group, outline_.Lines(main, end))].push_back(unit);
  else
    unit_of_item_[main] = unit;
}

std::string MergeUnits::KeyOfComments(Index group, std::string_view lines) {
  return std::to_string(group) + '\n' + LinesEndedBy(lines, "\n");
}

std::string_view MergeUnits::NewComments(Index unit, const MergeUnits& base, Index base_unit) const {
  if (units_[unit].sort == Sort::Comments) return base_unit == kNone ? MainOf(unit) : std::string_view();
  const std::string_view lead = LeadOf(unit);
  return base_unit != kNone && SameMergeLines(lead, base.LeadOf(base_unit)) ? std::string_view() : lead;
}

std::string_view MergeUnits::Tail() const {
  return outline_.Lines(units_.empty() ? 0 : units_.back().end, static_cast<Index>(outline_.Items().size()));
}

std::vector<MergeUnits::Index> MergeUnits::FindGroups(const MergeUnits& theirs) const {
  std::vector<Index> found;
  found.reserve(theirs.groups_.size());
  for (const Outline::Group& group : theirs.outline_.Groups()) found.push_back(outline_.FindGroup(group));
  return found;
}

std::vector<MergeUnits::Index> MergeUnits::Find(const MergeUnits& theirs) const {
  const std::vector<Index> groups = FindGroups(theirs);
  std::vector<Index> found(theirs.units_.size(), kNone);
  Index guess = 0;
  const auto find_item = [&](const Unit& unit, Index group) {
    const Index item = outline_.FindItem(group, theirs.outline_, theirs.outline_.Items()[unit.main], guess);
    if (item != kNone) guess = item + 1;
    return item == kNone ? kNone : unit_of_item_[item];
  };
  for (Index at = 0; at < theirs.units_.size(); ++at) {
    const Unit& unit = theirs.units_[at];
    const Index group = groups[unit.group];
    if (group == kNone || unit.sort == Sort::Comments) continue;
    if (unit.sort == Sort::Header) guess = outline_.Groups()[group].begin + 1;
    found[at] = unit.sort == Sort::Header ? unit_of_item_[outline_.Groups()[group].begin] : find_item(unit, group);
  }
  for (const auto& [key, blocks] : theirs.comments_) {
    const Unit& unit = theirs.units_[blocks.front()];
    const Index group = groups[unit.group];
    if (group == kNone) continue;
    const auto same = comments_.find(KeyOfComments(group, theirs.outline_.Lines(unit.main, unit.end)));
    if (same == comments_.end()) continue;
    for (std::size_t number = 0; number < std::min(blocks.size(), same->second.size()); ++number)
      found[blocks[number]] = same->second[number];
  }
  if (theirs.FileHeader() != kNone) found[theirs.FileHeader()] = FileHeader();
  return found;
}

MergeUnits::Index MergeUnits::FileHeader() const {
  for (Index at = groups_[0].begin; at < groups_[0].end; ++at)
    if (outline_.Items()[units_[at].main].sort == Outline::Sort::FileHeader) return at;
  return kNone;
}

MergeUnits::Index MergeUnits::Previous(Index unit) const {
  Outline::Item item = outline_.Items()[units_[unit].main];
  if (units_[unit].sort != Sort::Item || item.number == 0) return kNone;
  --item.number;
  return unit_of_item_[outline_.FindItem(units_[unit].group, outline_, item)];
}

bool MergeUnits::SameContent(Index unit, const MergeUnits& other, Index theirs) const {
  return units_[unit].sort != Sort::Item ||
         outline_.SameValue(units_[unit].main, other.outline_, other.units_[theirs].main);
}

bool SameMergeLines(std::string_view one, std::string_view other) {
  if (one == other) return true;
  LineReader lines(one), other_lines(other);
  for (std::string_view line, other_line; lines.Next(line);)
    if (!other_lines.Next(other_line) || line != other_line) return false;
  return other_lines.AtEnd();
}

}  // namespace tme
