#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "IniTreeProbe.h"
#include "ini/IniOrder.h"
#include "ini/IniTree.h"

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
  for (std::size_t i = 0; i < kAscending.size(); ++i) {
    for (std::size_t j = 0; j < kAscending.size(); ++j) {
      for (const std::string& left : kAscending[i]) {
        for (const std::string& right : kAscending[j]) {
          const int expected = i < j ? -1 : i > j ? 1 : 0;
          EXPECT_EQ(CompareFolded(left, right), expected) << left << " : " << right;
          // A prefix may leave it open, but never say otherwise.
          if (FoldedPrefix(left) != FoldedPrefix(right)) {
            EXPECT_EQ(FoldedPrefix(left) < FoldedPrefix(right), expected < 0) << left << " : " << right;
          }
        }
      }
    }
  }
}

std::string RandomText(std::mt19937& random) {
  static const std::vector<std::string> pieces = {"a", "A",      "b", "zz",   "Z",  "ä",
                                                  "Ä", "\u212A", "k", "\xFF", "="s, "\0"s};
  std::string text =
      random() % 2 == 0 ? "a common beginning of more than sixty-four bytes, so that sorting gives in" : "";
  for (auto count = random() % 12; count > 0; --count) text += pieces[random() % pieces.size()];
  return "x" + text;
}

TEST(IniOrder, ReadingAddingAndAStableSortAgree) {
  std::mt19937 random(1);
  std::vector<std::string> texts;
  for (int i = 0; i < 3000; ++i) texts.push_back(RandomText(random));
  IniTree read;
  IniTree added;
  IniNode* section = added.AddSection("S");
  std::string file = "[S]\n";
  for (const std::string& text : texts) {
    file += text + "\n";
    added.AddEntry(section, text, IniTag::Value);
  }
  ReadFile(read, file);

  std::ranges::stable_sort(texts, [](const auto& left, const auto& right) { return CompareFolded(left, right) < 0; });
  std::string expected = "[S";
  for (const std::string& text : texts) expected += "|" + text;
  EXPECT_EQ(Dump(added), expected + "]");
  EXPECT_EQ(Dump(read), expected + "]");
}

struct EditCase {
  const char* name;
  const char* file;
  const char* selected;
  std::function<void(IniTree&)> edit;
  const char* expected;
  const char* expected_selected;
  int selection_moves = 0;
};

const char kRoot[] = "New INI File";

