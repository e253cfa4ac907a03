// IniTree: edits of many nodes at once.
#include <algorithm>
#include <unordered_set>

#include "documents/ini/IniLine.h"
#include "documents/ini/IniOrder.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/ini/IniTree.h"

namespace tme {

std::string IniTree::SourceOf(std::span<IniNode* const> nodes) const {
  std::string text;
  // A comment may stand in it for itself and belong to another node.
  std::unordered_set<Piece> comments;
  const auto add = [&](const IniNode& node) {
    const auto [first, last] = LinesOf(node);
    for (Piece at = first; at != lines_.Next(last); at = lines_.Next(at)) {
      if (KindOfPiece(at) == IniLine::Comment && !comments.insert(at).second) continue;
      const std::string_view line = lines_.Text(at);
      text += line;
      if (LineEndOf(line).empty()) text += lines_.LineEndBehind(at);
    }
  };
  // Lines behind a section would be its own.
  for (const IniNode* node : nodes)
    if (node->tag_ != IniTag::Section) add(*node);
  for (const IniNode* node : nodes)
    if (node->tag_ == IniTag::Section) add(*node);
  return text;
}

void IniTree::Remove(std::span<IniNode* const> nodes, IniComments comments) {
  if (std::ranges::all_of(nodes, [this](const IniNode* node) { return node == root_.get(); })) return;
  const Step step(*this, EditName::Delete);
  observer_->BeforeReset();
  for (IniNode* node : nodes) node->removed_ = node != root_.get();
  if (holding_ == Holding::Whole) {
    if (comments == IniComments::GoAlong)
      for (IniNode* node : nodes) MarkCommentsOf(*node);
    RemoveManyLines();
  }
  RemoveMarked();
  EndReset();
}

void IniTree::MarkCommentsOf(const IniNode& node) {
  if (node.tag_ != IniTag::Section && node.tag_ != IniTag::Value) return;
  for (Piece at = FirstOfBlock(node.number_); at != node.number_; at = lines_.Next(at)) NodeOf(at)->removed_ = true;
}

/// Takes the lines of marked nodes from the file, in one pass over it.
void IniTree::RemoveManyLines() {
  const auto is_marked = [this](Piece at) {
    const IniNode* node = NodeOf(at);
    return at != SourceLines::kEnds && node != nullptr && node->removed_;
  };
  for (Piece at = lines_.First(); at != SourceLines::kEnds;) {
    if (!is_marked(at)) {
      at = lines_.Next(at);
      continue;
    }
    const Piece first = at;
    while (KindOfPiece(at) != IniLine::Header && is_marked(lines_.Next(at))) at = lines_.Next(at);
    const Piece next = lines_.Next(at);
    if (KindOfPiece(at) != IniLine::Header) {
      lines_.Remove(first, at);
      at = next;
    } else {
      // Comments that go along were marked, too, and stand right above.
      if (first != at) lines_.Remove(first, lines_.Previous(at));
      at = RemoveSectionRun(at);
    }
  }
}

/// Takes the lines of a marked section and those of the marked ones right behind it, with all that stands between.
/// Returns the piece behind them. The comments of the next section go to what is before.
IniTree::Piece IniTree::RemoveSectionRun(Piece first) {
  IniNode* last_section = nullptr;
  Piece header = first;
  for (IniNode* section = NodeOf(first); section != nullptr && section->removed_; section = NodeOf(header)) {
    last_section = section;
    do header = lines_.Next(header);
    while (header != SourceLines::kEnds && KindOfPiece(header) != IniLine::Header);
    if (header == SourceLines::kEnds) break;
  }
  const Piece above = lines_.Previous(first);
  const bool touches = above != SourceLines::kEnds && KindOfPiece(above) != IniLine::Blank;
  const Piece last = touches ? LastLineBefore(header) : EndBefore(header);
  const Piece next = lines_.Next(last);
  if (FirstOfBlock(header) != header) MoveBlock(BlockAbove(header), last_section, ParentBefore(first));
  lines_.Remove(first, last);
  return next;
}

std::vector<IniNode*> IniTree::AddLines(IniNode* section, std::span<const std::string_view> texts) {
  const Step step(*this, EditName::AddEntry);
  observer_->BeforeReset();
  std::vector<IniNode*> added;
  for (const std::string_view text : texts) {
    const IniTag tag = KindOf(text) == IniLine::Comment ? IniTag::Comments : IniTag::Value;
    added.push_back(Append(section, ByRules(texts_.Copy(text), tag)));
  }
  IniSorter sorter;
  SortChildren(section, sorter);
  section->expanded_ = true;
  NoteRevision();
  EndReset();
  return added;
}

}  // namespace tme
