// Comment lines of a whole document as nodes.
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme {

namespace {

std::string_view CommentText(std::string_view line) {
  const std::size_t first = FirstText(line);
  return line.substr(first, line.find_last_not_of(" \t\r\n") - first + 1);
}

}  // namespace

void RegDocument::ShowComments(RegComments comments) {
  if (comments_ == comments || holding_ != Holding::Whole) return;
  comments_ = comments;
  observer_->BeforeReset();
  if (comments == RegComments::Shown)
    MakeComments();
  else
    DropComments();
  observer_->AfterReset();
}

void RegDocument::MakeComments() {
  ++arrangement_;
  std::unordered_map<RegNode*, std::vector<RegNode*>> found;
  std::uint32_t header = 0;
  // The comment lines just above.
  std::vector<SourceLines::Piece> block;
  SourceLines::Piece piece = lines_.First();
  while (true) {
    const std::uint32_t next = headers_[header].next;
    if (next != 0 && headers_[next].piece == piece) header = next;
    if (piece != SourceLines::kEnds && KindOf(piece) == RegPiece::Comment) {
      block.push_back(piece);
    } else {
      RegNode* parent = header == 0 ? root_.get() : headers_[header].node;
      for (const SourceLines::Piece comment : block) found[parent].push_back(CommentAgain(parent, comment));
      block.clear();
    }
    if (piece == SourceLines::kEnds) break;
    piece = lines_.Next(piece);
  }
  for (const auto& [parent, nodes] : found) {
    parent->children_->InsertFirst(nodes);
    RenumberFrom(parent, 0);
    node_count_ += nodes.size();
  }
}

RegNode* RegDocument::MakeComment(RegNode* parent, SourceLines::Piece piece) {
  RegNode* node = MakeNode(parent, CommentText(lines_.Text(piece)), RegTag::Comment);
  node->place_ = piece;
  if (comment_of_piece_.size() <= piece) comment_of_piece_.resize(lines_.PieceCount());
  comment_of_piece_[piece] = node;
  return node;
}

/// The node that the comment had before, if any.
RegNode* RegDocument::CommentAgain(RegNode* parent, SourceLines::Piece piece) {
  RegNode* node = piece < comment_of_piece_.size() ? comment_of_piece_[piece] : nullptr;
  if (node == nullptr) return MakeComment(parent, piece);
  ChildrenOf(parent);
  node->parent_ = parent;
  node->SetTextView(CommentText(lines_.Text(piece)));
  return node;
}

/// The row of a new comment among those of a key, which stand in the order of the file. Linear where there are any.
std::size_t RegDocument::CommentRow(const RegNode& parent, SourceLines::Piece piece) const {
  std::unordered_map<SourceLines::Piece, std::size_t> rows;
  for (std::size_t row = parent.CommentCount(); row > 0; --row)
    rows[parent.Child(static_cast<int>(row - 1))->place_] = row;
  while (!rows.empty() && piece != SourceLines::kEnds) {
    piece = lines_.Previous(piece);
    if (const auto above = rows.find(piece); above != rows.end()) return above->second;
  }
  return 0;
}

/// Makes nodes of comment lines that follow one another and are new to a key.
void RegDocument::AdoptComments(RegNode* parent, SourceLines::Piece first, SourceLines::Piece end) {
  if (comments_ == RegComments::Hidden || first == end) return;
  std::size_t row = CommentRow(*parent, first);
  for (SourceLines::Piece piece = first; piece != end; piece = lines_.Next(piece), ++row) {
    observer_->BeforeInsert(*parent, static_cast<int>(row));
    RegNode* node = MakeComment(parent, piece);
    NoteRow(node, row, RegChanges::ListChange::Kind::Added);
    PutRow(node, row);
    observer_->AfterInsert();
  }
}

/// Where nothing parts the comments of a key from the next header any more, they are those of its key.
void RegDocument::GiveCommentsAway(RegNode* from, SourceLines::Piece below) {
  if (comments_ == RegComments::Hidden || KindOf(lines_.Previous(below)) != RegPiece::Comment) return;
  std::uint32_t header = from->place_;
  do header = headers_[header].next_of_node;
  while (header != from->place_ && headers_[headers_[header].next].piece != below);
  const std::uint32_t next = headers_[header].next;
  if (next == 0 || headers_[next].piece != below) return;
  RegNode* to = headers_[next].node;
  if (to == from) return;
  const SourceLines::Piece lead = LeadOf(next);
  std::unordered_set<SourceLines::Piece> block, moved;
  for (SourceLines::Piece piece = lead; piece != below; piece = lines_.Next(piece)) block.insert(piece);
  for (std::size_t row = from->CommentCount(); row > 0; --row) {
    RegNode* node = from->Child(static_cast<int>(row - 1));
    if (!block.contains(node->place_)) continue;
    moved.insert(node->place_);
    observer_->BeforeRemove(*node);
    NoteRow(node, row - 1, RegChanges::ListChange::Kind::Removed);
    TakeRow(node);
    const bool selection_moves = selected_ == node;
    if (selection_moves) selected_ = from;
    observer_->AfterRemove();
    if (selection_moves) observer_->SelectionMoved();
  }
  // Those below them were its own before.
  SourceLines::Piece end = lead;
  while (moved.contains(end)) end = lines_.Next(end);
  AdoptComments(to, lead, end);
}

void RegDocument::DropComments() {
  ++arrangement_;
  if (selected_->tag_ == RegTag::Comment) selected_ = selected_->parent_;
  node_count_ -= DropCommentsBelow(*root_);
}

/// Returns how many there were.
std::size_t RegDocument::DropCommentsBelow(const RegNode& top) {
  std::vector<const RegNode*> parents;
  WalkKeys(top, [&parents](const RegNode& node) {
    if (node.CommentCount() > 0) parents.push_back(&node);
    return true;
  });
  std::size_t dropped = 0;
  for (const RegNode* parent : parents) {
    const std::size_t count = parent->CommentCount();
    parent->children_->EraseFirst(count);
    RenumberFrom(parent, 0);
    dropped += count;
  }
  return dropped;
}

}  // namespace tme
