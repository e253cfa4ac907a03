#include "documents/compare/Merge.h"

#include <utility>

#include "base/LineReader.h"
#include "documents/SourceLines.h"
#include "documents/compare/MergeLines.h"
#include "documents/compare/MergeOutput.h"
#include "documents/compare/MergePlaces.h"
#include "documents/compare/MergeUnits.h"
#include "documents/compare/OutlineDiff.h"

namespace tme {
namespace {

using UnitIndex = MergeUnits::Index;
constexpr UnitIndex kNoUnit = MergeUnits::kNone;
constexpr std::string_view kOurSide = "ours";
constexpr std::string_view kTheirSide = "theirs";
constexpr std::string_view kDeletedMark = "deleted";

/// By number of one file the number of the other one, from the other way round.
std::vector<UnitIndex> Inverted(const std::vector<UnitIndex>& numbers, std::size_t size) {
  std::vector<UnitIndex> inverted(size, kNoUnit);
  for (std::size_t at = 0; at < numbers.size(); ++at)
    if (numbers[at] != kNoUnit) inverted[numbers[at]] = static_cast<UnitIndex>(at);
  return inverted;
}

std::size_t LinesIn(std::string_view text) {
  LineReader lines(text);
  for (std::string_view line; lines.Next(line);) {
  }
  return lines.Number();
}

class Merging {
 public:
  Merging(const Outline& base, const Outline& ours, const Outline& theirs)
      : base_(base),
        ours_(ours),
        theirs_(theirs),
        base_of_ours_(base_.Find(ours_)),
        base_of_theirs_(base_.Find(theirs_)),
        ours_of_theirs_(ours_.Find(theirs_)),
        theirs_of_ours_(Inverted(ours_of_theirs_, ours_.All().size())),
        base_of_our_groups_(base_.FindGroups(ours_)),
        base_of_their_groups_(base_.FindGroups(theirs_)),
        our_groups_(ours_.FindGroups(theirs_)),
        their_groups_(Inverted(our_groups_, ours_.Groups().size())),
        out_(ours, theirs) {}

  MergeResult Run() && {
    FindDisputedDeletions();
    const std::vector<MergeAddition> added_groups = AddedGroups();
    auto added = added_groups.begin();
    for (UnitIndex group = 0; group < ours_.Groups().size(); ++group) {
      TakeGroup(group);
      for (; added != added_groups.end() && added->place <= group + 1; ++added) PutTheirGroup(added->number);
    }
    out_.Put(ours_.Tail());
    MergeResult result{std::move(out_).Take(ours_.File().Text()), std::move(conflicts_)};
    NumberLines(result);
    return result;
  }

 private:
  // Groups.

  /// Whether a group has what the base has not: an entry that was added or changed.
  static bool IsGroupChanged(const MergeUnits& base, const MergeUnits& side, const std::vector<UnitIndex>& base_of,
                             UnitIndex group) {
    const MergeUnits::Range range = side.Groups()[group];
    for (UnitIndex unit = range.begin; unit < range.end; ++unit) {
      if (side.All()[unit].sort != MergeUnits::Sort::Item) continue;
      if (base_of[unit] == kNoUnit || !side.SameContent(unit, base, base_of[unit])) return true;
    }
    return false;
  }

  bool HaveTheyChangedGroup(UnitIndex theirs) const { return IsGroupChanged(base_, theirs_, base_of_theirs_, theirs); }

  std::vector<MergeAddition> AddedGroups() const {
    return PlacesOfGroups(
        {ours_, theirs_, our_groups_,
         [this](UnitIndex ours) { return base_of_our_groups_[ours] == kNoUnit && their_groups_[ours] == kNoUnit; },
         [this](UnitIndex theirs) {
           if (our_groups_[theirs] != kNoUnit) return false;
           if (base_of_their_groups_[theirs] == kNoUnit || HaveTheyChangedGroup(theirs)) return true;
           const MergeUnits::Range range = theirs_.Groups()[theirs];
           for (UnitIndex unit = range.begin; unit < range.end; ++unit)
             if (!TheirNewComments(unit).empty()) return true;
           return false;
         }});
  }

