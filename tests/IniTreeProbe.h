#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

#include "TreeMirror.h"
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

using IniMirror = TreeMirror<IniTree, IniNode, IniTreeObserver>;

}  // namespace tme
