#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/NodePool.h"
#include "base/TextStore.h"
#include "base/TreeObserver.h"
#include "documents/EditableDocument.h"
#include "documents/Holding.h"
#include "documents/SourceLines.h"
#include "documents/reg/RegChanges.h"
#include "documents/reg/RegData.h"
#include "documents/reg/RegNode.h"
#include "documents/reg/RegSourceLine.h"

namespace tme {

/// A key's or deletion's block of lines in a whole document.
struct RegBlock {
  const RegNode* node;
  SourceLines::Piece header;
  /// The first line of the comment that touches the header, else the header.
  SourceLines::Piece lead;
  /// Behind it: the lead of the next block, or kEnds.
  SourceLines::Piece end;
};

/// What a paste put in.
struct RegPasteResult {
  std::size_t keys = 0;
  std::size_t values = 0;
  /// Values that the document's version cannot say, or that would be the root's.
  std::size_t left_out = 0;
  std::size_t comments = 0;
  std::size_t not_understood = 0;  ///< lines
};

/// Learns of changes of the values, too.
class RegDocumentObserver : public TreeObserver<RegNode> {
 public:
  /// record: an index of RegDocument::Values.
  virtual void ValueAdded(std::size_t /*record*/) {}
  virtual void ValueChanged(std::size_t /*record*/) {}
  /// Values came, went or changed, and not one by one. What is at an index, and whether it is one, is to be asked anew.
  virtual void ValuesReset() {}
};

/// Whether comment lines are nodes of a whole document.
enum class RegComments : std::uint8_t { Hidden, Shown };

/// What becomes of the comments that touch the header of a key that is removed.
enum class HeaderComments : std::uint8_t {
  Go,
  Stay,  ///< not where comments are shown
};

/// The document of a registry window: the tree of keys and one table of values. Every edit is one call with a name.
/// Copying of texts, ownership and the observer are as in IniTree. 1,000,000 values in 100,000 keys are ordinary.
/// In whole holding the lines of the file are the truth; nodes and records show them, keys are found in any letter
/// case, and those whose lines stand in several blocks are one node.
class RegDocument final : public EditLog<RegChanges> {
 public:
  /// What readers fill a document with (RegDocumentLoad.h).
  class Load;
  class Pasting;

  explicit RegDocument(std::string_view title = "New Registry File");
  ~RegDocument();
  RegDocument(const RegDocument&) = delete;
  RegDocument& operator=(const RegDocument&) = delete;

  /// Not owned; null for none.
  void SetObserver(RegDocumentObserver* observer);

  RegNode* Root() const { return root_.get(); }
  /// Never null.
  RegNode* Selected() const { return selected_; }
  /// Null selects the root.
  void Select(RegNode* node) { selected_ = node == nullptr ? root_.get() : node; }
  /// Not for nodes of before a reset.
  bool IsInTree(const RegNode* node) const { return InTree(node) == node; }
  /// Counts every node in the tree, the root included.
  std::size_t NodeCount() const { return node_count_; }
  /// The table, in order of creation.
  const std::vector<RegValueRecord>& Values() const { return values_; }

  Holding HeldAs() const { return holding_; }
  /// Whole holding: what the first line says.
  RegVersion Version() const { return version_; }
  /// Whole holding: the text. A save of the regular layout is its Write.
  const SourceLines& Lines() const { return lines_; }
  /// Whole holding: how comments are shown.
  RegComments Comments() const { return comments_; }
  /// Whole holding: the last header line of a key or deletion, kEnds where only longer paths imply it; a comment's
  /// line.
  SourceLines::Piece PieceOf(const RegNode* node) const;

  /// Returns the first child with exactly this text, or null. Constant time on average.
  RegNode* FindChild(const RegNode* parent, std::string_view text) const;
  /// Returns what is shown for a node: indices of the records whose owner, in the tree, has the same full path, in
  /// table order, deleted ones included. Never costs the whole table. In whole holding the node's own that are not
  /// deleted.
  std::vector<std::size_t> ValuesOfPath(const RegNode* node) const;
  /// Whether there is a record of this name whose owner (removed keys and deleted records included) has the node's
  /// text. Saving goes by the last component alone, unlike ValuesOfPath; intended.
  bool HasValueNamed(const RegNode* node, std::string_view name) const;
  /// Counts the keys that a save gives values of other keys, removed ones included, because their last component is the
  /// same. Linear.
  std::size_t KeysSharingAName() const;
  /// Whether a save gives this branch values of other keys, or other keys the values of this one. Linear.
  bool SharesItsName(const RegNode* node) const;
  /// Calls visit(record) for the node's own records, deleted ones included, in table order.
  template <typename Visit>
  void ForEachValueOf(const RegNode* node, Visit visit) const {
    ForEachRecordOf(node, [this, &visit](std::size_t record) { visit(values_[record]); });
  }