  void FindDisputedDeletions() {
    const auto is_ours_new = [this](UnitIndex ours) {
      return base_of_our_groups_[ours] == kNoUnit && their_groups_[ours] == kNoUnit;
    };
    const auto is_theirs_new = [this](UnitIndex theirs) {
      return base_of_their_groups_[theirs] == kNoUnit && our_groups_[theirs] == kNoUnit;
    };
    const auto have_we_changed = [this](UnitIndex ours) {
      return base_of_our_groups_[ours] == kNoUnit || IsGroupChanged(base_, ours_, base_of_ours_, ours);
    };
    const auto have_they_changed = [this](UnitIndex theirs) {
      return base_of_their_groups_[theirs] == kNoUnit || HaveTheyChangedGroup(theirs);
    };
    our_disputed_ = DisputedDeletions(ours_, is_ours_new, theirs_, have_they_changed);
    their_disputed_ = DisputedDeletions(theirs_, is_theirs_new, ours_, have_we_changed);
  }

  void PutTheirGroup(UnitIndex theirs) {
    const MergeUnits::Range range = theirs_.Groups()[theirs];
    if (their_disputed_[theirs]) return PutTheirDisputed(range);
    const bool was_deleted = base_of_their_groups_[theirs] != kNoUnit;
    if (was_deleted && !HaveTheyChangedGroup(theirs)) {
      for (UnitIndex unit = range.begin; unit < range.end; ++unit) PutTheirComments(unit);
      return;
    }
    if (theirs_.BlanksOf(range.begin).empty() && SectionsStandApart() && !out_.IsEmpty()) out_.PutBlank();
    for (UnitIndex unit = range.begin; unit < range.end; ++unit) {
      if (was_deleted && unit == range.begin)
        PutTheirUnit(unit, MergeConflict::Kind::WeDeleted);
      else
        PutTheirUnit(unit, std::nullopt);
    }
    stands_behind_theirs_ = true;
  }

  /// What they delete stays, since we changed something in it.
  void PutTheirDisputed(MergeUnits::Range range) {
    for (UnitIndex unit = range.begin; unit < range.end; ++unit) {
      out_.PutTheirs(theirs_.BlanksOf(unit));
      out_.PutTheirs(theirs_.LeadOf(unit));
      if (unit == range.begin) AddConflict(MergeConflict::Kind::TheyDeleted, theirs_, unit);
      out_.PutMark(kTheirSide, theirs_.MainOf(unit));
    }
    stands_behind_theirs_ = true;
  }

  void TakeOurDisputed(MergeUnits::Range range) {
    for (UnitIndex unit = range.begin; unit < range.end; ++unit) {
      PutBlanks(unit);
      out_.Put(ours_.LeadOf(unit));
      if (unit == range.begin) AddConflict(MergeConflict::Kind::WeDeleted, ours_, unit);
      out_.PutMark(kOurSide, ours_.MainOf(unit));
    }
  }

  /// Whether our last header stands behind a blank line.
  bool SectionsStandApart() const {
    for (std::size_t group = ours_.Groups().size() - 1; group > 0; --group)
      if (const MergeUnits::Range range = ours_.Groups()[group]; range.begin > 0)
        return !ours_.BlanksOf(range.begin).empty();
    return true;
  }

  void TakeGroup(UnitIndex group) {
    const bool have_they = their_groups_[group] != kNoUnit, has_base = base_of_our_groups_[group] != kNoUnit;
    if (have_they) return MergeGroup(group);
    if (our_disputed_[group]) return TakeOurDisputed(ours_.Groups()[group]);
    const bool is_conflict = has_base && IsGroupChanged(base_, ours_, base_of_ours_, group);
    const MergeUnits::Range range = ours_.Groups()[group];
    if (has_base && !is_conflict) {
      for (UnitIndex unit = range.begin; unit < range.end; ++unit) PutOurComments(unit);
      stands_behind_gap_ = true;
      return;
    }
    for (UnitIndex unit = range.begin; unit < range.end; ++unit) {
      PutBlanks(unit);
      out_.Put(ours_.LeadOf(unit));
      if (is_conflict && unit == range.begin) MarkDeleted(MergeConflict::Kind::TheyDeleted, ours_, unit);
      out_.Put(ours_.MainOf(unit));
    }
  }

  void MergeGroup(UnitIndex group) {
    const std::vector<MergeAddition> added = AddedUnits(group);
    const MergeUnits::Range range = ours_.Groups()[group];
    auto next = added.begin();
    const auto put_before = [&](UnitIndex unit) {
      for (; next != added.end() && next->place <= unit; ++next) {
        PutAdded(next->number);
      }
    };
    for (UnitIndex unit = range.begin; unit < range.end; ++unit) {
      put_before(unit);
      TakeUnit(unit);
    }
    put_before(kNoUnit);
  }

