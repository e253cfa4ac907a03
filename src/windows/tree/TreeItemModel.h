#pragma once

#include <QAbstractItemModel>

#include "base/TreeObserver.h"

namespace tme {

/// The part of TreeItemModel that needs no type of node.
class TreeItemModelBase : public QAbstractItemModel {
  Q_OBJECT

 public:
  using QAbstractItemModel::QAbstractItemModel;
  /// True while the tree changes: what a view selects by itself meanwhile does not count.
  bool IsChanging() const { return changing_; }
  int columnCount(const QModelIndex& = {}) const override { return 1; }
  bool hasChildren(const QModelIndex& parent = {}) const override { return rowCount(parent) > 0; }

 signals:
  /// The tree selected another node because the selected one was removed.
  void SelectionMovedByTree();

 protected:
  bool changing_ = false;
};

/// Shows a document's tree to a tree view: one column, the root as the only top-level row. Holds nothing of its own; it
/// is the tree's observer for as long as it lives, so it must go before the tree does.
/// Tree: Root, SetObserver. Node: Parent, Row, ChildCount, Child.
template <class Tree, class Node, class Observer = TreeObserver<Node>>
class TreeItemModel : public TreeItemModelBase, protected Observer {
 public:
  explicit TreeItemModel(Tree& tree, QObject* parent = nullptr) : TreeItemModelBase(parent), tree_(tree) {
    tree_.SetObserver(this);
  }
  ~TreeItemModel() override { tree_.SetObserver(nullptr); }

  QModelIndex IndexOf(const Node* node) const { return node ? createIndex(node->Row(), 0, node) : QModelIndex(); }
  /// Null for an index that is not valid.
  static Node* NodeOf(const QModelIndex& index) { return static_cast<Node*>(index.internalPointer()); }

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override {
    if (column != 0 || row < 0) return {};
    const Node* above = NodeOf(parent);
    if (!above) return row == 0 ? IndexOf(tree_.Root()) : QModelIndex();
    return row < above->ChildCount() ? createIndex(row, 0, above->Child(row)) : QModelIndex();
  }
  QModelIndex parent(const QModelIndex& child) const override {
    const Node* node = NodeOf(child);
    return node ? IndexOf(node->Parent()) : QModelIndex();
  }
  int rowCount(const QModelIndex& parent = {}) const override {
    const Node* node = NodeOf(parent);
    return node ? node->ChildCount() : 1;
  }

 protected:
  void BeforeInsert(const Node& parent, int row) override {
    changing_ = true;
    beginInsertRows(IndexOf(&parent), row, row);
  }
  void AfterInsert() override {
    endInsertRows();
    changing_ = false;
  }
  void BeforeRemove(const Node& node) override {
    changing_ = true;
    beginRemoveRows(IndexOf(node.Parent()), node.Row(), node.Row());
  }
  void AfterRemove() override {
    endRemoveRows();
    changing_ = false;
  }
  void TextChanged(const Node& node) override { emit dataChanged(IndexOf(&node), IndexOf(&node)); }
  void BeforeReset() override {
    changing_ = true;
    beginResetModel();
  }
  void AfterReset() override {
    endResetModel();
    changing_ = false;
  }
  void SelectionMoved() override { emit SelectionMovedByTree(); }

  Tree& tree_;
};

}  // namespace tme
