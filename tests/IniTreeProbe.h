#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "TreeMirror.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniTree.h"
#include "documents/ini/IniWriter.h"

namespace tme {

/// One line for the whole tree, without the root: "[Section|key=value|(;comment)](;comment of the root)".
inline std::string Dump(const IniNode& node) {
  std::string dump(node.Tag() == IniTag::OpenedFile ? "" : node.Text());
  for (int row = 0; row < node.ChildCount(); ++row) {
    dump += (node.Tag() == IniTag::Section ? "|" : "") + Dump(*node.Child(row));
  }
  return node.Tag() == IniTag::Section ? "[" + dump + "]" : node.Tag() == IniTag::Comments ? "(" + dump + ")" : dump;
}
inline std::string Dump(const IniTree& tree) { return Dump(*tree.Root()); }

/// First node of this text, the root's children before their own children; the root when there is none.
inline IniNode* FindNode(const IniTree& tree, std::string_view text) {
  std::vector<IniNode*> nodes = {tree.Root()};
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i]->Text() == text) return nodes[i];
    for (int row = 0; row < nodes[i]->ChildCount(); ++row) nodes.push_back(nodes[i]->Child(row));
  }
  return tree.Root();
}

/// Reads at the selected node, the root of a new tree; overwrites duplicates.
inline IniReadResult ReadInto(IniTree& tree, std::string text) {
  return ReadIni(tree, std::move(text), {[](std::string_view) { return true; }});
}

/// Reads a text into whole holding.
inline void ReadWhole(IniTree& tree, std::string text) {
  tree.Reset("f.ini", Holding::Whole);
  ReadWholeIni(tree, std::move(text));
}

inline std::string WholeText(const IniTree& tree) {
  std::string text;
  EXPECT_TRUE(WriteIni(tree, [&](std::string_view part) { return text += part, true; }));
  return text;
}

/// All that undo brings back.
struct IniState {
  explicit IniState(const IniTree& tree)
      : dump(Dump(tree)),
        text(WholeText(tree)),
        selected(tree.Selected()),
        counts(tree.NodeCount(), tree.SectionCount()),
        revision(tree.Revision()) {}
  bool operator==(const IniState&) const = default;
  friend void PrintTo(const IniState& state, std::ostream* out) {
    *out << state.dump << "\n"
         << state.text << "\nselected " << state.selected->Text() << " of " << state.counts.first << ", revision "
         << state.revision;
  }
  std::string dump, text;
  const IniNode* selected;
  std::pair<std::size_t, std::size_t> counts;
  std::uint64_t revision;
};

using IniMirror = TreeMirror<IniTree, IniNode, IniTreeObserver>;

}  // namespace tme
