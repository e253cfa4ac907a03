#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "IniTreeProbe.h"

namespace tme {
namespace {

/// Of texts of nodes.
std::vector<IniNode*> NodesOf(const IniTree& tree, const std::vector<std::string_view>& texts) {
  std::vector<IniNode*> nodes;
  for (const std::string_view text : texts) nodes.push_back(FindNode(tree, text));
  return nodes;
}

TEST(IniMany, NodesGoTogetherAndComeBack) {
  constexpr auto kStay = IniComments::Stay, kGo = IniComments::GoAlong;
  const struct {
    const char* text;
    std::vector<std::string_view> gone;
    IniComments comments;
    const char* source;
    const char* left;
  } cases[] = {
      {"a\n;b\nb\nc\n[s]\nd", {"b", "d"}, kGo, ";b\nb\nd\n", "a\nc\n[s]\n"},
      {"a\n;b\nb\nc\n[s]\nd", {"b", "d"}, kStay, ";b\nb\nd\n", "a\n;b\nc\n[s]\n"},
      {"a\n;b\nb\n", {";b", "b"}, kGo, ";b\nb\n", "a\n"},
      {"[s]\na\n\n;t\n[t]\nb\n\n;u\n[u]\n", {"s", "t"}, kStay, "[s]\na\n\n;t\n[t]\nb\n\n", ";u\n[u]\n"},
      {"[s]\na\n\n;t\n[t]\nb\n\n;u\n[u]\n", {"s", "u"}, kGo, "[s]\na\n\n;u\n[u]\n", ";t\n[t]\nb\n\n"},
      {"[s]\na\n[t]\nb\n[u]\nc\n", {"b", "s", "c"}, kGo, "b\nc\n[s]\na\n", "[t]\n[u]\n"},
      {"k\n\n;s\n[s]\nx", {"s", "k"}, kGo, "k\n;s\n[s]\nx\n", "\n"},
  };
  for (const auto& [text, gone, comments, source, left] : cases) {
    IniTree tree;
    ReadWhole(tree, text);
    tree.Select(FindNode(tree, gone[0]));
    const IniState before(tree);
    const std::vector<IniNode*> nodes = NodesOf(tree, gone);
    EXPECT_EQ(tree.SourceOf(nodes), source);
    IniMirror mirror(tree);
    tree.Remove(nodes, comments);
    mirror.Check();
    EXPECT_EQ(WholeText(tree), left);
    tree.Undo();
    EXPECT_EQ(IniState(tree), before);
  }
}

TEST(IniMany, WhatIsLeftIsWhatAReaderMakesOfIt) {
  for (unsigned seed = 0; seed < 300 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::string text;
    constexpr const char* kLines[] = {"[s]", "[t]", ";c", "", "k=1", "l"};
    for (int line = 0; line < 25; ++line) text.append(kLines[random() % std::size(kLines)]).append("\n");
    const bool is_whole = seed % 4 != 0;
    IniTree tree;
    if (is_whole)
      ReadWhole(tree, text);
    else
      ReadInto(tree, "[s]\n" + text);
    const IniState before(tree);
    std::vector<IniNode*> nodes;
    for (int row = 0; row < tree.Root()->ChildCount(); ++row) {
      IniNode* child = tree.Root()->Child(row);
      if (random() % 3 == 0) {
        nodes.push_back(child);
        continue;
      }
      for (int entry = 0; entry < child->ChildCount(); ++entry)
        if (random() % 3 == 0) nodes.push_back(child->Child(entry));
    }
    IniMirror mirror(tree);
    tree.Remove(nodes, random() % 2 == 0 ? IniComments::Stay : IniComments::GoAlong);
    mirror.Check();
    if (is_whole) {
      IniTree again;
      ReadWhole(again, WholeText(tree));
      EXPECT_EQ(Dump(tree), Dump(again)) << text;
    }
    tree.Undo();
    EXPECT_EQ(IniState(tree), before);
  }
}

TEST(IniMany, LinesAreAddedTogether) {
  IniTree tree;
  ReadInto(tree, "[s]\nm\n");
  const std::string_view lines[] = {"z=1", ";c", "a"};
  tree.AddLines(FindNode(tree, "s"), lines);
  EXPECT_EQ(Dump(tree), "[s|(;c)|a|m|z=1]");
  tree.Undo();
  EXPECT_EQ(Dump(tree), "[s|m]");
}

}  // namespace
}  // namespace tme
