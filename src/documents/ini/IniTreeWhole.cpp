// IniTree in whole holding: the edits of its lines.
#include <algorithm>
#include <utility>
#include <vector>

#include "documents/ini/IniOrder.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/ini/IniTree.h"

namespace tme {
namespace {

bool HasLineEnd(std::string_view text) { return text.find_first_of("\r\n") != std::string_view::npos; }

/// Returns how much of a text comes before its first section and the comments that touch that.
std::size_t SizeBeforeSections(std::string_view text) {
  SourceLineReader lines(text);
  std::size_t size = 0, block = 0;
  for (std::string_view line; lines.Next(line); size += line.size()) {
    const IniLine kind = SourceKindOf(line);
    if (kind == IniLine::Header) return block;
    if (kind != IniLine::Comment) block = size + line.size();
  }
  return size;
}

/// Whether a new line would not be read as an entry of this key, or a comment: a key ends at its "=".
bool IsMisread(std::string_view line, std::string_view key) {
  const IniLine kind = SourceKindOf(line);
  return HasLineEnd(line) || kind == IniLine::Header ||
         (kind == IniLine::Entry && EntryPartsOf(line).key != TrimIniBlanks(key));
}

}  // namespace

IniTree::NodeSource IniTree::InsertLine(Piece place, std::string_view line) {
  return SourceOfNode(lines_.InsertBehind(place, line, static_cast<std::uint8_t>(SourceKindOf(line))));
}

IniNode* IniTree::AddSectionLine(std::string_view name) {
  const std::string line = std::string("[").append(name).append("]");
  if (HasLineEnd(line) || SourceHeaderName(line) != name) return nullptr;
  root_->expanded_ = true;
  if (SectionsStandApart()) InsertBlankBehind(lines_.Last());
  return Add(root_.get(), InsertLine(lines_.Last(), line), static_cast<std::size_t>(root_->ChildCount()));
}

IniNode* IniTree::AddEntryLine(IniNode* parent, std::string_view key, std::string_view value) {
  const Piece place = LastLineBefore(HeaderBehind(*parent));
  std::optional<IniLineStyle> of_file;
  const std::string line = EntryLine(StyleFor(place, of_file), key, value);
  if (IsMisread(line, key)) return nullptr;
  const std::size_t row = RowBehind(place, *parent);
  return Add(parent, InsertLine(place, line), row);
}

bool IniTree::AddEntryLines(std::string_view key, std::string_view value) {
  if (IsMisread(EntryLine({}, key, value), key)) return false;
  if (section_count_ == 0) return true;
  observer_->BeforeReset();
  std::optional<IniLineStyle> of_file;
  IniSorter sorter;
  Piece header = SourceLines::kEnds;
  for (Piece at = lines_.Last(); at != SourceLines::kEnds; at = lines_.Previous(at)) {
    if (KindOfPiece(at) != IniLine::Header) continue;
    IniNode* section = NodeOf(at);
    section->expanded_ = true;
    const Piece place = LastLineBefore(header);
    const std::size_t row = RowBehind(place, *section);
    const NodeSource source = InsertLine(place, EntryLine(StyleFor(place, of_file), key, value));
    if (arrangement_ == IniArrangement::AsInFile)
      InsertAt(section, row, source);
    else
      AppendAndSort(section, source);
    header = at;
  }
  NoteRevision();
  EndReset();
  return true;
}

bool IniTree::ReplaceLine(IniNode* node, const std::string& line) {
  const IniLine kind = SourceKindOf(line);
  const bool stays_section = (kind == IniLine::Header) == (node->tag_ == IniTag::Section);
  if (HasLineEnd(line) || kind == IniLine::Blank || !stays_section) return false;
  if (line == LineOf(node->number_)) return true;
  lines_.Replace(node->number_, line + std::string(LineEndOf(lines_.Text(node->number_))));
  lines_.SetKind(node->number_, static_cast<std::uint8_t>(kind));
  ShowLine(node);
  return true;
}

bool IniTree::SetLineText(IniNode* node, std::string_view text) {
  const std::string_view old = LineOf(node->number_);
  if (node->tag_ != IniTag::Section) return ReplaceLine(node, WithPart(old, TrimIniBlanks(old), TrimIniBlanks(text)));
  const std::string line = WithPart(old, SourceHeaderName(old), text);
  return SourceHeaderName(line) == text && ReplaceLine(node, line);
}

std::string_view IniTree::HeaderCommentOf(const IniNode& section) const {
  return holding_ == Holding::Whole ? SourceHeaderComment(LineOf(section.number_)) : std::string_view();
}

bool IniTree::SetHeaderComment(IniNode* section, std::string_view comment) {
  const std::string_view present = HeaderCommentOf(*section);
  if (present.empty()) return false;
  const Step step(*this, EditName::Edit);
  const std::string line = WithPart(LineOf(section->number_), present, comment);
  const bool is_same = SourceHeaderName(line) == section->Text() && SourceHeaderComment(line) == comment;
  return is_same && ReplaceLine(section, line);
}

bool IniTree::SetEntryLine(IniNode* node, std::string_view key, std::string_view value) {
  std::optional<IniLineStyle> of_file;
  const Piece above = lines_.Previous(node->number_);
  const std::string line = WithEntry(LineOf(node->number_), key, value, StyleFor(above, of_file));
  return !IsMisread(line, key) && ReplaceLine(node, line);
}

/// Takes the lines of a node and what is below it out of the file, and of the tree what stays of a section.
void IniTree::RemoveLines(IniNode* node) {
  const Piece first = node->number_;
  if (node->tag_ != IniTag::Section) return lines_.Remove(first);
  const Piece header = HeaderBehind(*node);
  const Piece above = lines_.Previous(first);
  const bool touches = above != SourceLines::kEnds && KindOfPiece(above) != IniLine::Blank;
  const Piece last = touches ? LastLineBefore(header) : EndBefore(header);
  if (FirstOfBlock(header) != header) {
    observer_->BeforeReset();
    MoveBlock(BlockAbove(header), node, ParentBefore(first));
    EndReset();
  }
  lines_.Remove(first, last);
}

std::vector<IniNode*> IniTree::BlockAbove(Piece header) const {
  std::vector<IniNode*> block;
  for (Piece at = FirstOfBlock(header); at != header; at = lines_.Next(at)) block.push_back(NodeOf(at));
  return block;
}

void IniTree::MoveBlock(const std::vector<IniNode*>& block, IniNode* from, IniNode* to) {
  if (block.empty()) return;
  for (IniNode* node : block) {
    node->removed_ = true;
    if (node == selected_) selection_moved_ = true;
  }
  std::size_t row = 0;
  std::erase_if(*from->children_, [&](IniNode* node) {
    if (!std::exchange(node->removed_, false)) return ++row, false;
    NoteRow(from, node, row, IniChanges::Came::Out);
    return true;
  });
  NumberChildren(from, 0);
  InsertAll(to, to == root_.get() ? from->row_ : static_cast<std::size_t>(to->ChildCount()), block);
}

void IniTree::InsertAll(IniNode* parent, std::size_t row, const std::vector<IniNode*>& nodes) {
  if (nodes.empty()) return;
  IniNode::Children& children = ChildrenOf(parent);
  if (arrangement_ == IniArrangement::ByName) row = children.size();
  children.insert(children.begin() + static_cast<std::ptrdiff_t>(row), nodes.begin(), nodes.end());
  NumberChildren(parent, row);
  for (IniNode* node : nodes) {
    NoteRow(parent, node, node->row_, IniChanges::Came::In);
    if (node->parent_ != parent) NoteNode(node);
    node->parent_ = parent;
  }
  if (arrangement_ == IniArrangement::AsInFile) return;
  IniSorter sorter;
  SortChildren(parent, sorter);
}

void IniTree::SetLineEnds(LineEnds ends) {
  const Step step(*this, EditName::ChangeLineEnds);
  if (lines_.SetLineEnds(ends)) NoteRevision();
}

void IniTree::RemoveWithComments(IniNode* node) {
  const bool owns_comments =
      holding_ == Holding::Whole && (node->tag_ == IniTag::Section || node->tag_ == IniTag::Value);
  if (!owns_comments || FirstOfBlock(node->number_) == node->number_) return Remove(node);
  const Step step(*this, node->tag_ == IniTag::Section ? EditName::DeleteSection : EditName::DeleteEntry);
  observer_->BeforeReset();
  const Piece first = FirstOfBlock(node->number_);
  for (Piece at = first; at != node->number_; at = lines_.Next(at)) NodeOf(at)->removed_ = true;
  lines_.Remove(first, lines_.Previous(node->number_));
  RemoveMarked();
  EndReset();
  Remove(node);
}

std::vector<IniNode*> IniTree::Paste(std::string_view text) {
  const Step step(*this, EditName::Paste);
  const bool on_line = selected_->tag_ == IniTag::Value || selected_->tag_ == IniTag::Comments;
  IniNode* parent = on_line ? selected_->parent_ : selected_;
  const std::size_t own_lines = SizeBeforeSections(text);
  observer_->BeforeReset();
  const Piece header = HeaderBehind(*parent);
  const Piece place = LastLineBefore(header), end = EndBefore(header);
  const std::size_t row = RowBehind(place, *parent);
  std::vector<IniNode*> pasted;
  const Piece last = InsertLines(place, text.substr(0, own_lines), parent, pasted);
  InsertAll(parent, row, pasted);
  if (own_lines < text.size()) PasteSections(place == end ? last : end, text.substr(own_lines), parent, header, pasted);
  parent->expanded_ = root_->expanded_ = true;
  NoteRevision();
  if (!pasted.empty()) MoveSelection(pasted.front());
  EndReset();
  return pasted;
}

/// Adds sections behind a piece, which ends the parent, or at the end of the file.
void IniTree::PasteSections(Piece place, std::string_view text, IniNode* parent, Piece header,
                            std::vector<IniNode*>& pasted) {
  const bool stand_apart = SectionsStandApart();
  if (parent == root_.get()) {
    header = SourceLines::kEnds;
    place = lines_.Last();
    parent = ParentBefore(header);
  }
  const std::vector<IniNode*> next_block = BlockAbove(header);
  if (stand_apart) place = InsertBlankBehind(place);
  const std::size_t row = RowBehind(place, *parent);
  std::vector<IniNode*> nodes;
  place = InsertLines(place, text, parent, nodes);
  if (stand_apart && header != SourceLines::kEnds) InsertBlankBehind(place);

  // The comments of the first of the sections belong to what is before it.
  const auto first = std::ranges::find(nodes, IniTag::Section, &IniNode::Tag);
  const std::vector<IniNode*> own_block(nodes.begin(), first), sections(first, nodes.end());
  MoveBlock(next_block, parent, sections.back());
  InsertAll(parent, row, own_block);
  const bool has_none = parent == root_.get();
  InsertAll(root_.get(), has_none ? static_cast<std::size_t>(root_->ChildCount()) : parent->row_ + std::size_t{1},
            sections);
  pasted.insert(pasted.end(), sections.begin(), sections.end());
}

IniTree::Piece IniTree::InsertBlankBehind(Piece place) {
  if (place == SourceLines::kEnds || KindOfPiece(place) == IniLine::Blank) return place;
  return lines_.InsertBehind(place, "", static_cast<std::uint8_t>(IniLine::Blank));
}

/// Makes nodes of lines, those before the first section for a parent; the others stand below the new sections. Returns
/// the last piece.
IniTree::Piece IniTree::InsertLines(Piece place, std::string_view text, IniNode* parent, std::vector<IniNode*>& top) {
  IniNode* section = nullptr;
  SourceLineReader lines(text);
  for (std::string_view line; lines.Next(line);) {
    line.remove_suffix(LineEndOf(line).size());
    const IniLine kind = SourceKindOf(line);
    place = lines_.InsertBehind(place, line, static_cast<std::uint8_t>(kind));
    if (kind == IniLine::Blank) continue;
    if (kind == IniLine::Header) {
      section = top.emplace_back(NewNode(root_.get(), SourceOfNode(place)));
    } else if (section == nullptr) {
      top.push_back(NewNode(parent, SourceOfNode(place)));
    } else {
      IniNode* node = NewNode(section, SourceOfNode(place));
      node->row_ = static_cast<std::uint32_t>(section->ChildCount());
      ChildrenOf(section).push_back(node);
    }
  }
  return place;
}

void IniTree::Arrange(IniArrangement arrangement) {
  if (holding_ == Holding::ByRules || arrangement_ == arrangement) return;
  observer_->BeforeReset();
  arrangement_ = arrangement;
  Rearrange();
  EndReset();
}

void IniTree::Rearrange() {
  ListAsInFile();
  arranged_ = 0;
  if (arrangement_ == IniArrangement::AsInFile) return;
  arranged_ = ++last_arranged_;
  IniSorter sorter;
  SortNew(root_.get(), sorter);
  for (int row = 0; row < root_->ChildCount(); ++row) SortNew(root_->Child(row), sorter);
}

void IniTree::ListAsInFile() {
  const auto clear = [](IniNode* node) {
    if (node->children_ != nullptr) node->children_->clear();
  };
  clear(root_.get());
  for (Piece at = lines_.First(); at != SourceLines::kEnds; at = lines_.Next(at)) {
    IniNode* node = NodeOf(at);
    if (node == nullptr) continue;
    clear(node);
    IniNode::Children& siblings = ChildrenOf(node->parent_);
    node->row_ = static_cast<std::uint32_t>(siblings.size());
    siblings.push_back(node);
  }
}

}  // namespace tme
