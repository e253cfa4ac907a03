#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ini/IniReader.h"
#include "ini/IniTree.h"

namespace tme {

inline std::string DumpNode(const IniNode& node) {
  std::string dump(node.Text());
  for (int row = 0; row < node.ChildCount(); ++row) dump += "|" + DumpNode(*node.Child(row));
  if (node.Tag() == IniTag::Value) return dump;
  return node.Tag() == IniTag::Comments ? "(" + dump + ")" : "[" + dump + "]";
}

/// One line for the whole tree, without the root: "[Section|key=value|(;comment)](;comment of the root)".
inline std::string Dump(const IniTree& tree) {
  std::string dump;
  for (int row = 0; row < tree.Root()->ChildCount(); ++row) dump += DumpNode(*tree.Root()->Child(row));
  return dump;
}

/// First node of this text, the root's children before their own children; the root when there is none.
inline IniNode* FindNode(const IniTree& tree, std::string_view text) {
  IniNode* root = tree.Root();
  for (int row = 0; row < root->ChildCount(); ++row) {
    if (root->Child(row)->Text() == text) return root->Child(row);
  }
  for (int row = 0; row < root->ChildCount(); ++row) {
    const IniNode& section = *root->Child(row);
    for (int entry = 0; entry < section.ChildCount(); ++entry) {
      if (section.Child(entry)->Text() == text) return section.Child(entry);
    }
  }
  return root;
}

/// Reads with the root selected, as opening a file does; overwrites duplicates.
inline IniReadResult ReadFile(IniTree& tree, std::string text) {
  tree.Select(tree.Root());
  return IniReader::Read(tree, std::move(text), {[](std::string_view) { return true; }});
}

/// Follows a tree by what it is told alone, as an item model does, and checks that calls come in pairs.
class IniMirror : public IniTreeObserver {
 public:
  explicit IniMirror(IniTree& tree) : tree_(tree), lists_(Copy()) { tree.SetObserver(this); }
  ~IniMirror() override { tree_.SetObserver(nullptr); }

  void BeforeInsert(const IniNode& parent, int row) override { Open(parent, row); }
  void AfterInsert() override {
    const IniNode& node = *changing_->Child(row_);
    if (changing_ == tree_.Root()) {
      lists_.insert(lists_.begin() + row_, List(node));
    } else {
      List& list = lists_[static_cast<std::size_t>(changing_->Row())];
      list.insert(list.begin() + 1 + row_, std::string(node.Text()));
    }
    changing_ = nullptr;
  }
  void BeforeRemove(const IniNode& node) override {
    Open(*node.Parent(), node.Row());
    if (changing_ == tree_.Root()) {
      lists_.erase(lists_.begin() + row_);
    } else {
      List& list = lists_[static_cast<std::size_t>(changing_->Row())];
      list.erase(list.begin() + 1 + row_);
    }
  }
  void AfterRemove() override { changing_ = nullptr; }
  void TextChanged(const IniNode& node) override {
    if (node.Parent() == nullptr) return;
    const bool is_section = node.Parent() == tree_.Root();
    List& list = lists_[static_cast<std::size_t>(is_section ? node.Row() : node.Parent()->Row())];
    list[is_section ? 0 : static_cast<std::size_t>(node.Row() + 1)] = node.Text();
  }
  void BeforeReset() override { Open(*tree_.Root(), 0); }
  void AfterReset() override {
    changing_ = nullptr;
    lists_ = Copy();
    ++resets;
  }
  void SelectionMoved() override {
    EXPECT_EQ(changing_, nullptr);
    ++selection_moves;
  }

  /// The tree shows what was told.
  void Check() const {
    EXPECT_EQ(changing_, nullptr) << "a call without its second half";
    EXPECT_EQ(lists_, Copy());
  }

  int resets = 0;
  int selection_moves = 0;

 private:
  /// Text of a child of the root, then those of its children.
  struct List : std::vector<std::string> {
    explicit List(const IniNode& node) {
      emplace_back(node.Text());
      for (int row = 0; row < node.ChildCount(); ++row) {
        EXPECT_EQ(node.Child(row)->Row(), row);
        EXPECT_EQ(node.Child(row)->Parent(), &node);
        emplace_back(node.Child(row)->Text());
      }
    }
  };

  std::vector<List> Copy() const {
    const List names(*tree_.Root());
    std::vector<List> lists;
    std::size_t nodes = 1;
    for (int row = 0; row < tree_.Root()->ChildCount(); ++row) {
      nodes += lists.emplace_back(*tree_.Root()->Child(row)).size();
    }
    EXPECT_EQ(tree_.NodeCount(), nodes);
    return lists;
  }
  void Open(const IniNode& node, int row) {
    EXPECT_EQ(changing_, nullptr) << "changes overlap";
    changing_ = &node;
    row_ = row;
  }

  IniTree& tree_;
  std::vector<List> lists_;
  const IniNode* changing_ = nullptr;
  int row_ = 0;
};

}  // namespace tme