const std::vector<EditCase> kEdits = {
    {"a section goes to its place", "[b]\n[d]\n", "", [](IniTree& t) { t.AddSection("C"); }, "[b][C][d]", kRoot},
    {"equal texts stay in order of arrival", "[s]\na\nA\n", "",
     [](IniTree& t) { t.AddEntry(t.Root()->Child(0), "a", IniTag::Comments); }, "[s|a|A|(a)]", kRoot},
    {"a comment of the root", "[s]\n", "", [](IniTree& t) { t.AddEntry(t.Root(), ";c", IniTag::Comments); }, "(;c)[s]",
     kRoot},
    {"every section, but no comment of the root, gets an entry", ";c\n[b]\nz\na\n[a]\n", "",
     [](IniTree& t) { t.AddEntryToAllSections("M=1", IniTag::Value); }, "(;c)[a|M=1][b|a|M=1|z]", kRoot},
    {"a changed text stays where it is", "[a]\n[b]\n", "", [](IniTree& t) { t.SetText(FindNode(t, "a"), "z"); },
     "[z][b]", kRoot},
    {"the next child sorts again", "[a]\n[b]\n", "",
     [](IniTree& t) {
       t.SetText(FindNode(t, "a"), "z");
       t.AddSection("c");
     },
     "[b][c][z]", kRoot},
    {"so does the next section that is read", "[a]\n[b]\n", "",
     [](IniTree& t) {
       t.SetText(FindNode(t, "a"), "z");
       ReadFile(t, "[y]\nx\n");
     },
     "[b][y|x][z]", kRoot},
    {"the next entry for all sorts again", "[s]\na\nb\n", "",
     [](IniTree& t) {
       t.SetText(FindNode(t, "a"), "z");
       t.AddEntryToAllSections("c", IniTag::Value);
     },
     "[s|b|c|z]", kRoot},
    {"an entry becomes a comment", "[s]\na\nb\nc\n", "b",
     [](IniTree& t) { t.ReplaceWithComment(FindNode(t, "b"), ";b"); }, "[s|(;b)|a|c]", ";b", 1},
    {"removed: the next sibling is selected", "[s]\na\nb\nc\n", "b", [](IniTree& t) { t.Remove(t.Selected()); },
     "[s|a|c]", "c", 1},
    {"removed: the previous one", "[s]\na\nb\n", "b", [](IniTree& t) { t.Remove(t.Selected()); }, "[s|a]", "a", 1},
    {"removed: the parent", "[s]\na\n", "a", [](IniTree& t) { t.Remove(t.Selected()); }, "[s]", "s", 1},
    {"removed with its section", "[s]\na\n[t]\nb\n", "a", [](IniTree& t) { t.Remove(FindNode(t, "s")); }, "[t|b]", "t",
     1},
    {"removed elsewhere: the selection stays", "[s]\na\n[t]\nb\n", "b", [](IniTree& t) { t.Remove(FindNode(t, "s")); },
     "[t|b]", "b"},
    {"equal texts go everywhere, in their case", ";x\n[x]\na\n[y]\nx\nX\nx\n", "x",
     [](IniTree& t) { t.RemoveTextEqualTo("x"); }, "(;x)[y|X]", "y", 1},
    {"equal texts: with the section of the selected entry", "[x]\na\n[y]\n", "a",
     [](IniTree& t) { t.RemoveTextEqualTo("x"); }, "[y]", "y", 1},
    {"equal text: the root stays", "[a]\n", "", [](IniTree& t) { t.RemoveTextEqualTo(kRoot); }, "[a]", kRoot},
    {"cleared", ";c\n[a]\nx\n", "x", [](IniTree& t) { t.Clear(); }, "", kRoot, 1},
    {"used again after clearing", "[a]\nx\n", "",
     [](IniTree& t) {
       t.Clear();
       t.AddEntryToAllSections("nowhere", IniTag::Value);
       t.AddSection("b");
     },
     "[b]", kRoot},
};

void RunEdit(const EditCase& test) {
  SCOPED_TRACE(test.name);
  IniTree tree;
  ReadFile(tree, test.file);
  tree.Select(FindNode(tree, test.selected));
  IniMirror mirror(tree);
  const std::uint64_t revision = tree.Revision();
  const bool changes = Dump(tree) != test.expected;
  test.edit(tree);
  EXPECT_EQ(Dump(tree), test.expected);
  EXPECT_EQ(tree.Selected()->Text(), test.expected_selected);
  EXPECT_EQ(mirror.selection_moves, test.selection_moves);
  EXPECT_EQ(tree.Revision() > revision, changes);
  mirror.Check();
}

TEST(IniTree, Edits) {
  for (const EditCase& test : kEdits) RunEdit(test);
}

// Creation is the order of the file; the walk goes backwards and stops once the selection is not on an entry.
const std::vector<EditCase> kWalks = {
    {"longer keys, sections and comments that begin with it go too",
     ";Fo\n[Fonts]\nx=1\n[s]\nFont=Arial\nFontSize=10\n;Font\nfont=2\nF=1\n",
     "F=1",
     {},
     "(;Fo)[s|(;Font)|font=2]",
     "font=2",
     1},
    {"exact, bytewise",
     "[s]\nKey=1\nkey=2\nKEYS=3\n[t]\nKey\nKey =1\n",
     "Key=1",
     {},
     "[s|key=2|KEYS=3][t]",
     "key=2",
     1},
    {"a text without '=' is the key", "[s]\nab\na=1\nabc\n", "ab", {}, "[s|a=1]", "a=1", 1},
    {"the next selected is an entry: on it goes", "[s]\nk=1\nm\nk=2\n[t]\nk=3\n", "k=2", {}, "[s|m][t]", "m", 1},
    {"the previous one that is left", "[s]\nb\nk=1\nk=0\n", "k=1", {}, "[s|b]", "b", 1},
    {"the next selected is a comment: it stops", "[s]\nk=1\n[t]\nk=2\n;c\n", "k=2", {}, "[s|k=1][t|(;c)]", ";c", 1},
    {"the parent is next: it stops", "[s]\nk=1\n[t]\nk=2\n", "k=2", {}, "[s|k=1][t]", "t", 1},
    {"its section goes: it stops", "[a]\nk1\n[kk]\nb\nk\n", "k", {}, "[a|k1]", "a", 1},
    {"an empty key is the beginning of all", "[b]\n=1\na\n[a]\nc\n", "=1", {}, "[b]", "b", 1},
    {"not on a section", "[s]\ns=1\n", "s", {}, "[s|s=1]", "s"},
    {"not on a comment", "[s]\n;s=1\n", ";s=1", {}, "[s|(;s=1)]", ";s=1"},
};

