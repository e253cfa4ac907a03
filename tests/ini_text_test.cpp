#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <tuple>

#include "IniTreeProbe.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniWriter.h"

using namespace std::string_literals;

namespace tme {
namespace {

/// Only what is worth telling: "<end> @<line> lost <lines> blank <lines> overwritten <nodes> sections entries ".
std::string Told(const IniReadResult& result) {
  constexpr const char* kEnds[] = {"", "not taken ", "refused ", "one only ", "nothing added "};
  std::string told = kEnds[static_cast<std::size_t>(result.end)];
  const auto tell = [&told](const char* what, std::uint64_t count) {
    if (count > 0) told += what + std::to_string(count) + " ";
  };
  tell("@", result.ended_at_line);
  tell("lost ", result.lines_not_read);
  tell("blank ", result.blank_lines_dropped);
  tell("overwritten ", result.nodes_overwritten);
  tell("cut ", result.cut_headers);
  return told + (result.sections_reordered ? "sections " : "") + (result.entries_reordered ? "entries " : "");
}

struct ReadCase {
  std::string text, expected;
  const char* told = "";
  const char* selected = "New INI File";
  const char* selects = "New INI File";
};

void RunCase(const char* before, const ReadCase& test) {
  SCOPED_TRACE(testing::PrintToString(test.text) + " onto " + test.selected);
  IniTree tree;
  ReadInto(tree, before);
  IniMirror mirror(tree);
  tree.Select(FindNode(tree, test.selected));
  const std::uint64_t revision = tree.Revision();
  const bool changes = Dump(tree) != test.expected;
  EXPECT_EQ(Told(ReadInto(tree, test.text)), test.told);
  EXPECT_EQ(Dump(tree), test.expected);
  EXPECT_EQ(tree.Selected()->Text(), test.selects);
  EXPECT_TRUE(tree.Root()->Expanded());
  EXPECT_EQ(tree.Revision() > revision, changes);
  mirror.Check();
}

TEST(IniReader, ReadsFiles) {
  const ReadCase cases[] = {
      {"", ""},
      // Every line end counts, and nothing is trimmed.
      {"[a]\r\nx\r\n\ny\rz\n\r\n[b]\rw\r", "[a|x|y|z][b|w]", "blank 1 "},
      {"[a]\n\rx", "[a|x]", "blank 1 "},
      {"[ a ]\r\n x = 1 \r\n\tb\r\n [b]\r\n \r\n ;c\r\n", "[ a |\tb| | ;c| [b]| x = 1 ]", "entries "},
      {"[s]\n\0\n=\xFF\n\xC3\n"s, "[s|\0|=\xFF|\xC3]"s},
      // A header loses its last character, whatever it is.
      {"[Boot\n[]\n[b]]\n[c] x\n[d\xC3\xA9\n", "[][b]][Boo][c] ][d]", "cut 3 sections "},
      {"[", "[]"},
      // Comments, lines without "=", letter case.
      {"[s]\n;c=1\nplain\n==\n", "[s|(;c=1)|==|plain]", "entries "},
      {"[a]\nK\nk\n[A]\n", "[a|K|k][A]"},
      {"[s]\nB\na\nC\n", "[s|a|B|C]", "entries "},
      // One blank line after each section is written back.
      {"[a]\n\nx\n\n\n\n[b]\n[c]\n\n", "[a|x][b][c]", "blank 3 "},
      // Before the first section: one comment and no more.
      {";c\n\n[s]\nx\n", "(;c)[s|x]", "blank 1 "},
      {";c", "(;c)"},
      {";c\n\n;d\n[s]\nx\n", "(;c)", "not taken @3 lost 3 blank 1 "},
      {"x=1\n[s]\n", "", "not taken @1 lost 2 "},
      {"\r\n[s]\r\n", "", "not taken @1 lost 2 "},
      // The second of two equal sections stays, and overwriting removes that text everywhere.
      {"[b]\nx\ny\n[a]\n[b]\nz\n", "[a][b|z]", "overwritten 3 "},
      {"[a]\nc\nz\n[c]\nx\n[b]\nc\n[c]\nc\n", "[a|z][b][c|c]", "overwritten 4 "},
      {";c\n[;c]\nx\n", "[;c|x]", "overwritten 1 "},
  };
  for (const ReadCase& test : cases) RunCase("", test);
}

TEST(IniReader, Pastes) {
  const char root[] = "New INI File";
  const ReadCase cases[] = {
      {"[z]\r\n[a]\r\nx\r\n", "[a|x][m|(;c)|k=1|u][z]", "sections "},
      {";d\n[z]\n", "(;d)[m|(;c)|k=1|u][z]"},
      {"x", "[m|(;c)|k=1|u]", "not taken @1 lost 1 "},
      // Onto a section: sections, which select the root, or the first line, whatever it is.
      {"[z]\nx", "[m|(;c)|k=1|u][z|x]", "", "m", root},
      {"[a]", "[a][m|(;c)|k=1|u]", "", "m", "m"},
      {"[m]\nnew", "[m|new]", "overwritten 4 ", "m", root},
      {"n=1", "[m|(;c)|k=1|n=1|u]", "one only ", "m", "m"},
      {";n\n[z]\nx\n", "[m|(;c)|;n|k=1|u]", "one only @2 lost 2 ", "m", "m"},
      {"\r\n", "[m||(;c)|k=1|u]", "one only ", "m", "m"},
      {"", "[m|(;c)|k=1|u]", "", "m", "m"},
      // Onto an entry, whose section is selected then, or a comment.
      {"[z]\nx\n", "[m|(;c)|k=1|u]", "nothing added @1 lost 2 ", "k=1", "m"},
      {"[z]\n", "[m|(;c)|k=1|u]", "nothing added @1 lost 1 ", ";c", ";c"},
  };
  for (const ReadCase& test : cases) RunCase("[m]\n;c\nk=1\nu\n", test);
}

TEST(IniReader, TheTreeIsCompleteWhileTheQuestionStands) {
  IniTree tree;
  IniMirror mirror(tree);
  std::vector<std::string> asked;
  const IniQuestions ask{[&](std::string_view name) {
    mirror.Check();
    asked.push_back(std::string(name) + ": " + Dump(tree));
    return asked.size() == 1;
  }};
  const IniReadResult result = ReadIni(tree, "[b]\ny\nx\n[a]\nq\n\n[b]\nz\n[a]\nw\n\n[c]\n", ask);
  EXPECT_EQ(asked, (std::vector<std::string>{"b: [a|q][b|x|y]", "a: [a|q][b|z]"}));
  EXPECT_EQ(Told(result), "refused @9 lost 4 overwritten 3 entries ");
  EXPECT_EQ(Dump(tree), "[a|q][b|z]");
  EXPECT_FALSE(tree.Root()->Expanded());
  EXPECT_EQ(mirror.resets, 2);
  mirror.Check();
}

TEST(IniReader, TakesEveryLineOfATree) {
  for (const std::string text : {"[B]\nx=2\nx=1\n[A]\n;c\n", ";b\n;a\nk=1\n\n[A]\ny\nX\n[A]\n[\n"}) {
    IniTree tree("T");
    ReadEveryIniLine(tree, text);
    EXPECT_EQ(Dump(tree), text.starts_with('[') ? "[A|(;c)][B|x=1|x=2]" : "(;a)(;b)[A|X|y][A|[]k=1");
  }
}

TEST(IniWriter, SaysWhatAReaderWouldNotTakeBack) {
  using T = IniTree&;
  struct Case {
    const char* file;
    void (*edit)(T);
    IniReadBack expected;
  };
  const Case cases[] = {
      {";c\n[a]\nx\n;d\n", [](T) {}, {}},
      {"[a]\nx\n",
       [](T t) { t.AddLine(t.Root(), ";c", IniTag::Comments), t.AddLine(t.Root(), ";d", IniTag::Comments); },
       {.ends_at_line = 2}},
      {";c\n[a]\nx\n", [](T t) { t.SetText(FindNode(t, ";c"), "c"); }, {.ends_at_line = 1}},
      {";c\n[a]\nx\n", [](T t) { t.SetText(FindNode(t, ";c"), "[c"); }, {.headers = 1}},
      {"[a]\nx\n;d\n", [](T t) { t.SetText(FindNode(t, "x"), "[x=1"); }, {.headers = 1}},
      {"[a]\nx\n;d\n", [](T t) { t.SetText(FindNode(t, ";d"), "d"); }, {.other_kinds = 1}},
      {"[a]\nx\n", [](T t) { t.AddLine(FindNode(t, "a"), ";p", IniTag::Value); }, {.other_kinds = 1}},
      {"[a]\nx\n", [](T t) { t.AddLine(FindNode(t, "a"), "", IniTag::Value); }, {.blank_entries = 1}},
      {"[a]\n[b]\n[c]\n", [](T t) { t.SetText(FindNode(t, "b"), "a"); }, {.doubles = 1}},
  };
  for (const auto& [file, edit, expected] : cases) {
    IniTree tree;
    ReadInto(tree, file);
    edit(tree);
    const IniReadBack back = ReadBackOf(tree);
    const auto counts = [](const IniReadBack& b) {
      return std::array{b.ends_at_line, b.headers, b.doubles, b.other_kinds, b.blank_entries};
    };
    EXPECT_EQ(counts(back), counts(expected)) << WriteIni(tree);
    IniTree again;
    ReadInto(again, WriteIni(tree));
    EXPECT_EQ(Dump(again) == Dump(tree), back.IsSame()) << Dump(again);
  }
}

TEST(IniWriter, WritesWhatTheTreeShows) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"[a]", "[a]\r\n\r\n"},
      {"[b]\n\ny\n\nx=\n;c\n[A]\n", "[A]\r\n\r\n[b]\r\n;c\r\nx=\r\ny\r\n\r\n"},
      {";c\n[!]\n", ";c\r\n[!]\r\n\r\n"},  // comments of the root come first
      {"[x]]\n\0=\xFF\n"s, "[x]]\r\n\0=\xFF\r\n\r\n"s},
  };
  for (const auto& [file, expected] : cases) {
    IniTree tree;
    ReadInto(tree, file);
    const std::string written = WriteIni(tree);
    EXPECT_EQ(written, expected);

    IniTree again;
    const IniReadResult result = ReadInto(again, written);
    EXPECT_EQ(WriteIni(again), written);
    EXPECT_EQ(result.lines_not_read + result.blank_lines_dropped, 0U);
    EXPECT_FALSE(result.sections_reordered || result.entries_reordered);
  }
}

}  // namespace
}  // namespace tme
