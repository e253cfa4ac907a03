#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/NodePool.h"
#include "base/Parts.h"
#include "base/TextStore.h"
#include "base/TreeObserver.h"
#include "documents/EditableDocument.h"
#include "documents/Holding.h"
#include "documents/SourceLines.h"
#include "documents/ini/IniChanges.h"
#include "documents/ini/IniLine.h"

namespace tme {

class IniSorter;
struct IniLineStyle;
struct IniSourceRun;

enum class IniTag : std::uint8_t { OpenedFile, Section, Value, Comments };

/// One line of the tree: the file (root), a section, an entry or a comment. Nodes belong to their IniTree and stay at
/// one address until they are removed. 1,000,000 of them are ordinary, so a node is kept at 40 bytes.
class IniNode {
 public:
  /// UTF-8 (bytes that are not valid UTF-8 pass through), without a line end. The root: the file's name; a section: its
  /// name without brackets; an entry or comment: the whole source line, in whole holding without blanks at its ends.
  std::string_view Text() const { return {text_, size_}; }
  IniTag Tag() const { return tag_; }
  /// Null for the root only.
  IniNode* Parent() const { return parent_; }
  /// Position among the parent's children, from 0; 0 for the root.
  int Row() const { return static_cast<int>(row_); }
  int ChildCount() const { return children_ == nullptr ? 0 : static_cast<int>(children_->size()); }
  /// row: 0 to ChildCount() - 1.
  IniNode* Child(int row) const { return (*children_)[static_cast<std::size_t>(row)]; }
  /// Display state, for the window to restore after a reset.
  bool Expanded() const { return expanded_; }

 private:
  friend class IniTree;
  using Children = std::pmr::vector<IniNode*>;

  IniNode(IniNode* parent, std::string_view text, IniTag tag, std::uint32_t number)
      : text_(text.data()),
        parent_(parent),
        size_(static_cast<std::uint32_t>(text.size())),
        number_(number),
        tag_(tag) {}

  void SetTextView(std::string_view text) {
    text_ = text.data();
    size_ = static_cast<std::uint32_t>(text.size());
  }

  /// In memory of the tree.
  const char* text_;
  /// Null for the root.
  IniNode* parent_;
  /// In memory of the tree; null until the first child comes.
  Children* children_ = nullptr;
  std::uint32_t size_;
  std::uint32_t row_ = 0;
  /// Grows from node to node; in whole holding that of its piece in the SourceLines.
  std::uint32_t number_;
  IniTag tag_;
  bool expanded_ = false;
  /// The children are in order; a changed text may clear it.
  bool children_sorted_ = true;
  /// Marked for the removal of many nodes at once; false outside such a call.
  bool removed_ = false;
};

using IniTreeObserver = TreeObserver<IniNode>;

/// How the children of a node stand.
enum class IniArrangement : std::uint8_t {
  AsInFile,
  /// By text (CompareFolded; equal texts in order of arrival) whenever a child is added; a changed text stays where it
  /// is until then.
  ByName,
};

/// Whether comments that belong to what is removed go along.
enum class IniComments : std::uint8_t { Stay, GoAlong };

/// The document of an INI window: one root, sections below it, entries and comments below those. Every edit is one call
/// with a name, and a step that can be undone. A node that was removed comes back as the same node.
/// By the rules all children are arranged by name, and nothing but the nodes is known.
/// In whole holding the lines of the file are the truth (SourceLines), and each node stands for one of them. Entries
/// and comments before the first section are children of the root, and so is every section, of whatever name. Blank
/// lines have no node. A block of comments belongs to the line that it touches from above. An edit changes its own
/// lines alone and is refused, with nothing changed, where what it writes would not be read as what it is meant to be:
/// texts with line ends, entries that begin with "[", blank ones.
class IniTree final : public EditLog<IniChanges> {
 public:
  /// What readers fill a tree with (IniTreeLoad.h).
  class Load;

  explicit IniTree(std::string_view root_text = "New INI File");
  ~IniTree();
  IniTree(const IniTree&) = delete;
  IniTree& operator=(const IniTree&) = delete;

  /// Not owned; null for none.
  void SetObserver(IniTreeObserver* observer);

  IniNode* Root() const { return root_.get(); }
  /// Never null: the root when nothing else is selected.
  IniNode* Selected() const { return selected_; }
  /// Null selects the root.
  void Select(IniNode* node) { selected_ = node == nullptr ? root_.get() : node; }

  tme::Holding Holding() const { return holding_; }
  IniArrangement Arrangement() const { return arrangement_; }

