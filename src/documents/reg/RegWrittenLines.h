#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "documents/WrittenChange.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegValueIndex.h"

namespace tme {

/// A key, or one of its values as an index of RegDocument::Values.
struct RegPlace {
  const RegNode* key = nullptr;
  std::optional<std::size_t> record;
  bool operator==(const RegPlace&) const = default;
};

/// Where things stand in what WriteReg makes of a document in the regular layout. Lines count from 0. Holds while the
/// document does not change; each question costs a walk over the keys.
class RegWrittenLines {
 public:
  explicit RegWrittenLines(const RegDocument& document);
  /// Whether that of a revision is that of the present one, since one step since then changed nothing but data.
  static bool StaysSince(const RegDocument& document, std::uint64_t revision);
  /// What one step changed since a revision, in the order of the lines; nothing where that is not known, or not sooner.
  /// Where there are several, each has as many lines as before.
  std::vector<WrittenChange> ChangesSince(std::uint64_t revision) const;
  /// A key that only longer paths imply is where the first of them is. Null for what is not written there.
  std::optional<std::uint64_t> LineOf(const RegPlace& place) const;
  /// The line behind a key is its own, and so are those behind the last one. No key before the first one.
  RegPlace At(std::uint64_t line) const;

 private:
  static constexpr std::uint64_t kHeaderLines = 2;
  using Groups = std::unordered_set<std::uint32_t>;
  struct Stretch {
    std::uint64_t first;
    std::uint64_t end;
  };

  /// Visits each key that is written: visit(key, its line, values group). True ends.
  template <typename Visit>
  void ForEachKey(Visit visit) const {
    std::uint64_t line = kHeaderLines;
    WalkKeys(*document_.Root(), [&](const RegNode& node) {
      const std::uint32_t group = WrittenGroup(node);
      if (group == RegValueIndex::kNoGroup) return true;
      if (visit(node, line, group)) return false;
      line += LinesOf(group);
      return true;
    });
  }
  /// kNoGroup for a key that is not written.
  std::uint32_t WrittenGroup(const RegNode& node) const;
  std::uint64_t LinesOf(std::uint32_t group) const { return counts_[group] + 2; }
  void Put(const RegNode& key, std::uint32_t group, std::string& lines) const;
  std::vector<WrittenChange> ChangedData(const Groups& groups) const;
  /// Where keys of some texts stand, and what a change of the tree changed.
  Stretch StretchOf(const std::unordered_set<std::string_view>& texts, const RegChanges& changes) const;
  std::vector<WrittenChange> ChangeIn(const Stretch& stretch) const;

  const RegDocument& document_;
  const RegValueIndex index_;
  /// Of each group.
  std::vector<std::uint64_t> counts_;
};

/// Whole holding: the key or value that a piece belongs to; no key before the first one. Linear.
RegPlace PlaceOfPiece(const RegDocument& document, SourceLines::Piece piece);
/// Whole holding: where a place stands, in the order of the file: the line of a value, or all header lines of a key; of
/// one that only longer paths imply, the first of theirs. Linear.
std::vector<SourceLines::Piece> PiecesOfPlace(const RegDocument& document, const RegPlace& place);

}  // namespace tme
