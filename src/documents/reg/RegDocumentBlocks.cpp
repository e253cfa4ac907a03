// The header lines of a whole document and the blocks that they begin.
#include <string>
#include <utility>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme {

namespace {

/// The last child that is no comment, or null.
const RegNode* LastWithLines(const RegNode* parent, int before) {
  for (int row = before - 1; row >= 0; --row)
    if (const RegNode* child = parent->Child(row); child->Tag() != RegTag::Comment) return child;
  return nullptr;
}

const RegNode* LastDescendant(const RegNode* node) {
  while (const RegNode* last = LastWithLines(node, node->ChildCount())) node = last;
  return node;
}

}  // namespace

SourceLines::Piece RegDocument::PieceOf(const RegNode* node) const {
  return node->tag_ == RegTag::Comment ? node->place_ : headers_[node->place_].piece;
}

/// behind: the header before it in the file; 0 for the first.
void RegDocument::LinkHeader(RegNode* node, SourceLines::Piece piece, std::uint32_t behind) {
  const auto header = static_cast<std::uint32_t>(headers_.size());
  headers_.push_back({node, piece, headers_[behind].next, behind, header});
  EditedHeader(headers_[header].next).previous = header;
  EditedHeader(behind).next = header;
  if (node->place_ != 0) headers_[header].next_of_node = std::exchange(EditedHeader(node->place_).next_of_node, header);
  EditedNode(node).place_ = header;
}

/// Takes it out of the file's ring alone: its node goes, too.
void RegDocument::UnlinkHeader(std::uint32_t header) {
  const RegHeader& gone = headers_[header];
  EditedHeader(gone.previous).next = gone.next;
  EditedHeader(gone.next).previous = gone.previous;
}

/// The header of the last node that has one, from the node downwards, as the tree stands; 0 without.
std::uint32_t RegDocument::LastHeaderBelow(const RegNode* node) const {
  const RegNode* at = LastDescendant(node);
  while (at->place_ == 0) {
    if (at == node) return 0;
    const RegNode* before = LastWithLines(at->Parent(), at->Row());
    at = before == nullptr ? at->Parent() : LastDescendant(before);
  }
  return at->place_;
}

/// The first line of the comment that touches a header; the header's own without one.
SourceLines::Piece RegDocument::LeadOf(std::uint32_t header) const {
  SourceLines::Piece lead = headers_[header].piece;
  while (KindOf(lines_.Previous(lead)) == RegPiece::Comment) lead = lines_.Previous(lead);
  return lead;
}

/// The last piece of a block: what touches the next header is not of it.
SourceLines::Piece RegDocument::TailOf(std::uint32_t header) const {
  const RegHeader& block = headers_[header];
  SourceLines::Piece tail = lines_.Previous(headers_[block.next].piece);
  if (block.next == 0) return tail;
  while (KindOf(tail) == RegPiece::Comment) tail = lines_.Previous(tail);
  return tail;
}

/// The last piece of a block that is not blank.
SourceLines::Piece RegDocument::BlockEnd(std::uint32_t header) const {
  SourceLines::Piece end = TailOf(header);
  while (end != SourceLines::kEnds && KindOf(end) == RegPiece::Blank) end = lines_.Previous(end);
  return end;
}

/// Where the next block comes behind a header's; 0 is behind the last one. Writes the file's first line and an empty
/// one where they are missing. A comment that stands last does not come to touch the new header.
SourceLines::Piece RegDocument::MakeRoomBehind(std::uint32_t& header) {
  constexpr auto kHeaderKind = static_cast<std::uint8_t>(RegPiece::FileHeader);
  if (lines_.First() == SourceLines::kEnds) lines_.InsertBehind(SourceLines::kEnds, HeaderOf(version_), kHeaderKind);
  if (header == 0) header = headers_[0].previous;
  const SourceLines::Piece place = BlockEnd(header);
  if (place == SourceLines::kEnds) return place;
  const RegPiece above = header == 0 ? RegPiece::Blank : KindOf(lines_.Previous(LeadOf(header)));
  const bool blocks_touch = above != RegPiece::Blank && above != RegPiece::FileHeader;
  const bool is_list = version_ == RegVersion::Regedit && KindOf(place) != RegPiece::FileHeader;
  if ((blocks_touch || is_list) && KindOf(place) != RegPiece::Comment) return place;
  return lines_.InsertBehind(place, std::string(lines_.LineEndBehind(place)),
                             static_cast<std::uint8_t>(RegPiece::Blank));
}

/// A header line for a key that has none, behind the blocks below it, else below its parent, else at the end.
void RegDocument::AddHeaderLine(RegNode* node) {
  std::uint32_t behind = LastHeaderBelow(node);
  if (behind == 0) behind = LastHeaderBelow(node->Parent());
  const SourceLines::Piece place = MakeRoomBehind(behind);
  const std::string path = node->KeyPath();
  const std::string line = version_ == RegVersion::Regedit ? path : '[' + path + ']';
  LinkHeader(node, lines_.InsertBehind(place, line, static_cast<std::uint8_t>(RegPiece::Key)), behind);
}

/// Takes the lines of a node and all below it from the file, with the comments that touch their headers, which would
/// belong to the next header otherwise. A comment node is its line.
void RegDocument::RemoveBlocks(const RegNode* node, HeaderComments comments) {
  if (node->tag_ == RegTag::Comment) return lines_.Remove(node->place_);
  const auto is_of_node = [this, node](std::uint32_t header) {
    const RegNode* at = headers_[header].node;
    while (at != nullptr && at != node) at = at->parent_;
    return at != nullptr;
  };
  struct Block {
    std::uint32_t header;
    SourceLines::Piece first;
    SourceLines::Piece last;
  };
  std::vector<Block> blocks;
  WalkKeys(*node, [&](const RegNode& below) {
    if (below.tag_ == RegTag::Comment || below.place_ == 0) return true;
    std::uint32_t header = below.place_;
    do {
      header = headers_[header].next_of_node;
      const RegHeader& block = headers_[header];
      // Between two of these blocks all goes, and with the first of them.
      blocks.push_back({header, is_of_node(block.previous) ? block.piece : LeadOf(header),
                        is_of_node(block.next) ? lines_.Previous(headers_[block.next].piece) : TailOf(header)});
      Block& added = blocks.back();
      if (comments == HeaderComments::Go || added.first == block.piece) continue;
      added.first = block.piece;
      if (!is_of_node(block.next) && KindOf(added.last) == RegPiece::Blank) added.last = lines_.Previous(added.last);
    } while (header != below.place_);
    ForEachRecordOf(&below, [this](std::size_t record) { MarkDeleted(record); });
    return true;
  });
  for (const auto& [header, first, last] : blocks) {
    lines_.Remove(first, last);
    UnlinkHeader(header);
  }
}

}  // namespace tme
