#pragma once

namespace tme {

/// Learns of every change of a tree of nodes, so that an item model can mirror it. Calls come in pairs around a change.
template <class Node>
class TreeObserver {
 public:
  virtual ~TreeObserver() = default;
  virtual void BeforeInsert(const Node& parent, int row) = 0;
  virtual void AfterInsert() = 0;
  virtual void BeforeRemove(const Node& node) = 0;
  virtual void AfterRemove() = 0;
  virtual void TextChanged(const Node& node) = 0;
  /// Many nodes change at once.
  virtual void BeforeReset() = 0;
  virtual void AfterReset() = 0;
  /// The selected node changed by itself because the one selected before was removed.
  virtual void SelectionMoved() = 0;
};

/// The observer of a tree that nobody watches.
template <class Node, class Observer = TreeObserver<Node>>
class SilentTreeObserver : public Observer {
 public:
  void BeforeInsert(const Node&, int) override {}
  void AfterInsert() override {}
  void BeforeRemove(const Node&) override {}
  void AfterRemove() override {}
  void TextChanged(const Node&) override {}
  void BeforeReset() override {}
  void AfterReset() override {}
  void SelectionMoved() override {}
};

}  // namespace tme
