// IniTree in whole holding: where lines stand and what belongs together.
#include <algorithm>

#include "documents/ini/IniSourceLine.h"
#include "documents/ini/IniTree.h"

namespace tme {

IniTree::NodeSource IniTree::SourceOfNode(Piece piece) const {
  const std::string_view line = LineOf(piece);
  switch (KindOfPiece(piece)) {
    case IniLine::Header:
      return {SourceHeaderName(line), IniTag::Section, piece};
    case IniLine::Comment:
      return {TrimIniBlanks(line), IniTag::Comments, piece};
    default:
      return {TrimIniBlanks(line), IniTag::Value, piece};
  }
}

std::string_view IniTree::LineOf(Piece piece) const {
  const std::string_view text = lines_.Text(piece);
  return text.substr(0, text.size() - LineEndOf(text).size());
}

std::pair<IniTree::Piece, IniTree::Piece> IniTree::LinesOf(const IniNode& node) const {
  const Piece own = node.number_;
  switch (node.tag_) {
    case IniTag::OpenedFile:
      return {lines_.First(), lines_.Last()};
    case IniTag::Section:
      return {FirstOfBlock(own), EndBefore(HeaderBehind(node))};
    case IniTag::Value:
      return {FirstOfBlock(own), own};
    case IniTag::Comments:
      break;
  }
  return {own, own};
}

std::string IniTree::SourceOf(const IniNode& node) const {
  const auto [first, last] = LinesOf(node);
  std::string text;
  if (first == SourceLines::kEnds) return text;
  for (Piece at = first; at != lines_.Next(last); at = lines_.Next(at)) text += lines_.Text(at);
  return text;
}

IniNode* IniTree::ParentBefore(Piece piece) const {
  do piece = lines_.Previous(piece);
  while (piece != SourceLines::kEnds && KindOfPiece(piece) != IniLine::Header);
  return NodeOf(piece);
}

IniTree::Piece IniTree::HeaderBehind(const IniNode& parent) const {
  if (arrangement_ == IniArrangement::AsInFile && root_->children_ != nullptr) {
    const IniNode::Children& children = *root_->children_;
    const auto next = &parent == root_.get()
                          ? std::ranges::partition_point(
                                children, [](const IniNode* child) { return child->tag_ != IniTag::Section; })
                          : children.begin() + parent.row_ + 1;
    return next == children.end() ? SourceLines::kEnds : (*next)->number_;
  }
  Piece at = lines_.Next(parent.number_);
  while (at != SourceLines::kEnds && KindOfPiece(at) != IniLine::Header) at = lines_.Next(at);
  return at;
}

IniTree::Piece IniTree::FirstOfBlock(Piece piece) const {
  if (piece == SourceLines::kEnds) return piece;  // nothing follows that comments could belong to
  for (Piece above = lines_.Previous(piece); above != SourceLines::kEnds && KindOfPiece(above) == IniLine::Comment;
       above = lines_.Previous(above))
    piece = above;
  return piece;
}

IniTree::Piece IniTree::LastLineBefore(Piece header) const {
  Piece at = EndBefore(header);
  while (at != SourceLines::kEnds && KindOfPiece(at) == IniLine::Blank) at = lines_.Previous(at);
  return at;
}

IniLineStyle IniTree::StyleFor(Piece place, std::optional<IniLineStyle>& of_file) const {
  const auto is_model = [this](Piece at) {
    return KindOfPiece(at) == IniLine::Entry && EntryPartsOf(LineOf(at)).has_equals;
  };
  for (Piece at = place; at != SourceLines::kEnds && KindOfPiece(at) != IniLine::Header; at = lines_.Previous(at))
    if (is_model(at)) return StyleOf(LineOf(at));
  if (!of_file) {
    Piece at = lines_.First();
    while (at != SourceLines::kEnds && !is_model(at)) at = lines_.Next(at);
    of_file = at == SourceLines::kEnds ? IniLineStyle() : StyleOf(LineOf(at));
  }
  return *of_file;
}

bool IniTree::SectionsStandApart() const {
  Piece at = lines_.Last();
  while (at != SourceLines::kEnds && KindOfPiece(at) != IniLine::Header) at = lines_.Previous(at);
  if (at == SourceLines::kEnds) return true;
  const Piece above = lines_.Previous(FirstOfBlock(at));
  return above == SourceLines::kEnds || KindOfPiece(above) == IniLine::Blank;
}

std::size_t IniTree::RowBehind(Piece place, const IniNode& parent) const {
  while (place != parent.number_ && NodeOf(place) == nullptr) place = lines_.Previous(place);
  const IniNode* node = NodeOf(place);
  return node->parent_ == &parent ? node->row_ + std::size_t{1} : 0;
}

}  // namespace tme
