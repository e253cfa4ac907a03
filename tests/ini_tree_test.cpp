#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "IniTreeProbe.h"
#include "documents/ini/IniOrder.h"
#include "documents/ini/IniTree.h"

using namespace std::string_literals;

namespace tme {
namespace {

// Each group compares equal within itself and comes before the next.
// clang-format off
const std::vector<std::vector<std::string>> kAscending = {
    {""}, {"\0"s}, {" "}, {"1"}, {"10"}, {"["}, {"_"}, {"a", "A"}, {"a\0"s, "A\0"s},
    {"abcdefgh", "ABCDEFGH"}, {"abcdefgh1", "ABCDEFGH1"}, {"abcdefghi", "AbcdefghI"}, {"abcdefgz", "ABCDEFGZ"},
    {"abcä", "ABCÄ"}, {"k", "K", "\u212A"}, {"kelvin 1", "\u212Aelvin 1"}, {"s", "S", "ſ"}, {"sa", "ſA"}, {"z", "Z"},
    {"{"}, {"\x7F"}, {"\u0080"}, {"ß", "ẞ"}, {"ä", "Ä"}, {"ÿ", "Ÿ"}, {"ā", "Ā"}, {"İ"}, {"ı"}, {"σ", "ς", "Σ"}, {"я", "Я"},
    {"\U00010428", "\U00010400"}, {"\U0010FFFF"}, {"\x80"}, {"\xC3"}, {"\xC3z"}, {"\xED\xA0\x80"},
    {"\xF4\x90\x80\x80"}};
// clang-format on

TEST(IniOrder, FoldsCodePointByCodePoint) {
  std::vector<std::pair<std::size_t, std::string>> texts;
  for (std::size_t i = 0; i < kAscending.size(); ++i) {
    for (const std::string& text : kAscending[i]) texts.emplace_back(i, text);
  }
  for (const auto& [i, left] : texts) {
    for (const auto& [j, right] : texts) {
      EXPECT_EQ(CompareFolded(left, right), i < j ? -1 : i > j ? 1 : 0) << left << " : " << right;
      const bool tie = FoldedPrefix(left) == FoldedPrefix(right);  // leaves it open
      EXPECT_TRUE(tie || (FoldedPrefix(left) < FoldedPrefix(right)) == (i < j)) << left << " : " << right;
    }
  }
}

TEST(IniOrder, ReadingAddingAndAStableSortAgree) {
  const std::string pieces[] = {"a", "A", "b", "zz", "Z", "ä", "Ä", "\u212A", "k", "\xFF", "="s, "\0"s};
  std::mt19937 random(1);
  std::vector<std::string> texts;
  IniTree added;
  IniNode* section = added.AddSection("S");
  std::string file = "[S]\n";
  for (int i = 0; i < 3000; ++i) {
    std::string text = random() % 2 == 0 ? "x" + std::string(70, 'y') : "x";  // so long that sorting by bytes gives in
    for (auto count = random() % 12; count > 0; --count) text += pieces[random() % std::size(pieces)];
    file += text + "\n";
    added.AddLine(section, text, IniTag::Value);
    texts.push_back(text);
  }
  IniTree read;
  ReadInto(read, file);
  std::ranges::stable_sort(texts, [](const auto& left, const auto& right) { return CompareFolded(left, right) < 0; });
  std::string expected = "[S";
  for (const std::string& text : texts) expected += "|" + text;
  EXPECT_EQ(Dump(added), expected + "]");
  EXPECT_EQ(Dump(read), expected + "]");
}

using T = IniTree&;

struct EditCase {
  const char* file;
  const char* selected;
  std::function<void(T)> edit;
  const char* expected;
  const char* selects = "New INI File";
};

void RunCase(const EditCase& test) {
  SCOPED_TRACE(std::string(test.file) + "selected: " + test.selected);
  IniTree tree;
  ReadInto(tree, test.file);
  tree.Select(FindNode(tree, test.selected));
  const std::string selected(tree.Selected()->Text());
  IniMirror mirror(tree);
  const IniState before(tree);
  const bool changes = before.dump != test.expected;
  test.edit(tree);
  EXPECT_EQ(Dump(tree), test.expected);
  EXPECT_EQ(tree.Selected()->Text(), test.selects);
  EXPECT_EQ(mirror.selection_moves, selected == test.selects ? 0 : 1);
  EXPECT_EQ(tree.Revision() > before.revision, changes);
  mirror.Check();
  // All of it is undone and redone.
  const IniState after(tree);
  while (tree.CanUndo()) tree.Undo(), mirror.Check();
  EXPECT_EQ(IniState(tree), before);
  while (tree.CanRedo()) tree.Redo(), mirror.Check();
  EXPECT_EQ(IniState(tree), after);
}

TEST(IniTree, Edits) {
  const auto remove_selected = [](T t) { t.Remove(t.Selected()); };
  const auto remove_s = [](T t) { t.Remove(FindNode(t, "s")); };
  const auto changed = [](auto then) { return [then](T t) { t.SetText(FindNode(t, "a"), "z"), then(t); }; };
  const EditCase cases[] = {
      // A new child goes to its place, behind its equals.
      {"[b]\n[d]\n", "", [](T t) { t.AddSection("C"); }, "[b][C][d]"},
      {"[s]\na\nA\n", "", [](T t) { t.AddLine(t.Root()->Child(0), "a", IniTag::Comments); }, "[s|a|A|(a)]"},
      {"[s]\n", "", [](T t) { t.AddLine(t.Root(), ";c", IniTag::Comments); }, "(;c)[s]"},
      {";c\n[b]\nz\na\n[a]\n", "", [](T t) { t.AddLineToAllSections("M", IniTag::Value); }, "(;c)[a|M][b|a|M|z]"},
      {"[s]\na\nb\nc\n", "b", [](T t) { t.SetEntry(FindNode(t, "b"), ";b", "1"); }, "[s|(;b=1)|a|c]", ";b=1"},
      // Where the selection goes: next, previous, parent.
      {"[s]\na\nb\nc\n", "b", remove_selected, "[s|a|c]", "c"},
      {"[s]\na\nb\n", "b", remove_selected, "[s|a]", "a"},
      {"[s]\na\n", "a", remove_selected, "[s]", "s"},
      {"[s]\na\n[t]\nb\n", "a", remove_s, "[t|b]", "t"},
      {"[s]\na\n[t]\nb\n", "b", remove_s, "[t|b]", "b"},
      // A section that is overwritten takes every equal text with it, in its case.
      {";x\n[x]\na\n[y]\nx\nX\nx\n", "", [](T t) { ReadInto(t, "[x]\n"); }, "(;x)[x][y|X]"},
      {";c\n[a]\nx\n", "x", [](T t) { t.Clear(); }, ""},
      // A changed text stays where it is until the next child comes.
      {"[a]\n[b]\n", "", changed([](T) {}), "[z][b]"},
      {"[a]\n[b]\n", "", changed([](T t) { t.AddSection("c"); }), "[b][c][z]"},
      {"[a]\n[b]\n", "", changed([](T t) { ReadInto(t, "[y]\nx\n"); }), "[b][y|x][z]"},
      {"[s]\na\nb\n", "", changed([](T t) { t.AddLineToAllSections("c", IniTag::Value); }), "[s|b|c|z]"},
  };
  for (const EditCase& test : cases) RunCase(test);
}

TEST(IniTree, RemovesWhatBeginsWithTheSelectedKey) {
  const auto remove = [](T t) { t.RemoveSelectedKey(); };
  const EditCase cases[] = {
      // Longer keys, sections and comments too; exact, bytewise; a text without "=" is the key; an empty key fits all.
      {";Fo\n[Fonts]\nx=1\n[s]\nFont=Arial\nFontSize=10\n;Font\nfont=2\nF=1\n", "F=1", remove,
       "(;Fo)[s|(;Font)|font=2]", "font=2"},
      {"[s]\nKey=1\nkey=2\nKEYS=3\n[t]\nKey\nKey =1\n", "Key=1", remove, "[s|key=2|KEYS=3][t]", "key=2"},
      {"[s]\nab\na=1\nabc\n", "ab", remove, "[s|a=1]", "a=1"},
      {"[b]\n=1\na\n[a]\nc\n", "=1", remove, "[b]", "b"},
      // All sections, wherever the selected entry stands in its own.
      {"[a]\nk=1\n[b]\nk=2\n[c]\nk=3\n", "k=1", remove, "[a][b][c]", "a"},
      {"[a]\nk=1\n[b]\nk=2\n[c]\nk=3\n", "k=3", remove, "[a][b][c]", "c"},
      {"[s]\nk=1\nm\nk=2\n[t]\nk=3\n", "k=2", remove, "[s|m][t]", "m"},
      {"[s]\nk=1\n[t]\nk=2\n;c\n", "k=2", remove, "[s][t|(;c)]", ";c"},
      {"[a]\nk1\n[kk]\nb\nk\n", "k", remove, "[a]", "a"},
      // The walk goes backwards through the file until no entry is left.
      {";k\n[kk]\n;k\n[s]\nk=1\n[k]\n;c\nk=0\n", "k=0", remove, "(;k)[kk|(;k)][s]", "kk"},
      // Not on a section or a comment.
      {"[s]\ns=1\n", "s", remove, "[s|s=1]", "s"},
      {"[s]\n;s=1\n", ";s=1", remove, "[s|(;s=1)]", ";s=1"},
  };
  for (const EditCase& test : cases) RunCase(test);
}

TEST(IniTree, AMirrorFollowsAnySequenceOfEdits) {
  std::mt19937 random(2);
  IniTree tree;
  IniMirror mirror(tree);
  const auto any_node = [&] {
    IniNode* node = tree.Root();
    while (node->ChildCount() > 0 && random() % 4 != 0) {
      node = node->Child(static_cast<int>(random() % static_cast<unsigned>(node->ChildCount())));
    }
    return node;
  };
  using Text = const std::string&;
  const std::function<void(IniNode*, Text)> edits[] = {
      [&](IniNode*, Text text) { tree.AddSection(text); },
      [&](IniNode*, Text text) { tree.AddLineToAllSections(text, IniTag::Value); },
      [&](IniNode* node, Text text) { tree.SetText(node, text); },
      [&](IniNode*, Text text) { ReadInto(tree, "[" + text + "]\nb\na\n[" + text + "]\n" + text); },
      [&](IniNode* node, Text) { tree.Remove(node == tree.Root() ? tree.AddSection("gone") : node); },
      [&](IniNode*, Text) { tree.RemoveSelectedKey(); },
      [&](IniNode* node, Text text) {
        const bool is_entry = node->Tag() == IniTag::Value || node->Tag() == IniTag::Comments;
        if (is_entry) tree.SetEntry(node, ";" + text, text);
        if (!is_entry) tree.AddLine(node, text, node == tree.Root() ? IniTag::Comments : IniTag::Value);
      }};
  std::size_t largest = 0;
  for (int i = 0; i < 2000 && !HasFailure(); ++i) {
    tree.Select(any_node());
    edits[random() % std::size(edits)](any_node(), std::to_string(random() % 1000));
    largest = std::max(largest, tree.NodeCount());
    mirror.Check();
  }
  EXPECT_GT(largest, 100U) << "too little to be a test";
}

}  // namespace
}  // namespace tme
