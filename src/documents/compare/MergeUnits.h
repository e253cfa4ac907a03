#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "documents/compare/Outline.h"

namespace tme {

/// An outline as what a merge moves: headers, entries, and comments that touch nothing below them, each with the blank
/// lines and the comments that stand above it. They follow one another without a gap.
class MergeUnits {
 public:
  using Index = Outline::Index;
  static constexpr Index kNone = Outline::kNone;

  enum class Sort : std::uint8_t { Header, Item, Comments };
  struct Unit {
    /// Items: blank lines from begin on, comments from lead on, itself from main on.
    Index begin;
    Index lead;
    Index main;
    Index end;
    Index group;
    Sort sort;
  };
  /// What a group holds: its header first, but for the top.
  struct Range {
    Index begin;
    Index end;
  };

  /// outline: with blocks apart; outlives this.
  explicit MergeUnits(const Outline& outline);

  const Outline& File() const { return outline_; }
  const std::vector<Unit>& All() const { return units_; }
  /// By group.
  const std::vector<Range>& Groups() const { return groups_; }
  std::string_view BlanksOf(Index unit) const { return outline_.Lines(units_[unit].begin, units_[unit].lead); }
  std::string_view LeadOf(Index unit) const { return outline_.Lines(units_[unit].lead, units_[unit].main); }
  std::string_view MainOf(Index unit) const { return outline_.Lines(units_[unit].main, units_[unit].end); }
  /// The comments of a unit that are not those of the base: above it, or itself where it is such. base_unit: the same
  /// one there, kNone for none.
  std::string_view NewComments(Index unit, const MergeUnits& base, Index base_unit) const;
  /// The blank lines behind the last unit.
  std::string_view Tail() const;

  /// For each unit of another file the same one here; kNone.
  std::vector<Index> Find(const MergeUnits& theirs) const;
  /// The line that says a registry file's version; kNone.
  Index FileHeader() const;
  /// The entry of the same name before an entry in its group; kNone.
  Index Previous(Index unit) const;
  /// For each group.
  std::vector<Index> FindGroups(const MergeUnits& theirs) const;
  /// Whether two that are the same have the same content, whatever stands above them.
  bool SameContent(Index unit, const MergeUnits& other, Index theirs) const;

 private:
  void Add(Index begin, Index lead, Index main, Index end);
  static std::string KeyOfComments(Index group, std::string_view lines);

  const Outline& outline_;
  std::vector<Unit> units_;
  std::vector<Range> groups_;
  /// By item; kNone for what is no unit's main item.
  std::vector<Index> unit_of_item_;
  /// By their text; those of the same one in order.
  std::unordered_map<std::string, std::vector<Index>> comments_;
};

/// Whether two texts are the same lines, whatever these end in.
bool SameMergeLines(std::string_view one, std::string_view other);

}  // namespace tme