  /// What stands before and behind the first "=" of an entry. In whole holding without the blanks around them, and
  /// without quotes around the value.
  std::string_view KeyOf(const IniNode& entry) const;
  std::string_view ValueOf(const IniNode& entry) const;
  /// Whole holding: the lines of a node, for the root all, for a section or an entry with the comments that belong to
  /// it.
  std::string SourceOf(const IniNode& node) const;
  /// Whole holding: those of several nodes, none below another one, each line once and with an end: sections come last.
  std::string SourceOf(std::span<IniNode* const> nodes) const;
  /// Whole holding: hands over the file. Returns false when the sink stopped.
  bool WriteSource(const PartSink& sink) const { return lines_.Write(sink); }
  /// Whole holding: the text.
  const SourceLines& Lines() const { return lines_; }
  /// Whole holding: the line of a node, kEnds for the root; and the node of a line, null for blank ones.
  SourceLines::Piece PieceOf(const IniNode& node) const { return &node == Root() ? SourceLines::kEnds : node.number_; }
  IniNode* NodeOf(SourceLines::Piece piece) const { return piece < node_of_.size() ? node_of_[piece] : nullptr; }

  /// Whether no child of the root has exactly this text.
  bool IsUniqueSectionName(std::string_view name) const;
  /// Counts the children of the root with the tag Section.
  std::size_t SectionCount() const { return section_count_; }
  /// Counts every node, the root included.
  std::size_t NodeCount() const { return node_count_; }

  // Edits. Texts are copied. In whole holding null or false says that the edit was refused.

  /// Adds a section to the root, which is expanded. The name is not checked (see IsUniqueSectionName). In whole holding
  /// it comes to the end of the file, behind an empty line if the last section stands behind one.
  IniNode* AddSection(std::string_view name);
  /// Adds an entry, or a comment where the key begins one, to a section, or to the root where its holding lets it. In
  /// whole holding it takes the blanks of the entry above it and comes behind the last line of the section that is not
  /// blank and not a comment of the next one.
  IniNode* AddEntry(IniNode* parent, std::string_view key, std::string_view value);
  /// Does so for every section, each of which is expanded. Linear in the size of the tree. Returns whether it did.
  bool AddEntryToAllSections(std::string_view key, std::string_view value);
  /// Exchanges the text of a node. In whole holding only the name of a section changes, and a comment may become an
  /// entry and the other way round.
  bool SetText(IniNode* node, std::string_view text);
  /// The comment behind the name in a section's line; empty where there is none, and by the rules.
  std::string_view HeaderCommentOf(const IniNode& section) const;
  /// Exchanges a comment that is there. Returns false when the line would not be read so.
  bool SetHeaderComment(IniNode* section, std::string_view comment);
  /// Exchanges key and value of an entry, in whole holding the bytes of these alone. An entry whose key now begins a
  /// comment becomes one. Returns the node, which by the rules may be another one; the selection goes along.
  IniNode* SetEntry(IniNode* node, std::string_view key, std::string_view value);
  /// Removes the node with its subtree, but never the root. If the selected node goes too, its next sibling is
  /// selected, else the previous one, else the parent. In whole holding the blank lines behind a section go along
  /// unless it stands right below another line, and comments that belong to the next section stay: its nodes move to
  /// the section before, or to the root.
  void Remove(IniNode* node);
  /// As Remove, but in whole holding the comments that belong to a section or an entry go along.
  void RemoveWithComments(IniNode* node);
  /// Removes many nodes with their subtrees; linear in the size of the tree. nodes: none below another one; the root
  /// stays. By the rules comments do not matter. In whole holding sections that follow one another go with all that
  /// stands between them, and comments of what is left stay where they belong.
  void Remove(std::span<IniNode* const> nodes, IniComments comments);
  /// By the rules: walks all nodes from the last created to the first and removes those (sections and comments too,
  /// never the root) whose text begins with the key of the selected entry, as long as the selected node is an entry.
  /// Intended. Where the walk removes the selected node itself, any entry that is left takes the selection for as long
  /// as the walk lasts, so only the last entry of the tree ends it.
  /// In whole holding: removes the entries with this very key, whatever its letter case.
  /// Afterwards a neighbour is selected, as by Remove. Does nothing unless an entry is selected. Linear, but for
  /// ordering the nodes that match.
  void RemoveSelectedKey();
  /// Removes all lines. The root stays with its text.
  void Clear();
  /// Begins another document. It gives up all nodes and texts, and no step leads back.
  void Reset(std::string_view root_text, tme::Holding holding = Holding::ByRules);

  // By the rules alone.

  /// Adds a child with the tag Value or Comments to a section, or a comment to the root.
  IniNode* AddLine(IniNode* parent, std::string_view text, IniTag tag);
  void AddLineToAllSections(std::string_view text, IniTag tag);
  /// Adds many lines to a section, which is expanded, entries and comments by what they begin with. Returns their
  /// nodes.
  std::vector<IniNode*> AddLines(IniNode* section, std::span<const std::string_view> texts);

