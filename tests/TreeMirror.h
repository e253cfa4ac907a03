#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tme {

/// Follows a document by what it is told alone, as an item model does, and checks that calls come in pairs.
template <class Document, class Node, class Observer>
class TreeMirror : public Observer {
 public:
  explicit TreeMirror(Document& document) : document_(document), root_(*document.Root()) { document.SetObserver(this); }
  ~TreeMirror() override { document_.SetObserver(nullptr); }

  void BeforeInsert(const Node& parent, int row) override { Open(parent, row); }
  void AfterInsert() override {
    std::vector<Copy>& children = Of(*changing_).children;
    children.emplace(children.begin() + row_, *changing_->Child(row_));
    changing_ = nullptr;
  }
  void BeforeRemove(const Node& node) override {
    Open(*node.Parent(), node.Row());
    std::vector<Copy>& children = Of(*changing_).children;
    children.erase(children.begin() + row_);
  }
  void AfterRemove() override { changing_ = nullptr; }
  void TextChanged(const Node& node) override { Of(node).text = node.Text(); }
  void BeforeReset() override { Open(*document_.Root(), 0); }
  void AfterReset() override {
    changing_ = nullptr;
    root_ = Copy(*document_.Root());
    ++resets;
  }
  void SelectionMoved() override {
    EXPECT_EQ(changing_, nullptr);
    ++selection_moves;
  }

  /// The document shows what was told.
  void Check() const {
    EXPECT_EQ(changing_, nullptr) << "a call without its second half";
    EXPECT_EQ(root_.Dump(), Copy(*document_.Root()).Dump());
    EXPECT_EQ(document_.NodeCount(), root_.Count());
  }

  int resets = 0;
  int selection_moves = 0;

 protected:
  Document& document_;

 private:
  struct Copy {
    explicit Copy(const Node& node) : text(node.Text()) {
      for (int row = 0; row < node.ChildCount(); ++row) {
        EXPECT_EQ(node.Child(row)->Row(), row);
        EXPECT_EQ(node.Child(row)->Parent(), &node);
        children.emplace_back(*node.Child(row));
      }
    }
    std::string Dump() const {
      std::string dump = text + "{";
      for (const Copy& child : children) dump += child.Dump();
      return dump + "}";
    }
    std::size_t Count() const {
      std::size_t count = 1;
      for (const Copy& child : children) count += child.Count();
      return count;
    }
    std::string text;
    std::vector<Copy> children;
  };

  Copy& Of(const Node& node) {
    return node.Parent() == nullptr ? root_ : Of(*node.Parent()).children[static_cast<std::size_t>(node.Row())];
  }
  void Open(const Node& node, int row) {
    EXPECT_EQ(changing_, nullptr) << "changes overlap";
    changing_ = &node;
    row_ = row;
  }

  Copy root_;
  const Node* changing_ = nullptr;
  int row_ = 0;
};

}  // namespace tme
