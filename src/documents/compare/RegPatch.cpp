#include "documents/compare/RegPatch.h"

#include <optional>
#include <vector>

#include "documents/compare/KeyPaths.h"
#include "documents/reg/RegSourceLine.h"

namespace tme {
namespace {

using RegIndex = Outline::Index;
constexpr RegIndex kNoItem = Outline::kNone;
constexpr std::string_view kPatchLineEnd = "\r\n";

/// What a file leaves in an empty registry.
class RegState {
 public:
  explicit RegState(const Outline& outline) : outline_(outline) {}

  const Outline& File() const { return outline_; }

  template <typename Visit>
  void ForEachKey(Visit visit) const {
    for (RegIndex key = 0; key < outline_.Groups().size(); ++key)
      if (HasKey(key)) visit(key);
  }

  template <typename Visit>
  void ForEachDeletion(Visit visit) const {
    for (RegIndex at = 0; at < outline_.Groups().size(); ++at)
      if (outline_.Groups()[at].sort == Outline::GroupSort::Deletion && outline_.Groups()[at].joined == at) visit(at);
  }

  /// The key that is the same as one of another file.
  RegIndex Find(const Outline::Group& theirs) const {
    const RegIndex key = outline_.FindGroup(theirs);
    return key != kNoItem && HasKey(key) ? key : kNoItem;
  }

  /// A value, deleted ones included: only the last one of its name counts.
  template <typename Visit>
  void ForEachValue(RegIndex key, Visit visit) const {
    for (RegIndex block = key; block != kNoItem; block = outline_.Groups()[block].next_joined) {
      const Outline::Group& group = outline_.Groups()[block];
      if (group.is_deleted) continue;
      for (RegIndex item = group.begin; item < group.end; ++item)
        if (IsLast(item)) visit(item);
    }
  }

  /// The value that is the same as one of another file; none where a deletion took it.
  /// guess: where it may be.
  RegIndex FindValue(RegIndex key, const Outline& other, const Outline::Item& theirs, RegIndex guess) const {
    Outline::Item wanted = theirs;
    wanted.number = 0;
    RegIndex found = outline_.FindItem(key, other, wanted, guess);
    while (found != kNoItem && outline_.Items()[found].has_next) {
      ++wanted.number;
      found = outline_.FindItem(key, other, wanted);
    }
    return found == kNoItem || outline_.Groups()[outline_.Items()[found].group].is_deleted ? kNoItem : found;
  }

  bool IsDeletion(RegIndex item) const { return outline_.ValueOf(outline_.Items()[item]) == "-"; }

 private:
  /// Whether a block of it is left.
  bool HasKey(RegIndex key) const {
    const Outline::Group& group = outline_.Groups()[key];
    if (group.sort != Outline::GroupSort::Named || group.joined != key) return false;
    RegIndex block = key;
    while (block != kNoItem && outline_.Groups()[block].is_deleted) block = outline_.Groups()[block].next_joined;
    return block != kNoItem;
  }

  bool IsLast(RegIndex item) const {
    const Outline::Item& it = outline_.Items()[item];
    return it.sort == Outline::Sort::Entry && !it.has_next;
  }

  const Outline& outline_;
};

class PatchWriter {
 public:
  PatchWriter(const Outline& before, const Outline& after) : before_(before), after_(after) {
    const bool is_4 = before.Coding().version != RegVersion::Version5 && after.Coding().version != RegVersion::Version5;
    coding_ = after.Coding();
    coding_.version = is_4 ? RegVersion::Regedit4 : RegVersion::Version5;
  }

  std::string Write() && {
    WriteNewDeletions();
    WriteGoneKeys();
    after_.ForEachKey([this](RegIndex key) { WriteKey(key); });
    if (text_.empty()) return text_;
    return std::string(HeaderOf(coding_.version)).append(kPatchLineEnd).append(text_);
  }

 private:
  /// A header line behind an empty one.
  void BeginBlock(const Outline& outline, RegIndex group, Outline::GroupSort sort) {
    const std::string_view path = outline.Groups()[group].path;
    const bool is_deletion = sort == Outline::GroupSort::Deletion;
    // A name may begin like the mark of a deletion.
    const std::string_view mark = is_deletion ? "[-" : path.starts_with('-') ? "[\\" : "[";
    text_.append(kPatchLineEnd).append(mark).append(path).append("]").append(kPatchLineEnd);
  }