TEST(IniTree, RemovesWhatBeginsWithTheSelectedKey) {
  for (EditCase test : kWalks) {
    test.edit = [](IniTree& tree) { tree.RemoveStartingWithSelectedKey(); };
    RunEdit(test);
  }
}

TEST(IniTree, FollowsTheSelectionThroughALongListInLinearTime) {
  std::string file = "[s]\n";
  for (int i = 0; i < 200'000; ++i) file += "k" + std::to_string((i * 7919) % 200'000) + "\n";
  IniTree tree;
  ReadFile(tree, file + "k\n");
  tree.Select(FindNode(tree, "k"));
  tree.RemoveStartingWithSelectedKey();
  EXPECT_EQ(Dump(tree), "[s]");
  EXPECT_EQ(tree.Selected()->Text(), "s");
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
  const std::vector<std::function<void(IniNode*, const std::string&)>> edits = {
      [&](IniNode*, const std::string& text) { tree.AddSection(text); },
      [&](IniNode*, const std::string& text) { tree.AddEntryToAllSections(text, IniTag::Value); },
      [&](IniNode* node, const std::string& text) { tree.SetText(node, text); },
      [&](IniNode* node, const std::string&) { tree.RemoveTextEqualTo(node->Text()); },
      [&](IniNode*, const std::string& text) { ReadFile(tree, "[" + text + "]\nb\na\n[" + text + "]\n" + text); },
      [&](IniNode* node, const std::string&) {
        if (node != tree.Root()) tree.Remove(node);
      },
      [&](IniNode*, const std::string&) { tree.RemoveStartingWithSelectedKey(); },
      [&](IniNode* node, const std::string& text) {
        const bool is_entry = node->Tag() == IniTag::Value || node->Tag() == IniTag::Comments;
        if (is_entry) tree.ReplaceWithComment(node, text);
        if (!is_entry) tree.AddEntry(node, text, node == tree.Root() ? IniTag::Comments : IniTag::Value);
      }};
  std::size_t largest = 0;
  for (int i = 0; i < 2000 && !HasFailure(); ++i) {
    tree.Select(any_node());
    edits[random() % edits.size()](any_node(), std::to_string(random() % 1000));
    largest = std::max(largest, tree.NodeCount());
    mirror.Check();
  }
  EXPECT_GT(largest, 100U) << "too little to be a test";
}

TEST(IniTree, KeysAndExpansion) {
  IniTree tree("WIN.INI");
  ReadFile(tree, "[b]\nk=v=w\nplain\n[a]\n");
  EXPECT_EQ(tree.Root()->Key(), "Primary");
  EXPECT_NE(tree.Root()->Child(0)->Key(), tree.Root()->Child(1)->Key());
  const IniNode* entry = FindNode(tree, "k=v=w");
  EXPECT_EQ(entry->Key(), "");
  EXPECT_EQ(entry->EntryKey(), "k");
  EXPECT_EQ(entry->EntryValue(), "v=w");
  EXPECT_EQ(FindNode(tree, "plain")->EntryKey(), "plain");
  EXPECT_FALSE(tree.IsUniqueSectionName("a"));
  EXPECT_TRUE(tree.IsUniqueSectionName("A"));

  tree.ExpandAll();
  EXPECT_TRUE(tree.Root()->Child(1)->Expanded());
  tree.CollapseAll();
  EXPECT_FALSE(tree.Root()->Child(1)->Expanded());
  EXPECT_TRUE(tree.Root()->Expanded());

  tree.Reset("OTHER.INI");
  EXPECT_EQ(tree.Root()->Text(), "OTHER.INI");
  EXPECT_EQ(tree.SectionCount(), 0U);
}

}  // namespace
}  // namespace tme
