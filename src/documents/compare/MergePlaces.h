#pragma once

#include <functional>
#include <vector>

#include "documents/compare/MergeUnits.h"

namespace tme {

/// Something of theirs that comes before one of ours, by its number.
struct MergeAddition {
  MergeUnits::Index place;
  MergeUnits::Index number;
};

/// The same groups or units in both files, kNone for none, and what is where.
struct MergeCounterparts {
  const MergeUnits& ours;
  const MergeUnits& theirs;
  /// By their number.
  const std::vector<MergeUnits::Index>& ours_of_theirs;
  std::function<bool(MergeUnits::Index ours)> is_ours_alone;
  /// Whether it comes to us.
  std::function<bool(MergeUnits::Index theirs)> is_added;
};

/// Of one side, by its groups: the deletions of keys that it added behind keys in which the other side changed or added
/// something, which would be void. is_added: by its group. is_changed: by group of the other side.
std::vector<bool> DisputedDeletions(const MergeUnits& side, const std::function<bool(MergeUnits::Index)>& is_added,
                                    const MergeUnits& other, const std::function<bool(MergeUnits::Index)>& is_changed);

/// Where their groups come: behind what they follow there, and behind what we put there; of several of a name behind
/// the one before it. A deletion of a key stays before the keys that come after it, and keys behind the deletion.
/// In the order of the places.
std::vector<MergeAddition> PlacesOfGroups(const MergeCounterparts& groups);

/// The same for the units of a group, by its number in each file.
std::vector<MergeAddition> PlacesOfUnits(const MergeCounterparts& units, MergeUnits::Index our_group,
                                         MergeUnits::Index their_group);

}  // namespace tme
