#pragma once

namespace tme {

/// The order in which a tree is shown: each node before its children. Node: Parent, Row, ChildCount, Child.

/// Null behind the last one.
template <class Node>
const Node* NextInTree(const Node* node) {
  if (node->ChildCount() > 0) return node->Child(0);
  while (node->Parent() != nullptr && node->Row() + 1 == node->Parent()->ChildCount()) node = node->Parent();
  return node->Parent() == nullptr ? nullptr : node->Parent()->Child(node->Row() + 1);
}

/// Both are nodes of one tree. Costs a walk up from each.
template <class Node>
bool IsBeforeInTree(const Node* one, const Node* other) {
  const auto depth_of = [](const Node* node) {
    int depth = 0;
    while ((node = node->Parent()) != nullptr) ++depth;
    return depth;
  };
  if (one == other) return false;
  int depth = depth_of(one), other_depth = depth_of(other);
  // Of a node and one below it the upper one comes first.
  const bool is_higher = depth < other_depth;
  for (; depth > other_depth; --depth) one = one->Parent();
  for (; other_depth > depth; --other_depth) other = other->Parent();
  if (one == other) return is_higher;
  while (one->Parent() != other->Parent()) {
    one = one->Parent();
    other = other->Parent();
  }
  return one->Row() < other->Row();
}

}  // namespace tme
