#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/ini/IniLine.h"
#include "documents/ini/IniOrder.h"
#include "documents/ini/IniTree.h"

namespace tme {

/// Fills a tree from a text: the one way in for readers. What comes to a document that has content is a step. In whole
/// holding it fills an empty tree, once. The observer sees a reset from construction to Commit, and only these calls
/// change the tree meanwhile.
class IniTree::Load {
 public:
  /// text: taken over by the tree, and given back when nothing was appended.
  Load(IniTree& tree, std::string text);
  Load(const Load&) = delete;
  Load& operator=(const Load&) = delete;
  /// Ends a reset that was not committed, as after an exception: what was appended to the root stays.
  ~Load();

  /// Where the texts below must lie. Holds until the tree is reset.
  std::string_view Text() const { return text_; }
  void AppendSection(std::string_view name);
  /// Appends to the section that was appended last, or to the root before the first one.
  void AppendEntry(std::string_view text, IniTag tag);
  /// In whole holding, instead of both: one line with its end, or a run of blank ones, right behind those before.
  void AppendLines(std::string_view lines, IniLine kind);

  /// Puts what was appended in order and ends the reset.
  void Commit();
  /// Begins another reset after Commit.
  void Reopen();
  /// Removes every node but the root whose text equals this one. Returns how many nodes went with them. No section is
  /// open afterwards.
  std::size_t RemoveTextEqualTo(std::string_view text);

  /// Whether the appended sections stand in the text in another order than in the tree. Known once committed.
  bool SectionsReordered() const;
  /// Whether the entries of at least one section do. Known once committed.
  bool EntriesReordered() const { return entries_reordered_; }

 private:
  bool IsWhole() const { return tree_.Holding() == Holding::Whole; }
  void AppendNode(const NodeSource& source);
  void FinishSection();

  IniTree& tree_;
  /// Unless the tree is empty and was never edited.
  std::optional<Step> step_;
  const std::string_view text_;
  /// Nodes from here on were appended.
  const std::uint32_t first_number_;
  bool is_open_ = true;
  bool entries_reordered_ = false;
  /// Null before the first section.
  IniNode* section_ = nullptr;
  /// Children of section_ so far: the tree gets them together, sorted, when the section ends.
  std::vector<IniNode*> entries_;
  IniSorter sorter_;
};

}  // namespace tme
