// IniTree in whole holding: lines come in the place of others.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "documents/ini/IniSourceLine.h"
#include "documents/ini/IniTree.h"

namespace tme {
namespace {

/// More lines that change in their places are shown by a reset.
constexpr std::size_t kFewLines = 16;

/// Whether what comes behind a text would be read as part of its last line.
bool RunsOn(std::string_view text, std::string_view behind) {
  if (text.empty() || behind.empty()) return false;
  return LineEndOf(text).empty() || (text.ends_with('\r') && behind.starts_with('\n'));
}

}  // namespace

void IniTree::ReplaceLines(Piece first, Piece last, std::string_view text) {
  const Step step(*this, EditName::EditSource);
  const bool is_insertion = first == SourceLines::kEnds;
  LineRange old{is_insertion ? first : lines_.Previous(first), is_insertion ? lines_.First() : lines_.Next(last)};
  // A blank last line may have lost its end to the line above it, and says nothing then.
  while (old.before != SourceLines::kEnds && lines_.Text(old.before).empty()) old.before = lines_.Previous(old.before);
  while (old.behind != SourceLines::kEnds && lines_.Text(old.behind).empty()) old.behind = lines_.Next(old.behind);
  std::string joined(text);
  // A neighbour that would be read together with the lines is read again, too.
  if (RunsOn(joined, lines_.Text(old.behind)) ||
      (joined.empty() && RunsOn(lines_.Text(old.before), lines_.Text(old.behind))))
    joined += lines_.Text(std::exchange(old.behind, lines_.Next(old.behind)));
  if (RunsOn(lines_.Text(old.before), joined))
    joined.insert(0, lines_.Text(std::exchange(old.before, lines_.Previous(old.before))));
  const std::string_view changed = WithoutEqual(joined, old);
  if (lines_.Next(old.before) == old.behind && changed.empty()) return;
  std::vector<IniSourceRun> runs;
  ForEachSourceRun(texts_.Copy(changed), [&](const IniSourceRun& run) { runs.push_back(run); });
  if (!ReplaceInPlace(old, runs)) ReplaceRuns(old, runs);
}

/// Takes the pieces that stay as they are out of the range; an empty one does not. Returns what of the lines is left.
std::string_view IniTree::WithoutEqual(std::string_view lines, LineRange& range) const {
  for (Piece at = lines_.Next(range.before); at != range.behind; at = lines_.Next(at)) {
    const std::string_view text = lines_.Text(at);
    if (text.empty() || !lines.starts_with(text) || RunsOn(text, lines.substr(text.size()))) break;
    lines.remove_prefix(text.size());
    range.before = at;
  }
  for (Piece at = lines_.Previous(range.behind); at != range.before; at = lines_.Previous(at)) {
    const std::string_view text = lines_.Text(at);
    if (text.empty() || !lines.ends_with(text) || RunsOn(lines.substr(0, lines.size() - text.size()), text)) break;
    lines.remove_suffix(text.size());
    range.behind = at;
  }
  return lines;
}

/// As many lines of the same sorts keep their nodes. Returns false where they are others.
bool IniTree::ReplaceInPlace(const LineRange& range, const std::vector<IniSourceRun>& runs) {
  if (runs.size() > kFewLines) return false;
  Piece at = lines_.Next(range.before);
  for (const IniSourceRun& run : runs) {
    if (at == range.behind) return false;
    for (const IniLine kind : {IniLine::Header, IniLine::Blank})
      if ((run.kind == kind) != (KindOfPiece(at) == kind)) return false;
    at = lines_.Next(at);
  }
  if (at != range.behind) return false;
  at = lines_.Next(range.before);
  for (const IniSourceRun& run : runs) {
    const Piece piece = std::exchange(at, lines_.Next(at));
    if (lines_.Text(piece) == run.lines) continue;
    lines_.Replace(piece, run.lines);
    lines_.SetKind(piece, static_cast<std::uint8_t>(run.kind));
    if (IniNode* node = NodeOf(piece)) ShowLine(node);
  }
  NoteRevision();
  return true;
}

void IniTree::ShowLine(IniNode* node) {
  const NodeSource source = SourceOfNode(node->number_);
  NoteNode(node);
  node->tag_ = source.tag;
  node->SetTextView(source.text);
  ShowText(node);
}

/// The parents of all nodes are found again, and the rows from them.
void IniTree::ReplaceRuns(const LineRange& range, const std::vector<IniSourceRun>& runs) {
  observer_->BeforeReset();
  bool is_selected_gone = false;
  const Piece first = lines_.Next(range.before);
  for (Piece at = first; at != range.behind; at = lines_.Next(at)) {
    const IniNode* node = NodeOf(at);
    if (node == nullptr) continue;
    --node_count_;
    if (node->tag_ == IniTag::Section) --section_count_;
    is_selected_gone = is_selected_gone || node == selected_;
  }
  if (first != range.behind) lines_.Remove(first, lines_.Previous(range.behind));

  IniNode* above = NodeAbove(range.before);
  IniNode* parent = above->tag_ == IniTag::Value || above->tag_ == IniTag::Comments ? above->parent_ : above;
  IniNode* came = nullptr;
  Piece place = range.before;
  for (const IniSourceRun& run : runs) {
    place = lines_.InsertAsIs(place, run.lines, static_cast<std::uint8_t>(run.kind));
    if (run.kind == IniLine::Blank) continue;
    const bool is_header = run.kind == IniLine::Header;
    IniNode* node = NewNode(is_header ? root_.get() : parent, SourceOfNode(place));
    if (came == nullptr) came = node;
    if (!is_header) continue;
    node->expanded_ = parent->expanded_;
    parent = node;
  }
  for (Piece at = range.behind; at != SourceLines::kEnds && KindOfPiece(at) != IniLine::Header; at = lines_.Next(at)) {
    IniNode* node = NodeOf(at);
    if (node == nullptr) continue;
    if (node->parent_ == parent) break;  // and so have all to the next header
    NoteNode(node);
    node->parent_ = parent;
  }
  root_->expanded_ = true;
  NoteAllRows();
  Rearrange();
  NoteRevision();
  if (is_selected_gone) MoveSelection(came != nullptr ? came : above);
  EndReset();
}

/// The root where there is none.
IniNode* IniTree::NodeAbove(Piece piece) const {
  while (NodeOf(piece) == nullptr) piece = lines_.Previous(piece);
  return NodeOf(piece);
}

}  // namespace tme
