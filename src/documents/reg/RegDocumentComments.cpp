// Comment lines of a whole document as nodes.
#include <unordered_map>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme {

namespace {

std::string_view CommentText(std::string_view line) {
  const std::size_t first = FirstText(line);
  return line.substr(first, line.find_last_not_of(" \t\r\n") - first + 1);
}

std::size_t CommentCount(const RegNode& parent) {
  int count = 0;
  while (count < parent.ChildCount() && parent.Child(count)->Tag() == RegTag::Comment) ++count;
  return static_cast<std::size_t>(count);
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
  std::unordered_map<RegNode*, std::vector<RegNode*>> found;
  std::uint32_t header = 0;
  for (SourceLines::Piece piece = lines_.First(); piece != SourceLines::kEnds; piece = lines_.Next(piece)) {
    if (const std::uint32_t next = headers_[header].next; next != 0 && headers_[next].piece == piece) header = next;
    if (KindOf(piece) != RegPiece::Comment) continue;
    RegNode* parent = header == 0 ? root_.get() : headers_[header].node;
    found[parent].push_back(MakeComment(parent, piece));
  }
  for (const auto& [parent, nodes] : found) {
    parent->children_->InsertFirst(nodes);
    RenumberFrom(parent, 0);
  }
}

RegNode* RegDocument::MakeComment(RegNode* parent, SourceLines::Piece piece) {
  RegNode* node = MakeNode(parent, CommentText(lines_.Text(piece)), RegTag::Comment);
  node->place_ = piece;
  ++node_count_;
  return node;
}

/// The comment that touches a header stays when the block before it goes; it belongs to the one before that.
void RegDocument::AdoptComments(const Lead& lead) {
  const std::uint32_t above = headers_[lead.header].previous;
  RegNode* parent = above == 0 ? root_.get() : headers_[above].node;
  for (SourceLines::Piece piece = lead.first; piece != headers_[lead.header].piece; piece = lines_.Next(piece)) {
    const std::size_t row = CommentCount(*parent);
    observer_->BeforeInsert(*parent, static_cast<int>(row));
    RegNode* node = MakeComment(parent, piece);
    parent->children_->Insert(row, node);
    RenumberFrom(parent, row);
    observer_->AfterInsert();
  }
}

void RegDocument::DropComments() {
  if (selected_->tag_ == RegTag::Comment) selected_ = selected_->parent_;
  std::vector<const RegNode*> parents;
  WalkKeys(*root_, [&parents](const RegNode& node) {
    if (CommentCount(node) > 0) parents.push_back(&node);
    return true;
  });
  for (const RegNode* parent : parents) {
    const std::size_t count = CommentCount(*parent);
    parent->children_->EraseFirst(count);
    RenumberFrom(parent, 0);
    node_count_ -= count;
  }
}

}  // namespace tme