  // Units.

  bool HaveTheyChanged(UnitIndex theirs) const {
    const UnitIndex base = base_of_theirs_[theirs];
    return base == kNoUnit || !theirs_.SameContent(theirs, base_, base);
  }

  std::string_view TheirNewComments(UnitIndex unit) const {
    return theirs_.NewComments(unit, base_, base_of_theirs_[unit]);
  }

  /// What they added to a group, and what we deleted and they changed, or wrote comments above.
  std::vector<MergeAddition> AddedUnits(UnitIndex group) const {
    return PlacesOfUnits(
        {ours_, theirs_, ours_of_theirs_,
         [this](UnitIndex ours) { return base_of_ours_[ours] == kNoUnit && theirs_of_ours_[ours] == kNoUnit; },
         [this](UnitIndex theirs) {
           return theirs != their_file_header_ && (HaveTheyChanged(theirs) || !TheirNewComments(theirs).empty());
         }},
        group, their_groups_[group]);
  }

  void PutAdded(UnitIndex theirs) {
    if (!HaveTheyChanged(theirs)) return PutTheirComments(theirs);
    const bool was_deleted = base_of_theirs_[theirs] != kNoUnit;
    PutTheirUnit(theirs, was_deleted ? std::optional(MergeConflict::Kind::WeDeleted) : std::nullopt);
    stands_behind_theirs_ = true;
  }

  void TakeUnit(UnitIndex unit) {
    const UnitIndex base = base_of_ours_[unit], theirs = theirs_of_ours_[unit];
    const bool have_they_deleted = theirs == kNoUnit && base != kNoUnit && unit != file_header_;
    if (have_they_deleted && ours_.SameContent(unit, base_, base)) {
      PutOurComments(unit);
      stands_behind_gap_ = true;
      return;
    }
    PutBlanks(unit);
    PutLead(unit);
    if (have_they_deleted) MarkDeleted(MergeConflict::Kind::TheyDeleted, ours_, unit);
    if (theirs == kNoUnit || ours_.SameContent(unit, theirs_, theirs)) return out_.Put(ours_.MainOf(unit));
    if (base != kNoUnit && theirs_.SameContent(theirs, base_, base)) return out_.Put(ours_.MainOf(unit));
    const bool have_we_changed = base == kNoUnit || !ours_.SameContent(unit, base_, base);
    const std::optional<std::string> taken =
        have_we_changed ? std::nullopt : MainWithTheirs(base_, base, ours_, unit, theirs_, theirs);
    if (taken) return out_.PutTheirs(*taken);
    AddConflict(have_we_changed ? MergeConflict::Kind::BothChanged : MergeConflict::Kind::Unsayable, ours_, unit);
    out_.PutMark(kTheirSide, theirs_.MainOf(theirs));
    out_.Put(ours_.MainOf(unit));
  }

  /// Of what they deleted: the comments that we wrote.
  void PutOurComments(UnitIndex unit) {
    const std::string_view comments = ours_.NewComments(unit, base_, base_of_ours_[unit]);
    if (comments.empty()) return;
    PutBlanks(unit);
    out_.Put(comments);
  }

  /// Of what we deleted: the comments that they wrote.
  void PutTheirComments(UnitIndex unit) {
    const std::string_view comments = TheirNewComments(unit);
    if (comments.empty()) return;
    if (!out_.IsEmpty()) out_.PutTheirs(theirs_.BlanksOf(unit));
    out_.PutTheirs(comments);
    stands_behind_theirs_ = true;
  }

  void PutBlanks(UnitIndex unit) {
    const UnitIndex base = base_of_ours_[unit], theirs = theirs_of_ours_[unit];
    const std::string_view ours = ours_.BlanksOf(unit);
    const bool is_behind_theirs = std::exchange(stands_behind_theirs_, false);
    const bool is_behind_gap = std::exchange(stands_behind_gap_, false);
    // What stood first without a blank line above it is gone.
    if (out_.IsEmpty() && unit > 0 && ours_.BlanksOf(0).empty()) return;
    const bool is_header = ours_.All()[unit].sort == MergeUnits::Sort::Header;
    if (is_header && is_behind_theirs && ours.empty() && SectionsStandApart()) return out_.PutBlank();
    const bool are_theirs = (is_behind_theirs || is_behind_gap) && base != kNoUnit && theirs != kNoUnit &&
                            LinesIn(ours) == LinesIn(base_.BlanksOf(base));
    if (are_theirs && !SameMergeLines(ours, theirs_.BlanksOf(theirs))) return out_.PutTheirs(theirs_.BlanksOf(theirs));
    out_.Put(ours);
  }