  // In whole holding alone.

  /// Adds the lines of a text, all as they are but with the line ends of their neighbours: those before its first
  /// section to the end of the selected section (the root: before the first section), its sections behind the selected
  /// one (the root: at the end). Returns the nodes that came, those of lines before those of sections, and selects the
  /// first of them.
  std::vector<IniNode*> Paste(std::string_view text);
  /// Puts the lines of a text, exactly these bytes, in the place of those from one piece to another, or at the start of
  /// the file for kEnds. The tree is then as if the file were read again: lines that are the same, and as many others
  /// of the same sorts, keep their nodes, and what follows may come below another section.
  void ReplaceLines(SourceLines::Piece first, SourceLines::Piece last, std::string_view text);
  /// Gives all lines this end; Mixed leaves them.
  void SetLineEnds(LineEnds ends);
  /// Whether children stand as in the file, which they do at first, or by name. No line moves, and it is no step; not
  /// inside of one.
  void Arrange(IniArrangement arrangement);

  // Display state.
  void SetExpanded(IniNode* node, bool expanded) { node->expanded_ = expanded; }
  /// The root is expanded either way.
  void SetAllExpanded(bool expanded);

 private:
  using Piece = SourceLines::Piece;
  /// What a new node is made of. The text lies in texts_.
  struct NodeSource {
    std::string_view text;
    IniTag tag;
    std::uint32_t number;
  };

  // Building.
  NodeSource ByRules(std::string_view text_in_store, IniTag tag) { return {text_in_store, tag, next_number_++}; }
  IniNode* NewNode(IniNode* parent, const NodeSource& source);
  IniNode::Children& ChildrenOf(IniNode* parent);
  /// Adds the node at the end of the list, wherever it belongs.
  IniNode* Append(IniNode* parent, const NodeSource& source);
  IniNode* InsertAt(IniNode* parent, std::size_t row, const NodeSource& source);
  /// As Append, then SortChildren.
  IniNode* AppendAndSort(IniNode* parent, const NodeSource& source);
  /// Adds the node in its place and tells the observer. row: where children stand as in the file.
  IniNode* Add(IniNode* parent, const NodeSource& source, std::size_t row = 0);
  IniNode* ReplaceWithComment(IniNode* node, std::string_view text);
  /// The text of the node is new already.
  void ShowText(IniNode* node);
  /// Both return false when they were in order. SortNew is for lists of no step: of new parents, and of arranging.
  bool SortChildren(IniNode* parent, IniSorter& sorter);
  static bool SortNew(IniNode* parent, IniSorter& sorter);
  static void NumberChildren(IniNode* parent, std::size_t first_row);

  // Removing (IniTreeRemoval.cpp).
  static IniNode* NextSelected(const IniNode* node);
  void RemoveNode(IniNode* node);
  void CountGone(const IniNode& node);
  void DiscardAll();
  /// Returns how many nodes are marked.
  std::size_t MarkTextEqualTo(std::string_view text);
  void MarkWalkingBack(std::string_view key);
  void RemoveEntriesWithKey(std::string_view key);
  void RemoveLinesOf(std::span<IniNode* const> entries);
  /// Linear. The selection moves when its node goes too.
  void RemoveMarked();
  void CompactChildren(IniNode* parent);

  // Whole holding: where lines are (IniTreeSource.cpp).
  IniLine KindOfPiece(Piece piece) const { return static_cast<IniLine>(lines_.Kind(piece)); }
  NodeSource SourceOfNode(Piece piece) const;
  /// The node above a piece that holds entries: a section or the root.
  IniNode* ParentBefore(Piece piece) const;
  /// Returns the first header behind a section, or in the file for the root; kEnds when there is none.
  Piece HeaderBehind(const IniNode& parent) const;
  /// Returns the first of the comments that touch a piece from above, or the piece.
  Piece FirstOfBlock(Piece piece) const;
  /// Returns the last piece before the block of a header, blank lines included.
  Piece EndBefore(Piece header) const { return lines_.Previous(FirstOfBlock(header)); }
  /// As EndBefore, blank lines left out.
  Piece LastLineBefore(Piece header) const;
  std::string_view LineOf(Piece piece) const;
  IniLineStyle StyleFor(Piece place, std::optional<IniLineStyle>& of_file) const;
  bool SectionsStandApart() const;
  /// The row of a new child behind a piece, as in the file.
  std::size_t RowBehind(Piece place, const IniNode& parent) const;