  /// Whole holding: calls visit(block) in the order of the file.
  template <typename Visit>
  void ForEachBlock(Visit visit) const {
    for (std::uint32_t at = headers_[0].next; at != 0; at = headers_[at].next) {
      const std::uint32_t next = headers_[at].next;
      visit(RegBlock{headers_[at].node, headers_[at].piece, LeadOf(at), next == 0 ? SourceLines::kEnds : LeadOf(next)});
    }
  }

  /// The root's text where it follows the file's name, which is no edit.
  void SetTitle(std::string_view title);

  // Edits by the rules.
  // Texts are copied, and not checked; neither is whether there is such a child already.
  RegNode* AddHiveNode(std::string_view name);
  RegNode* AddBranch(RegNode* parent, std::string_view text);
  /// Returns the record's index. No check of names.
  std::size_t AddValueRecord(RegNode* node, RegType type, std::string_view name, std::string_view data);
  void SetValueData(std::size_t record, std::string_view data);
  void SetText(RegNode* node, std::string_view text);
  /// Puts keys with all below them, and the records of these, below another key, behind its children. Each record goes
  /// on being there once. nodes: none below another one, the parent neither one of them nor below one. Returns and
  /// selects the new nodes, or the first of them. Linear in what moves and its siblings.
  std::vector<RegNode*> MoveKeys(std::span<RegNode* const> nodes, RegNode* parent);
  /// The same with copies of those of another document; deleted records stay behind. No check of names
  /// (ValueInTheWay).
  std::vector<RegNode*> CopyKeys(const RegDocument& from, std::span<RegNode* const> nodes, RegNode* parent);
  /// Copies records, maybe of another document, to the end of the table. Deleted ones stay behind. As CopyKeys.
  void CopyValues(const RegDocument& from, std::span<const std::size_t> records, RegNode* key);

  // Edits of both ways.
  /// The record stays, marked. In whole holding its lines go but for comments between them, and a key of a REGEDIT file
  /// stays as a path alone.
  void DeleteValue(std::size_t record);
  /// The name is copied, and not checked.
  void RenameValue(std::size_t record, std::string_view name);
  /// Takes the node with its subtree out of the tree, but never the root. Its records stay. If the selected node goes
  /// too, its next sibling is selected, else the previous one, else the parent. There is no recursion.
  /// In whole holding its blocks go, with the blank lines behind them and the comments that touch their headers; a
  /// comment that touches the next header stays. Where comments stay, a blank line behind them does, too.
  void RemoveKey(RegNode* node, HeaderComments comments = HeaderComments::Go);
  /// Takes many nodes with their subtrees out of the tree, as RemoveKey does one; linear in their number and that of
  /// their siblings. nodes: none below another one; the root stays.
  void RemoveKeys(std::span<RegNode* const> nodes);
  /// Empties the document, forgets its steps and gives it this title. It is held by the rules then.
  void Reset(std::string_view title);

  // Edits of whole holding. Each changes its own lines alone. Texts are copied; names of keys are one component, and
  // neither they nor assignments (EncodeAssignment) are checked.

