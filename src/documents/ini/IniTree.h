#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <string_view>
#include <vector>

#include "base/NodePool.h"
#include "base/TextStore.h"
#include "base/TreeObserver.h"

namespace tme {

class IniSorter;

enum class IniTag : std::uint8_t { OpenedFile, Section, Value, Comments };

/// One line of the tree: the file (root), a section, an entry or a comment. Nodes belong to their IniTree and stay at
/// one address until they are removed. 1,000,000 of them are ordinary, so a node is kept at 40 bytes.
class IniNode {
 public:
  /// UTF-8 (bytes that are not valid UTF-8 pass through), without a line end. The root: the file's name; a section: its
  /// name without brackets; an entry or comment: the whole source line.
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

  IniNode(IniNode* parent, std::string_view text, IniTag tag, std::uint32_t created)
      : text_(text.data()),
        parent_(parent),
        size_(static_cast<std::uint32_t>(text.size())),
        created_(created),
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
  /// Grows from node to node.
  std::uint32_t created_;
  IniTag tag_;
  bool expanded_ = false;
  /// The children are in order; a changed text may clear it.
  bool children_sorted_ = true;
  /// Marked for the removal of many nodes at once; false outside such a call.
  bool removed_ = false;
};

using IniTreeObserver = TreeObserver<IniNode>;

/// The document of an INI window: one root, sections below it, entries and comments below those. Each list is sorted by
/// text (CompareFolded; equal texts in order of arrival) whenever a child is added to it; a changed text stays where it
/// is until then. Every edit is one call with a name.
class IniTree {
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

  /// Whether no child of the root has exactly this text.
  bool IsUniqueSectionName(std::string_view name) const;
  /// Counts the children of the root with the tag Section.
  std::size_t SectionCount() const { return section_count_; }
  /// Counts every node, the root included.
  std::size_t NodeCount() const { return node_count_; }
  /// Grows with every change of content, reading and pasting included, and not with selection and expansion.
  std::uint64_t Revision() const { return revision_; }

  // Edits. Texts are copied unless said otherwise.

  /// Adds a section to the root, which is expanded and sorted. The name is not checked (see IsUniqueSectionName).
  IniNode* AddSection(std::string_view name);
  /// Adds a child with the tag Value or Comments to a section, or a comment to the root. The parent is sorted.
  IniNode* AddEntry(IniNode* parent, std::string_view text, IniTag tag);
  /// Adds one child to every section, each of which is sorted and expanded. Linear in the size of the tree.
  void AddEntryToAllSections(std::string_view text, IniTag tag);
  void SetText(IniNode* node, std::string_view text);
  /// An entry becomes a new comment of the same parent. Returns the new node, selected if the old one was.
  IniNode* ReplaceWithComment(IniNode* node, std::string_view text);
  /// Removes the node with its subtree, but never the root. If the selected node goes too, its next sibling is
  /// selected, else the previous one, else the parent.
  void Remove(IniNode* node);
  /// Walks all nodes from the last created to the first and removes those (sections and comments too, never the root)
  /// whose text begins with the key of the selected entry, as long as the selected node is an entry. Intended. Where
  /// the walk removes the selected node itself, any entry that is left takes the selection for as long as the walk
  /// lasts, so only the last entry of the tree ends it. Afterwards a neighbour is selected, as by Remove. Does nothing
  /// unless an entry is selected. Linear, but for ordering the nodes that match.
  void RemoveStartingWithSelectedKey();
  /// Removes all sections and comments. The root stays with its text.
  void Clear();
  /// As Clear, with a new root text.
  void Reset(std::string_view root_text);

  // Display state.
  void SetExpanded(IniNode* node, bool expanded) { node->expanded_ = expanded; }
  /// The root is expanded either way.
  void SetAllExpanded(bool expanded);

 private:
  // Building. The views must lie in texts_.
  IniNode* NewNode(IniNode* parent, std::string_view text, IniTag tag);
  IniNode::Children& ChildrenOf(IniNode* parent);
  /// Adds the node at the end of the list, wherever it belongs.
  IniNode* Append(IniNode* parent, std::string_view text, IniTag tag);
  IniNode* InsertAt(IniNode* parent, std::size_t row, std::string_view text, IniTag tag);
  /// As Append, then SortChildren.
  IniNode* AppendAndSort(IniNode* parent, std::string_view text, IniTag tag);
  /// Adds the node in its place and tells the observer.
  IniNode* Add(IniNode* parent, std::string_view text, IniTag tag);
  /// Returns false when they were in order.
  static bool SortChildren(IniNode* parent, IniSorter& sorter);
  static void NumberChildren(IniNode* parent, std::size_t first_row);

  // Removing (IniTreeRemoval.cpp).
  static IniNode* NextSelected(const IniNode* node);
  void Discard(IniNode* node);
  void DiscardAll();
  /// Returns how many nodes are marked.
  std::size_t MarkTextEqualTo(std::string_view text);
  void MarkWalkingBack(std::string_view key);
  /// Linear. The selection moves when its node goes too.
  void RemoveMarked();
  void CompactChildren(IniNode* parent);

  void MoveSelection(IniNode* node);
  void EndReset();
  void TellIfSelectionMoved();

  TextStore texts_;
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
  std::uint64_t revision_ = 0;
  std::uint32_t next_created_ = 1;
};

/// Compares two UTF-8 texts by simple case folding, code point by code point. Bytes that are not valid UTF-8 compare as
/// themselves, after all code points. Returns <0, 0 or >0.
int CompareFolded(std::string_view left, std::string_view right);

}  // namespace tme
