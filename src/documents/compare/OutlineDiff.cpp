#include "documents/compare/OutlineDiff.h"

#include <algorithm>

namespace tme {
namespace {

using Index = Outline::Index;
constexpr Index kNone = Outline::kNone;

/// Marks those of some numbers that stand in no longest growing run of them.
std::vector<bool> OutOfOrder(const std::vector<Index>& numbers) {
  std::vector<bool> is_out(numbers.size(), false);
  if (std::ranges::is_sorted(numbers)) return is_out;
  // ends[n] ends the best run of n + 1 numbers.
  std::vector<std::size_t> ends, previous(numbers.size(), SIZE_MAX);
  for (std::size_t at = 0; at < numbers.size(); ++at) {
    const auto place = std::ranges::lower_bound(ends, numbers[at], {}, [&](std::size_t end) { return numbers[end]; });
    if (place != ends.begin()) previous[at] = *std::prev(place);
    if (place == ends.end())
      ends.push_back(at);
    else
      *place = at;
  }
  is_out.assign(numbers.size(), true);
  for (std::size_t at = ends.back(); at != SIZE_MAX; at = previous[at]) is_out[at] = false;
  return is_out;
}

class OutlineComparison {
 public:
  OutlineComparison(const Outline& before, const Outline& after, OutlineOrder order)
      : before_(before),
        after_(after),
        order_(order),
        group_after_(before.Groups().size(), kNone),
        item_after_(before.Items().size(), kNone) {}

  std::vector<OutlineChange> Run() && {
    for (Index group = 0; group < after_.Groups().size(); ++group)
      if (after_.Groups()[group].joined == group) MatchGroup(group);
    if (order_ == OutlineOrder::Told) {
      MarkMoved(groups_seen_, moved_groups_);
      std::ranges::sort(moved_groups_);
      std::ranges::sort(moved_items_);
    }
    std::ranges::stable_sort(added_, {}, &Addition::place);
    for (Index group = 0; group < before_.Groups().size(); ++group) WalkGroup(group);
    return std::move(changes_);
  }

 private:
  /// What comes before an item of the first outline.
  struct Addition {
    Index place;
    OutlineChange change;
  };

  template <typename Visit>
  static void ForEachContent(const Outline& outline, Index group, Visit visit) {
    for (Index block = group; block != kNone; block = outline.Groups()[block].next_joined)
      for (Index item = outline.Groups()[block].begin; item < outline.Groups()[block].end; ++item)
        if (outline.IsContent(outline.Items()[item])) visit(item);
  }

  void MatchGroup(Index theirs) {
    const Index ours = before_.FindGroup(after_.Groups()[theirs]);
    if (ours == kNone) return AddGroup(theirs);
    group_after_[ours] = theirs;
    groups_seen_.push_back(ours);
    // The top has no header that the first items could stand behind.
    const Outline::Group& group = before_.Groups()[ours];
    Index place = group.begin + (group.sort == Outline::GroupSort::Top ? 0 : 1);
    items_seen_.clear();
    ForEachContent(after_, theirs, [&](Index item) {
      const Index same = before_.FindItem(ours, after_, after_.Items()[item], place);
      if (same == kNone) {
        Add(place,
            {.kind = OutlineChange::Kind::Added, .group_before = ours, .group_after = theirs, .item_after = item});
        return;
      }
      item_after_[same] = item;
      items_seen_.push_back(same);
      place = same + 1;
    });
    if (order_ == OutlineOrder::Told) MarkMoved(items_seen_, moved_items_);
    behind_group_ = group.end;
  }

  void AddGroup(Index theirs) {
    Add(behind_group_, {.kind = OutlineChange::Kind::Added, .group_after = theirs});
    ForEachContent(after_, theirs, [&](Index item) {
      Add(behind_group_, {.kind = OutlineChange::Kind::Added, .group_after = theirs, .item_after = item});
    });
  }

  void Add(Index place, const OutlineChange& change) { added_.push_back({place, change}); }

  static void MarkMoved(const std::vector<Index>& numbers, std::vector<Index>& moved) {
    const std::vector<bool> is_out = OutOfOrder(numbers);
    for (std::size_t at = 0; at < numbers.size(); ++at)
      if (is_out[at]) moved.push_back(numbers[at]);
  }

  void TellAdded(Index place) {
    for (; next_added_ < added_.size() && added_[next_added_].place <= place; ++next_added_)
      changes_.push_back(added_[next_added_].change);
  }

  void WalkGroup(Index block) {
    const Outline::Group& group = before_.Groups()[block];
    const Index ours = group.joined, theirs = group_after_[ours];
    if (ours == block) TellGroup(ours, theirs);
    for (Index item = group.begin; item < group.end; ++item) {
      TellAdded(item);
      if (before_.IsContent(before_.Items()[item])) TellItem(ours, theirs, item);
    }
    TellAdded(group.end);
  }

  void TellGroup(Index ours, Index theirs) {
    OutlineChange change{.kind = OutlineChange::Kind::Removed, .group_before = ours, .group_after = theirs};
    if (theirs == kNone) return changes_.push_back(change);
    if (std::ranges::binary_search(moved_groups_, ours)) {
      change.kind = OutlineChange::Kind::Moved;
      changes_.push_back(change);
    }
    if (before_.Groups()[ours].follows_keys == after_.Groups()[theirs].follows_keys) return;
    change.kind = OutlineChange::Kind::Changed;
    changes_.push_back(change);
  }

  void TellItem(Index ours, Index theirs, Index item) {
    OutlineChange change{.kind = OutlineChange::Kind::Removed,
                         .group_before = ours,
                         .group_after = theirs,
                         .item_before = item,
                         .item_after = item_after_[item]};
    if (change.item_after == kNone) return changes_.push_back(change);
    if (std::ranges::binary_search(moved_items_, item)) {
      change.kind = OutlineChange::Kind::Moved;
      changes_.push_back(change);
    }
    if (before_.SameValue(item, after_, change.item_after)) return;
    change.kind = OutlineChange::Kind::Changed;
    changes_.push_back(change);
  }

  const Outline& before_;
  const Outline& after_;
  const OutlineOrder order_;
  /// By joined group and by item of the first outline; kNone for those that were removed.
  std::vector<Index> group_after_;
  std::vector<Index> item_after_;
  /// What is in both, in the order of the second outline.
  std::vector<Index> groups_seen_;
  std::vector<Index> items_seen_;
  std::vector<Index> moved_groups_;
  std::vector<Index> moved_items_;
  /// Where the group ends that was in both last.
  Index behind_group_ = 0;
  std::vector<Addition> added_;
  std::size_t next_added_ = 0;
  std::vector<OutlineChange> changes_;
};

}  // namespace

std::vector<OutlineChange> DiffOutlines(const Outline& before, const Outline& after, OutlineOrder order) {
  return OutlineComparison(before, after, order).Run();
}

}  // namespace tme
