#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

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
  /// A key that only longer paths imply is where the first of them is. Null for what is not written there.
  std::optional<std::uint64_t> LineOf(const RegPlace& place) const;
  /// The line behind a key is its own, and so are those behind the last one. No key before the first one.
  RegPlace At(std::uint64_t line) const;

 private:
  /// Visits each key that is written: visit(key, its line, values group). True ends.
  template <typename Visit>
  void ForEachKey(Visit visit) const;

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
