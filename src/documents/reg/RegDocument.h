#pragma once

#include <array>
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
#include "documents/Holding.h"
#include "documents/SourceLines.h"
#include "documents/reg/RegChildren.h"
#include "documents/reg/RegData.h"
#include "documents/reg/RegSourceLine.h"

namespace tme {

/// Kind of a node. The last two are in whole documents alone.
enum class RegTag : std::uint8_t {
  File,
  Hive,
  Branch,
  Deletion,  ///< [-path]: the key is deleted where the file is imported; stands beside the key of that name, if any
  Comment,   ///< a comment line, where the user asks for them
};
constexpr bool IsKey(RegTag tag) { return tag <= RegTag::Branch; }

/// Type of a value; None for a deleted record. In a whole document its form: in quotes, dword:, hex: with or without a
/// type number; None for the deletion of a value ("name"=-).
enum class RegType : std::uint8_t { None, String, Dword, Hex };

/// What a type of value is in texts.
struct RegTypeTraits {
  RegType type;
  std::string_view name;    ///< for people
  std::string_view before;  ///< in a line of a file, from the quote behind the value's name to the data
  std::string_view after;   ///< behind the data
};
/// By RegType.
inline constexpr std::array<RegTypeTraits, 4> kRegTypes{{
    {RegType::None, "", "\"=", ""},
    {RegType::String, "REG_SZ", "\"=\"", "\""},
    {RegType::Dword, "DWORD", "\"=dword:", ""},
    {RegType::Hex, "HEX", "\"=hex:", ""},
}};
/// Those whose mark ("=dword:") a reader looks for in a line, in this order. A line without one is a string.
inline constexpr std::span kMarkedRegTypes = std::span(kRegTypes).subspan<2>();

constexpr const RegTypeTraits& TraitsOf(RegType type) { return kRegTypes[static_cast<std::size_t>(type)]; }

/// The hives of a registry, in the order in which they are offered. Compared with regard to letter case.
inline constexpr std::string_view HiveNames[] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER",   "HKEY_LOCAL_MACHINE",
                                                 "HKEY_USERS",        "HKEY_CURRENT_CONFIG", "HKEY_DYN_DATA"};
bool IsHiveName(std::string_view text);

/// One key of the tree. Nodes belong to their RegDocument and stay at one address; a removed node lives on unseen,
/// since its values still count for saving.
class RegNode {
 public:
  /// The root: the document's title; a hive: its name; a branch: one component of the path. UTF-8; bytes that are not
  /// valid UTF-8 pass through. A comment: its line without blanks at both ends.
  std::string_view Text() const { return {text_, size_}; }
  RegTag Tag() const { return tag_; }
  /// Null for the root only.
  RegNode* Parent() const { return parent_; }
  /// Position among the parent's children, in order of creation, from 0.
  int Row() const { return static_cast<int>(row_); }
  int ChildCount() const { return children_ == nullptr ? 0 : static_cast<int>(children_->Count()); }
  RegNode* Child(int row) const { return children_->At(static_cast<std::size_t>(row)); }
  /// The path without the root ("HKEY_USERS\\Alpha\\Beta"); empty for the root. Costs a walk up the tree.
  std::string KeyPath() const;

 private:
  friend class RegDocument;
  friend class RegValueIndex;

  static constexpr std::uint32_t kNoRun = UINT32_MAX;

  RegNode(RegNode* parent, std::string_view text, RegTag tag) : parent_(parent), tag_(tag) { SetTextView(text); }

  void SetTextView(std::string_view text) {
    text_ = text.data();
    size_ = static_cast<std::uint32_t>(text.size());
  }

  /// In memory of the document.
  const char* text_ = nullptr;
  /// Kept when the node is removed.
  RegNode* parent_;
  /// In memory of the document; null until the first child comes.
  RegChildren* children_ = nullptr;
  std::uint32_t size_ = 0;
  std::uint32_t row_ = 0;
  /// The node's records, as a chain of runs of the document.
  std::uint32_t first_run_ = kNoRun;
  std::uint32_t last_run_ = kNoRun;
  /// Whole holding. A key or deletion: the last of its header lines in the document's ring, 0 for none. A comment: its
  /// piece.
  std::uint32_t place_ = 0;
  RegTag tag_;
};

/// One value of the flat table. Records are never removed or moved. A deleted one has no type, name and data by the
/// rules, and keeps them in a whole document.
struct RegValueRecord {
  RegNode* owner = nullptr;
  /// Without quotes; "[default]" for the default value. In a whole document unescaped, and empty for the default value.
  std::string_view name;
  /// As in the file, not decoded: text between the quotes, eight hexadecimal digits, or bytes separated by commas.
  /// In a whole document all that stands behind "=", over several lines where it is wrapped: see DecodeAssignment.
  std::string_view data;
  RegType type = RegType::None;
  bool deleted = false;
  /// Whole holding: of Lines.
  SourceLines::Piece piece = SourceLines::kEnds;
};

/// A key's or deletion's block of lines in a whole document.
struct RegBlock {
  const RegNode* node;
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
};

