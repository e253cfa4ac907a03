#pragma once

#include <cstddef>

#include "documents/ini/IniTree.h"

namespace tme::fuzz {

/// Some node of a tree, by any number.
inline IniNode* NodeAt(const IniTree& tree, std::size_t place) {
  place %= tree.NodeCount();
  for (int row = 0; row < tree.Root()->ChildCount(); ++row) {
    IniNode* child = tree.Root()->Child(row);
    if (place == 0) return child;
    const auto entries = static_cast<std::size_t>(child->ChildCount());
    if (place <= entries) return child->Child(static_cast<int>(place) - 1);
    place -= entries + 1;
  }
  return tree.Root();
}

}  // namespace tme::fuzz