  /// Adds a key with its header line behind the last block below the parent, else at the end. Below the root it is a
  /// hive.
  RegNode* AddKey(RegNode* parent, std::string_view name);
  /// Adds a line at the end of the key's last block, in the style of the line before. A key without a block gets one.
  /// name: empty for the default value, which is all that a REGEDIT file can hold. Returns the record's index.
  std::size_t AddValue(RegNode* key, std::string_view name, std::string_view assignment);
  /// Replaces what stands behind "="; hex is wrapped here. Comments between the lines that go stand above the value
  /// then.
  void SetAssignment(std::size_t record, std::string_view assignment);
  /// Makes the value's line the deletion of that value. Not for REGEDIT.
  void WriteDeletion(std::size_t record);
  /// Makes a key's blocks and those below it one line that deletes the key, where the first of them stood, and the node
  /// one of tag Deletion in the key's place, which is returned. Not for the root, nor for REGEDIT.
  RegNode* WriteDeletion(RegNode* key);
  /// Changes this component of the path in the header lines of the key or deletion and of all below it.
  void RenameKey(RegNode* key, std::string_view name);
  /// The lines of the pieces from one to the other become these, byte by byte, and the document what a reader makes of
  /// all its lines; but values that came stand last among those of their key. kEnds, kEnds: for a document without
  /// lines. Costs what is linear in the lines, the values of the keys around them and the headers of the file.
  void ReplaceLines(SourceLines::Piece first, SourceLines::Piece last, std::string_view text);
  /// Gives all lines this end; Mixed leaves them.
  void SetLineEnds(LineEnds ends);
  /// text: without line ends; begins with ";".
  void SetComment(RegNode* comment, std::string_view text);
  /// Puts the lines of a registry file in, as they stand but for their line ends. Values before its first key go to the
  /// end of the key's block, blocks behind the last one below it. Their paths lose what all have in common, and go on
  /// from the key; below the root they stay. Data are encoded anew where the versions differ; what cannot be is left
  /// out. Equal names are no matter. Nothing is done in a REGEDIT document. coding: its version does not count.
  RegPasteResult Paste(RegNode* key, std::string_view text, const RegCoding& coding);
  /// Makes the file one of another version, between REGEDIT4 and 5.00: the first line, and texts in hex. What cannot be
  /// said there keeps its bytes (UnsayableIn lists it). coding: as for Paste.
  void ConvertTo(RegVersion target, const RegCoding& coding);
  /// Makes a node of each comment line, above the keys of the key whose header its block touches, else of the key in
  /// whose block it stands, or drops them all. No change of content.
  void ShowComments(RegComments comments);

 private:
  friend class RegValueIndex;
  class Editing;
  class LineEdit;
  enum class Turn : std::uint8_t { Back, Again };

  // Building, without telling the observer. Views must lie in texts_.
  RegNode* Append(RegNode* parent, std::string_view text, RegTag tag);
  void AppendRecord(RegNode* owner, RegType type, std::string_view name, std::string_view data) {
    if (runs_.empty() || runs_.back().owner != owner) StartRun(owner);
    ++EditedRun(runs_.size() - 1).count;
    values_.push_back({.owner = owner, .name = name, .data = data, .type = type});
  }
  void StartRun(RegNode* owner);

  // Undo. What a step changes is noted in notes_ before; nothing where there is no step.
  void Revert(RegChanges& changes) override { TurnChanges(changes, Turn::Back); }
  void Reapply(RegChanges& changes) override { TurnChanges(changes, Turn::Again); }
  void BeginNotes();
  void EndNotes();
  /// Must come before the node changes; where it stands is no part of it.
  RegNode& EditedNode(RegNode* node);
  RegValueRecord& EditedRecord(std::size_t record) { return Edited(values_, &RegChanges::records, record); }
  RegRun& EditedRun(std::size_t run) { return Edited(runs_, &RegChanges::runs, run); }
  RegHeader& EditedHeader(std::uint32_t header) { return Edited(headers_, &RegChanges::headers, header); }
  template <class Row>
  Row& Edited(std::vector<Row>& table, RegTableChanges<Row> RegChanges::*changes, std::size_t row) {
    if (notes_ != nullptr) (notes_->*changes).Note(table, row);
    return table[row];
  }
  /// Must come before the row comes or goes.
  void NoteRow(RegNode* node, std::size_t row, RegChanges::ListChange::Kind kind);
  void MarkDeleted(std::size_t record);
  void TurnChanges(RegChanges& changes, Turn turn);
  void TurnTables(RegChanges& changes, Turn turn);
  void TurnNodes(std::vector<RegChanges::NodeChange>& nodes, Turn turn);
  void TurnRows(const RegChanges& changes, Turn turn);
  void TurnManyRows(const RegChanges& changes, Turn turn);
  RegNode* SelectedWithout(std::span<RegNode* const> gone) const;
  void TurnRun(std::vector<RegChanges::ListChange>& rows, RegChanges::ListChange::Kind kind);
  /// The number of the arrangement of comments under which rows stand as they do.
  std::uint64_t Arrangement() const { return comments_ == RegComments::Hidden ? 0 : arrangement_; }
  const RegNode* InTree(const RegNode* node) const;
  RegNode* InTree(RegNode* node) const { return const_cast<RegNode*>(InTree(const_cast<const RegNode*>(node))); }
  std::size_t CountBelow(const RegNode& node) const;

  // Rows of a parent, with all that follows from it but for the observer and the notes.
  void PutRow(RegNode* node, std::size_t row);
  void TakeRow(RegNode* node);

  // Whole holding.