  void PutLead(UnitIndex unit) {
    const UnitIndex base = base_of_ours_[unit], theirs = theirs_of_ours_[unit];
    const std::string_view ours = ours_.LeadOf(unit);
    const bool is_untouched =
        theirs != kNoUnit && (base == kNoUnit ? ours.empty() : SameMergeLines(ours, base_.LeadOf(base)));
    if (is_untouched && !SameMergeLines(ours, theirs_.LeadOf(theirs))) return out_.PutTheirs(theirs_.LeadOf(theirs));
    out_.Put(ours);
  }

  /// conflict: none where it was added.
  void PutTheirUnit(UnitIndex unit, std::optional<MergeConflict::Kind> conflict) {
    if (!out_.IsEmpty()) out_.PutTheirs(theirs_.BlanksOf(unit));
    out_.PutTheirs(theirs_.LeadOf(unit));
    if (conflict) MarkDeleted(*conflict, theirs_, unit);
    if (const std::optional<std::string> lines = TheirMainFor(ours_, theirs_, unit)) return out_.PutTheirs(*lines);
    AddConflict(MergeConflict::Kind::Unsayable, theirs_, unit);
    out_.PutMark(kTheirSide, theirs_.MainOf(unit));
  }

  // Conflicts.

  void MarkDeleted(MergeConflict::Kind kind, const MergeUnits& units, UnitIndex unit) {
    AddConflict(kind, units, unit);
    out_.PutMark(kind == MergeConflict::Kind::WeDeleted ? kOurSide : kTheirSide, kDeletedMark);
  }

  void AddConflict(MergeConflict::Kind kind, const MergeUnits& units, UnitIndex unit) {
    const MergeUnits::Unit& it = units.All()[unit];
    const bool is_group = it.sort == MergeUnits::Sort::Header;
    // Its place in the bytes until all are known.
    conflicts_.push_back(
        {kind, GroupLabel(units.File(), it.group), is_group ? "" : ItemLabel(units.File(), it.main), out_.Size()});
  }

  static void NumberLines(MergeResult& result) {
    std::size_t at = 0, line = 0;
    for (MergeConflict& conflict : result.conflicts) {
      line += LinesIn(std::string_view(result.text).substr(at, conflict.line - at));
      at = conflict.line;
      conflict.line = line + 1;
    }
  }

  const MergeUnits base_;
  const MergeUnits ours_;
  const MergeUnits theirs_;
  // The same units and groups in the others; kNoUnit.
  const std::vector<UnitIndex> base_of_ours_;
  const std::vector<UnitIndex> base_of_theirs_;
  const std::vector<UnitIndex> ours_of_theirs_;
  const std::vector<UnitIndex> theirs_of_ours_;
  const std::vector<UnitIndex> base_of_our_groups_;
  const std::vector<UnitIndex> base_of_their_groups_;
  const std::vector<UnitIndex> our_groups_;
  const std::vector<UnitIndex> their_groups_;
  /// By group: new deletions that are left to the user.
  std::vector<bool> our_disputed_;
  std::vector<bool> their_disputed_;
  /// The lines that say the versions.
  const UnitIndex file_header_ = ours_.FileHeader();
  const UnitIndex their_file_header_ = theirs_.FileHeader();
  /// What stands before the next unit of ours: something of theirs was put, or something of ours left out.
  bool stands_behind_theirs_ = false;
  bool stands_behind_gap_ = false;
  MergeOutput out_;
  std::vector<MergeConflict> conflicts_;
};

}  // namespace

std::optional<MergeResult> MergeOutlines(const Outline& base, const Outline& ours, const Outline& theirs) {
  if (ours.Text() == base.Text()) return MergeResult{theirs.Text(), {}};
  if (theirs.Text() == base.Text()) return MergeResult{ours.Text(), {}};
  const auto has_pairs = [](const Outline& outline) { return outline.Coding().version == RegVersion::Regedit; };
  if (has_pairs(ours) != has_pairs(base) || has_pairs(ours) != has_pairs(theirs)) return std::nullopt;
  return Merging(base, ours, theirs).Run();
}

}  // namespace tme