  void WriteNewDeletions() {
    after_.ForEachDeletion([this](RegIndex deletion) {
      const Outline::Group& group = after_.File().Groups()[deletion];
      if (before_.File().FindGroup(group) != kNoItem) return;
      BeginBlock(after_.File(), deletion, Outline::GroupSort::Deletion);
      wiped_.Add(group.path, deletion);
    });
  }

  void WriteGoneKeys() {
    const std::vector<Outline::Group>& groups = before_.File().Groups();
    KeyPaths gone;
    before_.ForEachKey([&](RegIndex key) {
      if (after_.Find(groups[key]) == kNoItem) gone.Add(groups[key].path, key);
    });
    if (gone.IsEmpty()) return;
    std::vector<bool> stays(groups.size(), false);
    after_.ForEachKey([&](RegIndex key) {
      gone.ForEachAtOrAbove(after_.File().Groups()[key].path, [&](RegIndex above) { stays[above] = true; });
    });
    before_.ForEachKey([&](RegIndex key) {
      if (after_.Find(groups[key]) != kNoItem || IsWiped(groups[key].path)) return;
      if (stays[key]) return WriteChanges(key, kNoItem);
      bool is_first = true;
      gone.ForEachAtOrAbove(groups[key].path,
                            [&](RegIndex above) { is_first = is_first && (above == key || stays[above]); });
      if (is_first) BeginBlock(before_.File(), key, Outline::GroupSort::Deletion);
    });
  }

  bool IsWiped(std::string_view path) const {
    bool is_wiped = false;
    wiped_.ForEachAtOrAbove(path, [&is_wiped](RegIndex) { is_wiped = true; });
    return is_wiped;
  }

  void WriteKey(RegIndex theirs) {
    const Outline::Group& group = after_.File().Groups()[theirs];
    const RegIndex ours = IsWiped(group.path) ? kNoItem : before_.Find(group);
    if (ours != kNoItem) return WriteChanges(ours, theirs);
    BeginBlock(after_.File(), theirs, Outline::GroupSort::Named);
    after_.ForEachValue(theirs, [this](RegIndex item) { WriteValue(item); });
  }

  /// theirs: none where all values go.
  void WriteChanges(RegIndex ours, RegIndex theirs) {
    bool has_begun = false;
    const auto begin = [&] {
      if (!has_begun) BeginBlock(before_.File(), ours, Outline::GroupSort::Named);
      has_begun = true;
    };
    RegIndex guess = theirs == kNoItem ? kNoItem : after_.File().Groups()[theirs].begin + 1;
    before_.ForEachValue(ours, [&](RegIndex item) {
      const Outline::Item& it = before_.File().Items()[item];
      const RegIndex found = theirs == kNoItem ? kNoItem : after_.FindValue(theirs, before_.File(), it, guess);
      if (found != kNoItem) guess = found + 1;
      if (found != kNoItem || before_.IsDeletion(item)) return;
      begin();
      text_.append(QuotedRegName(before_.File().NameOf(it))).append("=-").append(kPatchLineEnd);
    });
    if (theirs == kNoItem) return;
    guess = before_.File().Groups()[ours].begin + 1;
    after_.ForEachValue(theirs, [&](RegIndex item) {
      const RegIndex old = before_.FindValue(ours, after_.File(), after_.File().Items()[item], guess);
      if (old != kNoItem) guess = old + 1;
      if (old != kNoItem && before_.File().SameValue(old, after_.File(), item)) return;
      begin();
      WriteValue(item);
    });
  }

  void WriteValue(RegIndex item) {
    const Outline& file = after_.File();
    const std::string name = QuotedRegName(file.NameOf(file.Items()[item])) + '=';
    const std::string_view assignment = file.ValueOf(file.Items()[item]);
    std::optional<std::string> encoded;
    if (const std::optional<RegData> data = DecodeAssignment(assignment, file.Coding()))
      encoded = EncodeAssignment(*data, coding_);
    const std::string value = encoded.value_or(std::string(assignment));
    text_.append(name).append(WrapAssignment(name, value, kPatchLineEnd)).append(kPatchLineEnd);
  }

  const RegState before_;
  const RegState after_;
  RegCoding coding_;
  /// The deletions of the second file that are written.
  KeyPaths wiped_;
  std::string text_;
};

}  // namespace

std::string RegPatch(const Outline& before, const Outline& after) { return PatchWriter(before, after).Write(); }

}  // namespace tme
