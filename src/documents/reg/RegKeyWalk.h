#pragma once

#include "documents/reg/RegDocument.h"

namespace tme {

/// Every node from top downwards, a key before its children: enter(node) first, leave(node) after its last child.
/// Needs no memory for the way back, so 100,000 levels are fine. Ends with false as soon as enter gives false.
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

}  // namespace tme