/// Whether comment lines are nodes of a whole document.
enum class RegComments : std::uint8_t { Hidden, Shown };

/// The document of a registry window: the tree of keys and one table of values. Every edit is one call with a name.
/// Copying of texts, ownership and the observer are as in IniTree. 1,000,000 values in 100,000 keys are ordinary.
/// In whole holding the lines of the file are the truth; nodes and records show them, keys are found in any letter
/// case, and those whose lines stand in several blocks are one node.
class RegDocument {
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
  /// Counts every node in the tree, the root included.
  std::size_t NodeCount() const { return node_count_; }
  /// Grows with every change of content.
  std::uint64_t Revision() const { return revision_; }
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
      visit(RegBlock{headers_[at].node, LeadOf(at), next == 0 ? SourceLines::kEnds : LeadOf(next)});
    }
  }

  // Edits by the rules.
  // Texts are copied, and not checked; neither is whether there is such a child already.
  RegNode* AddHiveNode(std::string_view name);
  RegNode* AddBranch(RegNode* parent, std::string_view text);
  /// Returns the record's index. No check of names.
  std::size_t AddValueRecord(RegNode* node, RegType type, std::string_view name, std::string_view data);
  void SetValueData(std::size_t record, std::string_view data);
  void SetText(RegNode* node, std::string_view text);

  // Edits of both ways.
  /// The record stays, marked. In whole holding its lines go but for comments between them, and a key of a REGEDIT file
  /// stays as a path alone.
  void DeleteValue(std::size_t record);
  /// Takes the node with its subtree out of the tree, but never the root. Its records stay. If the selected node goes
  /// too, its next sibling is selected, else the previous one, else the parent. There is no recursion.
  /// In whole holding its blocks go, with the blank lines behind them and the comments that touch their headers; a
  /// comment that touches the next header stays.
  void RemoveKey(RegNode* node);
  /// Empties the document and gives it this title. It is held by the rules then.
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
  void RenameValue(std::size_t record, std::string_view name);
  /// Makes the value's line the deletion of that value. Not for REGEDIT.
  void WriteDeletion(std::size_t record);
  /// Makes a key's blocks and those below it one line that deletes the key, where the first of them stood, and the node
  /// one of tag Deletion in the key's place, which is returned. Not for the root, nor for REGEDIT.
  RegNode* WriteDeletion(RegNode* key);
  /// Changes this component of the path in the header lines of the key or deletion and of all below it.
  void RenameKey(RegNode* key, std::string_view name);
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

  /// Records that follow one another and have one owner. A file gives one run for nearly every key.
  struct Run {
    RegNode* owner;
    std::uint32_t first;
    std::uint32_t count;
    /// The owner's next run, or RegNode::kNoRun.
    std::uint32_t next;
  };

  // Building, without telling the observer. Views must lie in texts_.
  RegNode* Append(RegNode* parent, std::string_view text, RegTag tag);
  void AppendRecord(RegNode* owner, RegType type, std::string_view name, std::string_view data) {
    if (runs_.empty() || runs_.back().owner != owner) StartRun(owner);
    ++runs_.back().count;
    values_.push_back({.owner = owner, .name = name, .data = data, .type = type});
  }
  void StartRun(RegNode* owner);

  // Whole holding.

  /// A header line, in two rings: of the file in its order, in which the first of the table is the ends, and of its
  /// node, which has the number of the last one.
  struct Header {
    RegNode* node = nullptr;
    SourceLines::Piece piece = SourceLines::kEnds;
    std::uint32_t next = 0;
    std::uint32_t previous = 0;
    std::uint32_t next_of_node = 0;
  };

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
  void FollowPiece(std::size_t record);
  void DeleteValueLines(std::size_t record);
  void RemoveBlocks(const RegNode* node);
  void KeepComments(SourceLines::Piece piece, std::string_view assignment);
  void RenumberFrom(const RegNode* parent, std::size_t row);
  RegNode* MakeNode(RegNode* parent, std::string_view text, RegTag tag);
  void MakeComments();
  RegNode* MakeComment(RegNode* parent, SourceLines::Piece piece);
  void DropComments();
  void AdoptComments(RegNode* parent, SourceLines::Piece first, SourceLines::Piece end);
  void GiveCommentsAway(RegNode* from, SourceLines::Piece below);
  std::size_t CommentRow(const RegNode& parent, SourceLines::Piece piece) const;

  RegNode* Add(RegNode* parent, std::string_view text, RegTag tag);
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
  std::vector<Run> runs_;
  std::size_t node_count_ = 1;
  std::uint64_t revision_ = 0;
  Holding holding_ = Holding::ByRules;
  RegVersion version_ = RegVersion::Version5;
  RegComments comments_ = RegComments::Hidden;
  SourceLines lines_{texts_};
  std::vector<Header> headers_{Header{}};
  /// No two nodes have had one path so far: neither equal siblings nor texts with a backslash, which only edits make.
  bool paths_are_unique_ = true;
};

}  // namespace tme