  void LinkHeader(RegNode* node, SourceLines::Piece piece, std::uint32_t behind);
  void UnlinkHeader(std::uint32_t header);
  std::uint32_t LastHeaderBelow(const RegNode* node) const;
  SourceLines::Piece LeadOf(std::uint32_t header) const;
  SourceLines::Piece TailOf(std::uint32_t header) const;
  SourceLines::Piece BlockEnd(std::uint32_t header) const;
  RegPiece KindOf(SourceLines::Piece piece) const { return static_cast<RegPiece>(lines_.Kind(piece)); }
  void AddHeaderLine(RegNode* node);
  SourceLines::Piece MakeRoomBehind(std::uint32_t& header);
  SourceLines::Piece AddValueLine(const RegNode* key, std::string_view name, std::string_view assignment);
  SourceLines::Piece AddPairLine(RegNode* key, std::string_view assignment);
  bool PutAssignment(std::size_t record, std::string_view assignment);
  void ReplaceIn(SourceLines::Piece piece, RegSpan place, std::string_view text);
  void RenameInLine(std::size_t record, std::string_view name);
  void FollowPiece(std::size_t record);
  void DeleteValueLines(std::size_t record);
  void RemoveBlocks(const RegNode* node, HeaderComments comments);
  void KeepComments(SourceLines::Piece piece, std::string_view assignment);
  void RenumberFrom(const RegNode* parent, std::size_t row);
  RegNode* MakeNode(RegNode* parent, std::string_view text, RegTag tag);
  void MakeComments();
  RegNode* MakeComment(RegNode* parent, SourceLines::Piece piece);
  RegNode* CommentAgain(RegNode* parent, SourceLines::Piece piece);
  RegChildren& ChildrenOf(RegNode* parent);
  void DropComments();
  std::size_t DropCommentsBelow(const RegNode& top);
  void AdoptComments(RegNode* parent, SourceLines::Piece first, SourceLines::Piece end);
  void GiveCommentsAway(RegNode* from, SourceLines::Piece below);
  std::size_t CommentRow(const RegNode& parent, SourceLines::Piece piece) const;

  RegNode* Add(RegNode* parent, std::string_view text, RegTag tag);
  template <typename Owned>
  RegNode* AppendLike(const RegNode& top, RegNode* parent, Owned owned);
  void HandOverRecords(RegNode* from, RegNode* to);
  template <typename Visit>
  void ForEachRecordOf(const RegNode* node, Visit visit) const {
    for (std::uint32_t at = node->first_run_; at != RegNode::kNoRun; at = runs_[at].next)
      for (std::uint32_t i = 0; i < runs_[at].count; ++i) visit(std::size_t{runs_[at].first} + i);
  }
  void NoteSibling(const RegNode* parent, std::string_view text);
  void CollectRecords(const RegNode* node, std::vector<std::size_t>& records) const;
  std::vector<const RegNode*> NodesOfPath(std::string_view path) const;
  void ValueHasChanged(std::size_t record);

  TextStore texts_;
  std::pmr::unsynchronized_pool_resource lists_;
  NodePool nodes_{sizeof(RegNode)};

  /// Never null: without an observer, one that does nothing.
  RegDocumentObserver* observer_;
  std::unique_ptr<RegNode> root_;
  RegNode* selected_;
  std::vector<RegValueRecord> values_;
  std::vector<RegRun> runs_;
  std::size_t node_count_ = 1;
  Holding holding_ = Holding::ByRules;
  RegVersion version_ = RegVersion::Version5;
  /// What it is where no line says it.
  RegVersion unsaid_version_ = RegVersion::Regedit4;
  RegComments comments_ = RegComments::Hidden;
  /// Grows whenever comments come and go by themselves.
  std::uint64_t arrangement_ = 0;
  /// By piece: those that there were, and can be again.
  std::vector<RegNode*> comment_of_piece_;
  SourceLines lines_{texts_};
  std::vector<RegHeader> headers_{RegHeader{}};
  /// No two nodes have had one path so far: neither equal siblings nor texts with a backslash, which only edits make.
  bool paths_are_unique_ = true;
  /// Null outside of edits.
  RegChanges* notes_ = nullptr;
};

/// An edit: a step, or a part of one, that notes what it changes.
class RegDocument::Editing {
 public:
  Editing(RegDocument& document, EditName name)
      : step_(document, name), document_(document), is_inner_(document.notes_ != nullptr) {
    document.BeginNotes();
  }
  ~Editing() {
    if (!is_inner_) document_.EndNotes();
  }
  Editing(const Editing&) = delete;
  Editing& operator=(const Editing&) = delete;

 private:
  const Step step_;
  RegDocument& document_;
  const bool is_inner_;
};

}  // namespace tme