  // Whole holding: edits (IniTreeWhole.cpp).
  NodeSource InsertLine(Piece place, std::string_view line);
  /// line: without its end. Returns false when it would be a line of a sort that the node cannot be.
  bool ReplaceLine(IniNode* node, const std::string& line);
  bool SetLineText(IniNode* node, std::string_view text);
  bool SetEntryLine(IniNode* node, std::string_view key, std::string_view value);
  IniNode* AddSectionLine(std::string_view name);
  IniNode* AddEntryLine(IniNode* parent, std::string_view key, std::string_view value);
  bool AddEntryLines(std::string_view key, std::string_view value);
  void RemoveLines(IniNode* node);
  /// The first and the last line of a node, comments that belong to it included.
  std::pair<Piece, Piece> LinesOf(const IniNode& node) const;
  void MarkCommentsOf(const IniNode& node);
  void RemoveManyLines();
  Piece RemoveSectionRun(Piece first);
  /// The nodes of the comments that belong to a header. They stand below what comes before it.
  std::vector<IniNode*> BlockAbove(Piece header) const;
  void MoveBlock(const std::vector<IniNode*>& block, IniNode* from, IniNode* to);
  void PasteSections(Piece place, std::string_view text, IniNode* parent, Piece header, std::vector<IniNode*>& pasted);
  void InsertAll(IniNode* parent, std::size_t row, const std::vector<IniNode*>& nodes);
  Piece InsertLines(Piece place, std::string_view text, IniNode* parent, std::vector<IniNode*>& top);
  /// Unless a blank line or nothing is there. Returns the last piece.
  Piece InsertBlankBehind(Piece place);
  /// Puts all children in their places, from the lines and the parents of the nodes.
  void Rearrange();
  void ListAsInFile();

  // Whole holding: lines in the place of others (IniTreeReplace.cpp).
  /// Neither is part of it; kEnds for those at the ends.
  struct LineRange {
    Piece before;
    Piece behind;
  };
  std::string_view WithoutEqual(std::string_view lines, LineRange& range) const;
  bool ReplaceInPlace(const LineRange& range, const std::vector<IniSourceRun>& runs);
  void ReplaceRuns(const LineRange& range, const std::vector<IniSourceRun>& runs);
  /// The line of the node is new already.
  void ShowLine(IniNode* node);
  IniNode* NodeAbove(Piece piece) const;

  // Steps (IniTreeSteps.cpp). What is noted outside of a step is not kept.
  enum class Way : std::uint8_t { Back, Forth };
  /// Before anything of the node changes but its place.
  void NoteNode(IniNode* node);
  void NoteUnsorted(IniNode* parent);
  /// All rows may be others.
  void NoteAllRows();
  void NoteRow(IniNode* parent, IniNode* node, std::size_t row, IniChanges::Came came);
  /// The children stand in the new order and are numbered as before.
  void NoteMoved(IniNode* parent, const std::vector<IniNode*>& before);
  IniChanges::Totals Totals() const { return {node_count_, section_count_, selected_}; }
  void StepBegins(IniChanges& changes) override;
  void StepEnds(IniChanges& changes) override { changes.after = Totals(); }
  void Revert(IniChanges& changes) override { Take(changes, Way::Back); }
  void Reapply(IniChanges& changes) override { Take(changes, Way::Forth); }
  void Take(IniChanges& changes, Way way);
  static bool IsShownRowByRow(const IniChanges& changes);
  void TakeRows(const IniChanges& changes, Way way, bool row_by_row);
  void PutIn(IniNode* parent, std::span<const IniChanges::Row> rows);
  void TakeOut(IniNode* parent, std::span<const IniChanges::Row> rows);

  void MoveSelection(IniNode* node);
  void EndReset();
  void TellIfSelectionMoved();

  TextStore texts_;
  tme::Holding holding_ = Holding::ByRules;
  IniArrangement arrangement_ = IniArrangement::ByName;
  /// Empty by the rules.
  SourceLines lines_{texts_};
  /// In whole holding by piece; null for blank lines and removed ones.
  std::vector<IniNode*> node_of_;
  std::pmr::unsynchronized_pool_resource lists_;
  NodePool nodes_{sizeof(IniNode)};

  /// Never null: without an observer, one that does nothing.
  IniTreeObserver* observer_;
  std::unique_ptr<IniNode> root_;
  IniNode* selected_;
  /// The observer has not been told yet.
  bool selection_moved_ = false;
  std::size_t node_count_ = 1;
  std::size_t section_count_ = 0;
  /// Whole holding: which arrangement by name the children are in; 0 as in the file.
  std::uint32_t arranged_ = 0;
  std::uint32_t last_arranged_ = 0;
  /// By the rules.
  std::uint32_t next_number_ = 1;
};

/// Compares two UTF-8 texts by simple case folding, code point by code point. Bytes that are not valid UTF-8 compare as
/// themselves, after all code points. Returns <0, 0 or >0.
int CompareFolded(std::string_view left, std::string_view right);

}  // namespace tme
