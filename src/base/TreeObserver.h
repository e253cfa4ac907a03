#pragma once

namespace tme {

/// Learns of every change of a tree of nodes, so that an item model can mirror it. Calls come in pairs around a change.
/// By itself it does nothing.
template <class Node>
class TreeObserver {
 public:
  virtual ~TreeObserver() = default;
  virtual void BeforeInsert(const Node& /*parent*/, int /*row*/) {}
  virtual void AfterInsert() {}
  virtual void BeforeRemove(const Node& /*node*/) {}
  virtual void AfterRemove() {}
  virtual void TextChanged(const Node& /*node*/) {}
  /// Many nodes change at once.
  virtual void BeforeReset() {}
  virtual void AfterReset() {}
  /// The selected node changed by itself because the one selected before was removed.
  virtual void SelectionMoved() {}
};

}  // namespace tme
