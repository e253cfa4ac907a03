#include "documents/reg/RegWrittenLines.h"

#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegWriter.h"

namespace tme {
namespace {

std::size_t NumberOf(const RegDocument& document, const RegValueRecord& record) {
  return static_cast<std::size_t>(&record - document.Values().data());
}

}  // namespace

RegWrittenLines::RegWrittenLines(const RegDocument& document)
    : document_(document), index_(document), counts_(index_.GroupCount()) {
  index_.ForEachRun([this](std::uint32_t group, std::size_t records) { counts_[group] += records; });
}

std::uint32_t RegWrittenLines::WrittenGroup(const RegNode& node) const {
  const bool is_left_out = node.Tag() != RegTag::Branch || node.Text() == document_.Root()->Text();
  return is_left_out ? RegValueIndex::kNoGroup : index_.GroupOf(node);
}

std::optional<std::uint64_t> RegWrittenLines::LineOf(const RegPlace& place) const {
  std::optional<std::uint64_t> found;
  const RegTag tag = place.key->Tag();
  const bool is_implied =
      tag == RegTag::Hive || (tag == RegTag::Branch && index_.GroupOf(*place.key) == RegValueIndex::kNoGroup);
  ForEachKey([&](const RegNode& node, std::uint64_t line, std::uint32_t group) {
    if (is_implied ? !IsAtOrBelow(&node, place.key) : &node != place.key) return false;
    if (!place.record) {
      found = line;
      return true;
    }
    index_.ForEachRecord(group, [&](const RegValueRecord& record) {
      ++line;
      if (NumberOf(document_, record) == *place.record) found = line;
    });
    return true;
  });
  return found;
}

RegPlace RegWrittenLines::At(std::uint64_t wanted) const {
  RegPlace place;
  ForEachKey([&](const RegNode& node, std::uint64_t line, std::uint32_t group) {
    if (wanted < line) return true;
    place.key = &node;
    if (wanted >= line + LinesOf(group)) return false;
    index_.ForEachRecord(group, [&](const RegValueRecord& record) {
      if (++line == wanted) place.record = NumberOf(document_, record);
    });
    return true;
  });
  return place;
}

RegPlace PlaceOfPiece(const RegDocument& document, SourceLines::Piece piece) {
  const SourceLines& lines = document.Lines();
  RegPlace place;
  document.ForEachBlock([&](const RegBlock& block) {
    for (SourceLines::Piece at = block.lead; place.key == nullptr && at != block.end; at = lines.Next(at))
      if (at == piece) place.key = block.node;
  });
  if (place.key == nullptr || static_cast<RegPiece>(lines.Kind(piece)) != RegPiece::Value) return place;
  document.ForEachValueOf(place.key, [&](const RegValueRecord& record) {
    if (record.piece == piece && !record.deleted) place.record = NumberOf(document, record);
  });
  return place;
}

std::vector<SourceLines::Piece> PiecesOfPlace(const RegDocument& document, const RegPlace& place) {
  if (place.record) return {document.Values()[*place.record].piece};
  if (place.key->Tag() == RegTag::File) return {};
  if (place.key->Tag() == RegTag::Comment) return {document.PieceOf(place.key)};
  std::vector<SourceLines::Piece> pieces;
  const bool is_implied = document.PieceOf(place.key) == SourceLines::kEnds;
  document.ForEachBlock([&](const RegBlock& block) {
    const bool is_wanted = is_implied ? pieces.empty() && IsAtOrBelow(block.node, place.key) : block.node == place.key;
    if (is_wanted) pieces.push_back(block.header);
  });
  return pieces;
}

}  // namespace tme
