#include "documents/compare/MergePlaces.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "documents/compare/KeyPaths.h"

namespace tme {
namespace {

using PlaceIndex = MergeUnits::Index;
constexpr PlaceIndex kNoPlace = MergeUnits::kNone;

/// Follows their file and finds the place in ours.
class PlaceCursor {
 public:
  PlaceCursor(const MergeCounterparts& parts, PlaceIndex first, PlaceIndex end)
      : parts_(parts), first_(first), place_(first), end_(end) {}

  void Pass(PlaceIndex theirs) { place_ = std::max(first_, parts_.ours_of_theirs[theirs] + 1); }

  /// previous: the one of the same name before it, kNoPlace for none.
  PlaceIndex PlaceBehind(PlaceIndex previous) {
    while (place_ < end_ && parts_.is_ours_alone(place_)) ++place_;
    if (previous == kNoPlace) return place_;
    if (const auto added = places_.find(previous); added != places_.end()) return std::max(place_, added->second);
    const PlaceIndex ours = parts_.ours_of_theirs[previous];
    return ours == kNoPlace ? place_ : std::max(place_, ours + 1);
  }

  void Add(PlaceIndex theirs, PlaceIndex place) {
    places_.emplace(theirs, place);
    added_.push_back({place, theirs});
  }

  std::vector<MergeAddition> Take() && {
    std::ranges::stable_sort(added_, {}, &MergeAddition::place);
    return std::move(added_);
  }

 private:
  const MergeCounterparts& parts_;
  const PlaceIndex first_;
  PlaceIndex place_;
  const PlaceIndex end_;
  std::unordered_map<PlaceIndex, PlaceIndex> places_;
  std::vector<MergeAddition> added_;
};

/// Keeps deletions of keys and the keys below them in their order.
class DeletionBounds {
 public:
  explicit DeletionBounds(const MergeCounterparts& groups) {
    const std::vector<Outline::Group>& ours = groups.ours.File().Groups();
    const std::vector<Outline::Group>& theirs = groups.theirs.File().Groups();
    KeyPaths added;
    for (PlaceIndex at = 0; at < theirs.size(); ++at)
      if (IsDeletion(theirs[at]) && groups.is_added(at)) keys_.try_emplace(added.Add(theirs[at].path, at));
    for (PlaceIndex at = 0; at < ours.size(); ++at) {
      if (IsDeletion(ours[at])) behind_[deletions_.Add(ours[at].path, at)] = at + 1;
      if (ours[at].sort != Outline::GroupSort::Named) continue;
      added.ForEachAtOrAbove(ours[at].path, [&](PlaceIndex deletion) {
        Span& keys = keys_[deletion];
        keys.first = std::min(keys.first, at);
        keys.end = at + 1;
      });
    }
  }

  /// theirs: is added.
  PlaceIndex Bound(PlaceIndex number, const Outline::Group& theirs, PlaceIndex place) {
    if (IsDeletion(theirs)) {
      const auto keys = keys_.find(number);
      if (keys != keys_.end() && keys->second.end > 0)
        place = theirs.follows_keys ? std::max(place, keys->second.end) : std::min(place, keys->second.first);
      PlaceIndex& behind = behind_[deletions_.Add(theirs.path, number + kTheirs)];
      behind = std::max(behind, place);
    } else if (!theirs.is_deleted) {
      deletions_.ForEachAtOrAbove(theirs.path,
                                  [&](PlaceIndex deletion) { place = std::max(place, behind_[deletion]); });
    }
    return place;
  }

 private:
  struct Span {
    PlaceIndex first = kNoPlace;
    PlaceIndex end = 0;
  };
  /// Tells their numbers from ours.
  static constexpr PlaceIndex kTheirs = PlaceIndex{1} << 31U;

  static bool IsDeletion(const Outline::Group& group) { return group.sort == Outline::GroupSort::Deletion; }

  /// By deletion that they added: where our keys stand that it deletes.
  std::unordered_map<PlaceIndex, Span> keys_;
  KeyPaths deletions_;
  /// By deletion: the place behind it.
  std::unordered_map<PlaceIndex, PlaceIndex> behind_;
};

}  // namespace

std::vector<bool> DisputedDeletions(const MergeUnits& side, const std::function<bool(PlaceIndex)>& is_added,
                                    const MergeUnits& other, const std::function<bool(PlaceIndex)>& is_changed) {
  const std::vector<Outline::Group>& groups = side.File().Groups();
  const std::vector<Outline::Group>& others = other.File().Groups();
  const auto is_new_deletion = [&](PlaceIndex at) {
    return groups[at].sort == Outline::GroupSort::Deletion && groups[at].follows_keys && is_added(at);
  };
  std::vector<bool> is_disputed(groups.size(), false);
  KeyPaths deletions;
  for (PlaceIndex at = 0; at < groups.size(); ++at)
    if (is_new_deletion(at)) deletions.Add(groups[at].path, at);
  if (deletions.IsEmpty()) return is_disputed;
  for (PlaceIndex at = 0; at < others.size(); ++at)
    if (others[at].sort == Outline::GroupSort::Named && is_changed(at))
      deletions.ForEachAtOrAbove(others[at].path, [&](PlaceIndex deletion) { is_disputed[deletion] = true; });
  for (PlaceIndex at = 0; at < groups.size(); ++at)  // all of a path as the first one
    if (is_new_deletion(at)) is_disputed[at] = is_disputed[deletions.Add(groups[at].path, at)];
  return is_disputed;
}

std::vector<MergeAddition> PlacesOfGroups(const MergeCounterparts& groups) {
  const std::vector<Outline::Group>& theirs = groups.theirs.File().Groups();
  constexpr PlaceIndex kFirstGroup = 1;  // nothing comes before the top
  PlaceCursor cursor(groups, kFirstGroup, static_cast<PlaceIndex>(groups.ours.Groups().size()));
  DeletionBounds bounds(groups);
  for (PlaceIndex at = 0; at < theirs.size(); ++at) {
    if (groups.ours_of_theirs[at] != kNoPlace) {
      cursor.Pass(at);
      continue;
    }
    if (!groups.is_added(at)) continue;
    Outline::Group previous = theirs[at];
    const bool has_previous = previous.number-- > 0;
    const PlaceIndex place = cursor.PlaceBehind(has_previous ? groups.theirs.File().FindGroup(previous) : kNoPlace);
    cursor.Add(at, std::max(kFirstGroup, bounds.Bound(at, theirs[at], place)));
  }
  return std::move(cursor).Take();
}

std::vector<MergeAddition> PlacesOfUnits(const MergeCounterparts& units, PlaceIndex our_group, PlaceIndex their_group) {
  const MergeUnits::Range ours = units.ours.Groups()[our_group], theirs = units.theirs.Groups()[their_group];
  // Behind the header; the top has none, but for the line that says the version.
  const bool is_top = our_group == 0;
  const PlaceIndex version = is_top ? units.ours.FileHeader() : kNoPlace;
  PlaceCursor cursor(units, version != kNoPlace ? version + 1 : ours.begin + (is_top ? 0 : 1), ours.end);
  for (PlaceIndex at = theirs.begin + (is_top ? 0 : 1); at < theirs.end; ++at) {
    if (units.ours_of_theirs[at] != kNoPlace)
      cursor.Pass(at);
    else if (units.is_added(at))
      cursor.Add(at, cursor.PlaceBehind(units.theirs.Previous(at)));
  }
  return std::move(cursor).Take();
}

}  // namespace tme
