#include <gtest/gtest.h>

#include "IniTreeProbe.h"
#include "ini/IniReader.h"

using namespace std::string_literals;

namespace tme {
namespace {

struct FileCase {
  const char* name;
  std::string text;
  std::string expected;
  IniReadResult result = {};
};

void ExpectResult(const IniReadResult& result, const IniReadResult& expected) {
  EXPECT_EQ(result.end, expected.end);
  EXPECT_EQ(result.ended_at_line, expected.ended_at_line);
  EXPECT_EQ(result.lines_not_read, expected.lines_not_read);
  EXPECT_EQ(result.blank_lines_dropped, expected.blank_lines_dropped);
  EXPECT_EQ(result.nodes_overwritten, expected.nodes_overwritten);
  EXPECT_EQ(result.sections_reordered, expected.sections_reordered);
  EXPECT_EQ(result.entries_reordered, expected.entries_reordered);
}

const std::vector<FileCase> kFiles = {
    {"empty", "", ""},
    {"line ends of all three kinds, mixed",
     "[a]\r\nx\r\n\ny\rz\n\r\n[b]\rw",
     "[a|x|y|z][b|w]",
     {.blank_lines_dropped = 1}},
    {"a lone CR at the end", "[a]\rx\r", "[a|x]"},
    {"LF CR is two ends", "[a]\n\rx", "[a|x]", {.blank_lines_dropped = 1}},
    {"nothing is trimmed",
     "[ a ]\r\n x = 1 \r\n\tb\r\n [b]\r\n \r\n ;c\r\n",
     "[ a |\tb| | ;c| [b]| x = 1 ]",
     {.entries_reordered = true}},
    {"header names lose their last character, whatever it is",
     "[Boot\n[]\n[b]]\n[c] x\n",
     "[][b]][Boo][c] ]",
     {.sections_reordered = true}},
    {"a bracket alone", "[", "[]"},
    {"comments and lines without '='", "[s]\n;c=1\nplain\n==\n", "[s|(;c=1)|==|plain]", {.entries_reordered = true}},
    {"case makes two sections; equal texts keep their order", "[a]\nK\nk\n[A]\n", "[a|K|k][A]"},
    {"sorted without regard to case", "[s]\nB\na\nC\n", "[s|a|B|C]", {.entries_reordered = true}},
    {"NUL and invalid bytes pass through", "[s]\n\0\n=\xFF\n\xC3\n"s, "[s|\0|=\xFF|\xC3]"s},
    {"blank lines: one after each section is written back",
     "[a]\n\nx\n\n\n\n[b]\n[c]\n\n",
     "[a|x][b][c]",
     {.blank_lines_dropped = 3}},
    {"a comment before the first section", ";c\n\n[s]\nx\n", "(;c)[s|x]", {.blank_lines_dropped = 1}},
    {"only such a comment", ";c", "(;c)"},
    {"a second line before the first section ends it",
     ";c\n\n;d\n[s]\nx\n",
     "(;c)",
     {.end = IniReadEnd::LineNotTaken, .ended_at_line = 3, .lines_not_read = 3, .blank_lines_dropped = 1}},
    {"an entry first", "x=1\n[s]\n", "", {.end = IniReadEnd::LineNotTaken, .ended_at_line = 1, .lines_not_read = 2}},
    {"an empty line first",
     "\r\n[s]\r\n",
     "",
     {.end = IniReadEnd::LineNotTaken, .ended_at_line = 1, .lines_not_read = 2}},
    {"the same section twice: the second stays", "[b]\nx\ny\n[a]\n[b]\nz\n", "[a][b|z]", {.nodes_overwritten = 3}},
    {"overwriting removes that text everywhere",
     "[a]\nc\nz\n[c]\nx\n[b]\nc\n[c]\nc\n",
     "[a|z][b][c|c]",
     {.nodes_overwritten = 4, .sections_reordered = false}},
    {"a comment of the root has a section's name", ";c\n[;c]\nx\n", "[;c|x]", {.nodes_overwritten = 1}},
};

TEST(IniReader, ReadsFiles) {
  for (const FileCase& test : kFiles) {
    SCOPED_TRACE(test.name);
    IniTree tree;
    IniMirror mirror(tree);
    ExpectResult(ReadFile(tree, test.text), test.result);
    EXPECT_EQ(Dump(tree), test.expected);
    EXPECT_EQ(tree.Selected(), tree.Root());
    EXPECT_TRUE(tree.Root()->Expanded());
    EXPECT_EQ(tree.Revision() > 0, !test.expected.empty());
    mirror.Check();
  }
}

struct PasteCase {
  const char* name;
  const char* selected;
  std::string text;
  std::string expected;
  const char* expected_selected;
  IniReadResult result = {};
};

const char kRoot[] = "New INI File";

// Onto "[m|(;c)|k=1|u]".
const std::vector<PasteCase> kPastes = {
    {"sections onto the root",
     "",
     "[z]\r\n[a]\r\nx\r\n",
     "[a|x][m|(;c)|k=1|u][z]",
     kRoot,
     {.sections_reordered = true}},
    {"sections onto a section select the root", "m", "[z]\nx", "[m|(;c)|k=1|u][z|x]", kRoot},
    {"a header on the last line leaves the selection", "m", "[a]", "[a][m|(;c)|k=1|u]", "m"},
    {"one entry onto a section", "m", "n=1", "[m|(;c)|k=1|n=1|u]", "m", {.end = IniReadEnd::OneEntryOnly}},
    {"and no more than one, whatever it is",
     "m",
     ";n\n[z]\nx\n",
     "[m|(;c)|;n|k=1|u]",
     "m",
     {.end = IniReadEnd::OneEntryOnly, .ended_at_line = 2, .lines_not_read = 2}},
    {"an empty line onto a section is one", "m", "\r\n", "[m||(;c)|k=1|u]", "m", {.end = IniReadEnd::OneEntryOnly}},
    {"nothing onto a section", "m", "", "[m|(;c)|k=1|u]", "m"},
    {"a comment onto the root", "", ";d\n[z]\n", "(;d)[m|(;c)|k=1|u][z]", kRoot},
    {"an entry onto the root",
     "",
     "x",
     "[m|(;c)|k=1|u]",
     kRoot,
     {.end = IniReadEnd::LineNotTaken, .ended_at_line = 1, .lines_not_read = 1}},
    {"onto an entry: its section is selected",
     "k=1",
     "[z]\nx\n",
     "[m|(;c)|k=1|u]",
     "m",
     {.end = IniReadEnd::NothingAdded, .ended_at_line = 1, .lines_not_read = 2}},
    {"onto a comment",
     ";c",
     "[z]\n",
     "[m|(;c)|k=1|u]",
     ";c",
     {.end = IniReadEnd::NothingAdded, .ended_at_line = 1, .lines_not_read = 1}},
    {"overwriting the selected section", "m", "[m]\nnew", "[m|new]", kRoot, {.nodes_overwritten = 4}},
};

TEST(IniReader, Pastes) {
  for (const PasteCase& test : kPastes) {
    SCOPED_TRACE(test.name);
    IniTree tree;
    ReadFile(tree, "[m]\n;c\nk=1\nu\n");
    IniMirror mirror(tree);
    tree.Select(FindNode(tree, test.selected));
    const IniReadResult result = IniReader::Read(tree, test.text, {[](std::string_view) { return true; }});
    ExpectResult(result, test.result);
    EXPECT_EQ(Dump(tree), test.expected);
    EXPECT_EQ(tree.Selected()->Text(), test.expected_selected);
    mirror.Check();
  }
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
  const IniReadResult result = IniReader::Read(tree, "[b]\ny\nx\n[a]\nq\n\n[b]\nz\n[a]\nw\n\n[c]\n", ask);
  EXPECT_EQ(asked, (std::vector<std::string>{"b: [a|q][b|x|y]", "a: [a|q][b|z]"}));
  ExpectResult(result, {.end = IniReadEnd::DuplicateRefused,
                        .ended_at_line = 9,
                        .lines_not_read = 4,
                        .nodes_overwritten = 3,
                        .entries_reordered = true});
  EXPECT_EQ(Dump(tree), "[a|q][b|z]");
  EXPECT_FALSE(tree.Root()->Expanded());
  EXPECT_EQ(mirror.resets, 2);
  mirror.Check();
}

TEST(IniReader, TakesAMillionSections) {
  std::string text;
  for (int i = 0; i < 1'000'000; ++i) text += "[Section number " + std::to_string((i * 7919LL) % 1'000'000) + "]\n";
  IniTree tree;
  EXPECT_TRUE(ReadFile(tree, text + std::string(1'000'000, 'x')).sections_reordered);
  EXPECT_EQ(tree.SectionCount(), 1'000'000U);
  EXPECT_EQ(tree.Root()->Child(999'999)->Text(), "Section number 999999");
}

}  // namespace
}  // namespace tme
