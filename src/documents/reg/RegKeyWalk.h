#pragma once

#include <string>
#include <string_view>

#include "documents/reg/RegDocument.h"

namespace tme {

/// Whether a node is `top` or stands below it.
inline bool IsAtOrBelow(const RegNode* node, const RegNode* top) {
  while (node != nullptr && node != top) node = node->Parent();
  return node == top;
}

/// Visits every node from top downwards: enter(node) before its children, leave(node) after them. There is no
/// recursion, so 100,000 levels are fine. Ends with false as soon as enter gives false.
template <typename Enter, typename Leave>
bool WalkKeys(const RegNode& top, Enter enter, Leave leave) {
  const RegNode* node = &top;
  if (!enter(top)) return false;
  while (true) {
    if (node->ChildCount() > 0) {
      node = node->Child(0);
    } else {
      while (node != &top && node->Row() + 1 == node->Parent()->ChildCount()) {
        leave(*node);
        node = node->Parent();
      }
      if (node == &top) break;
      leave(*node);
      node = node->Parent()->Child(node->Row() + 1);
    }
    if (!enter(*node)) return false;
  }
  leave(top);
  return true;
}

/// As WalkKeys, where nothing is to be done after the children.
template <typename Enter>
bool WalkKeys(const RegNode& top, Enter enter) {
  return WalkKeys(top, enter, [](const RegNode&) {});
}

/// Visits every node of a document from the root downwards, with its KeyPath: enter(node, path).
template <typename Enter>
bool WalkKeyPaths(const RegNode& root, Enter enter) {
  std::string path;
  const auto separator = [&root](const RegNode& node) {
    return node.Tag() == RegTag::Branch || (node.Tag() > RegTag::Branch && node.Parent() != &root) ? 1U : 0U;
  };
  return WalkKeys(
      root,
      [&](const RegNode& node) {
        if (node.Parent() != nullptr) path.append(separator(node), '\\').append(node.Text());
        return enter(node, std::string_view(path));
      },
      [&](const RegNode& node) {
        if (node.Parent() != nullptr) path.resize(path.size() - node.Text().size() - separator(node));
      });
}

}  // namespace tme
