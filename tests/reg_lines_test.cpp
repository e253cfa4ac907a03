#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "RegProbe.h"
#include "documents/reg/RegConversion.h"
#include "documents/reg/RegWholeReader.h"

namespace tme {
namespace {

std::string TextOfLines(const RegDocument& document) {
  std::string text;
  document.Lines().Write([&text](std::string_view part) {
    text += part;
    return true;
  });
  return text;
}

/// Each node with its values, and each comment, in any order.
std::vector<std::string> TreeOf(const RegDocument& document) {
  std::vector<std::string> tree;
  WalkKeyPaths(*document.Root(), [&](const RegNode& node, std::string_view path) {
    tree.push_back(std::string(path).append(1, "FHBDC"[static_cast<int>(node.Tag())]));
    tree.back() += document.PieceOf(&node) == SourceLines::kEnds ? '-' : '+';
    for (const std::size_t record : document.ValuesOfPath(&node)) {
      const RegValueRecord& value = document.Values()[record];
      tree.push_back(std::string(path).append("\n").append(value.name).append("=").append(value.data));
      tree.back() += std::to_string(static_cast<int>(value.type));
      EXPECT_NE(document.Lines().Text(value.piece).find(value.data), std::string_view::npos);
    }
    return true;
  });
  std::ranges::sort(tree);
  return tree;
}

void ExpectAsRead(const RegDocument& document, const std::string& text) {
  ASSERT_EQ(TextOfLines(document), text);
  RegDocument again;
  ReadWholeReg(again, text);
  again.ShowComments(document.Comments());
  ASSERT_EQ(TreeOf(document), TreeOf(again)) << text;
  EXPECT_EQ(document.Version(), again.Version());
  EXPECT_EQ(document.NodeCount(), again.NodeCount());
}

/// Replaces bytes, by whole pieces.
void ReplaceBytes(RegDocument& document, std::size_t at, std::size_t size, std::string_view text) {
  const SourceLines& lines = document.Lines();
  SourceLines::Piece first = lines.First();
  std::size_t start = 0;
  while (lines.Next(first) != SourceLines::kEnds && start + lines.Text(first).size() <= at) {
    start += lines.Text(first).size();
    first = lines.Next(first);
  }
  SourceLines::Piece last = first;
  std::string all(lines.Text(first));
  while (start + all.size() < at + size) all += lines.Text(last = lines.Next(last));
  document.ReplaceLines(first, last, all.replace(at - start, size, text));
}

struct LineCase {
  const char* name;
  const char* before;
  const char* what;
  const char* with;
  /// The tree in its order; null where it is the reader's alone.
  const char* tree = nullptr;
};

// clang-format off
const std::vector<LineCase> kLineCases = {
    {"the data of a value", "REGEDIT4|[$/a]|'v'='1'|'w'='2'|", "1", "3", "{HKEY_USERS{a(v:S='3' w:S='2')}}"},
    {"hex that goes on in a line that comes", "REGEDIT4|[$/a]|'v'=hex:1,/||;c|zz|'w'='2'|", "zz", "02", "{HKEY_USERS{a(v:H=hex:1,/||;c|02 w:S='2')}}"},
    {"hex that goes on in lines that stood there", "REGEDIT4|[$/a]|'v'=hex:1| 2,/||;c| 3,/| 4|'w'='2'|", ":1|", ":1,/|", "{HKEY_USERS{a(v:H=hex:1,/| 2,/||;c| 3,/| 4 w:S='2')}}"},
    {"a line that ends no more", "REGEDIT4|[$/a]|'v'='1'|'w'='2'|", "'1'|", "-", nullptr},
    {"a key between values", "REGEDIT4|[$/a]|'v'='1'|'w'='2'|[$/b]|", "'w'", "[$/x/y]|'w'", "{HKEY_USERS{a(v:S='1') x{y(w:S='2')} b}}"},
    {"another name, and in other letters", "REGEDIT4|[$/a/k]|'v'='1'|[$/c]|", "a/k", "A/n", "{HKEY_USERS{A{n(v:S='1')} c}}"},
    {"no key any more", "REGEDIT4|[$/a]|'v'='1'|[$/c]|", "[$/a]", "$/a", "{HKEY_USERS{c}}"},
    {"a key of one value line and its deletion", "REGEDIT4|[$/a]|'v'='1'|[$/a/b]|@=''|", "[$/a]", "[-$/a]", nullptr},
    {"one of several blocks", "REGEDIT4|[$/a]|'v'='1'|[$/b]|[$/a]|'w'='2'|[$/a]|'x'='3'|", "[$/a]|'w'", "|'w'", "{HKEY_USERS{a(v:S='1' x:S='3') b(w:S='2')}}"},
    {"a block between two of its key", "REGEDIT4|[$/a]|[$/b]|'v'='1'|[$/a]|", "[$/b]|", "", "{HKEY_USERS{a(v:S='1')}}"},
    {"another version", "REGEDIT4|[$/a]|'v'='1'|", "REGEDIT4", "Windows Registry Editor Version 5.00", "{HKEY_USERS{a(v:S='1')}}"},
    {"another kind of file", "REGEDIT4|$/b = 2|[$/a]|'v'='1'|", "T4", "T", "{HKEY_USERS{b(:S=2)}}"},
    {"and the other one", "REGEDIT|$/b = 2|[$/a]|'v'='1'|", "T|", "T4|", "{HKEY_USERS{a(v:S='1')}}"},
    {"what says no version", "||;c|[$/a]|'v'='1'|", "||", "|REGEDIT||", ""},
    {"pairs", "REGEDIT|$/a = 1|$/b = 2|", "a = 1", "c", "{HKEY_USERS{c b(:S=2)}}"},
    {"all", "REGEDIT4|[$/a]|'v'='1'|", "REGEDIT4|[$/a]|'v'='1'|", "", ""},
    {"nothing", "", "", "REGEDIT4||[$/a]", "{HKEY_USERS{a}}"},
    {"a comment that comes to touch a key", "REGEDIT4|[$/a]|;c||[$/b]|", ";c||", ";c|", nullptr},
};
// clang-format on

TEST(RegLines, ReplacedLinesAreRead) {
  for (const LineCase& test : kLineCases) {
    for (const RegComments comments : {RegComments::Hidden, RegComments::Shown}) {
      SCOPED_TRACE(test.name);
      RegDocument document;
      std::string text = Reg(test.before);
      ReadWholeReg(document, text);
      document.ShowComments(comments);
      RegMirror mirror(document);
      const std::string what = Reg(test.what);
      const std::size_t at = text.find(what);
      ReplaceBytes(document, at, what.size(), Reg(test.with));
      ExpectAsRead(document, text.replace(at, what.size(), Reg(test.with)));
      if (test.tree != nullptr && comments == RegComments::Hidden) {
        EXPECT_EQ(Dump(document), Reg(test.tree));
      }
      mirror.Check();
      EXPECT_EQ(document.EditPosition(), 1U);
      EXPECT_EQ(document.UndoName(), EditName::EditSource);
      document.Undo();
      ExpectAsRead(document, Reg(test.before));
      document.Redo();
      ExpectAsRead(document, text);
      ReplaceBytes(document, 0, text.size(), text);
      EXPECT_EQ(document.EditPosition(), 1U) << "the same lines are no edit";
      mirror.Check();
    }
  }
}

TEST(RegLines, ADeletionAtTheEndLeavesACommentWhereItBelongs) {
  RegDocument document;
  std::string text = Reg("REGEDIT4|[$/a]|");
  ReadWholeReg(document, text);
  document.ShowComments(RegComments::Shown);
  document.RemoveKey(NodeAt(document, "$/a"));
  ReplaceBytes(document, 0, TextOfLines(document).size(), Reg("REGEDIT4|;c|"));
  document.WriteDeletion(NodeAt(document, "$"));
  ExpectAsRead(document, Reg("REGEDIT4|;c||[-$]|"));
}

TEST(RegLines, SelectionGoesWithTheLines) {
  RegDocument document;
  const std::string text = Reg("REGEDIT4|[$/a]|'v'='1'|[$/b]|");
  ReadWholeReg(document, text);
  document.Select(NodeAt(document, "$/a"));
  ReplaceBytes(document, text.find("a]"), 1, "n");
  EXPECT_EQ(document.Selected()->KeyPath(), Reg("$/n"));
  ReplaceBytes(document, text.find("[HKEY_USERS\\a"), 3, "");
  EXPECT_EQ(document.Selected()->KeyPath(), Reg("$"));
  document.Undo();
  EXPECT_EQ(document.Selected()->KeyPath(), Reg("$/n"));
}

TEST(RegLines, PairsBecomeAnotherKindOfFileInOneStep) {
  RegDocument document;
  const std::string text = Reg("REGEDIT|;c|$/a = 1|$/b|$/a/c = 2|");
  ReadWholeReg(document, text);
  const RegNode* key = NodeAt(document, "$/a/c");
  {
    const RegDocument::Step step(document, EditName::Convert);
    document.ReplaceLines(document.Lines().First(), document.Lines().Last(), WithoutPairs(document));
    document.ConvertTo(RegVersion::Version5, {});
  }
  EXPECT_EQ(Dump(document), Reg("{HKEY_USERS{a(:S='1'){c(:S='2')} b}}"));
  EXPECT_EQ(document.Version(), RegVersion::Version5);
  EXPECT_EQ(NodeAt(document, "$/a/c"), key) << "what is expanded stays so";
  document.Undo();
  ExpectAsRead(document, text);
  EXPECT_FALSE(document.CanUndo());
}

TEST(RegLines, AnyLinesAnywhere) {
  constexpr std::array kLines{"[$/a]|",       "[$/a/b]|",  "[$/b]|",   "[-$/a]|",  "[-$/c/]|", "'v'='1'|",
                              "'w'=hex:1,/|", " 02,/|",    "3|",       "|",        ";c|",      " ;d|",
                              "junk|",        "REGEDIT4|", "REGEDIT|", "$/a = 1|", "$/b|",     "'q//'=-|",
                              "'v'='1'\r\n",  "'x'=hex:|", "@=''",     "\r",       "[$|",      "[$/b/c/d]|"};
  std::minstd_rand random(1);
  const auto next = [&random](std::size_t below) { return random() % below; };
  const auto some_lines = [&](std::size_t most) {
    std::string lines;
    for (std::size_t count = next(most + 1); count > 0; --count)
      lines += Reg(kLines[next(next(8) == 0 ? kLines.size() : kLines.size() - 11 * next(2))]);
    return lines;
  };
  for (int document_number = 0; document_number < 600 && !HasFailure(); ++document_number) {
    std::string text = next(3) == 0 ? "" : "REGEDIT4\n";
    text += some_lines(14);
    RegDocument document;
    ReadWholeReg(document, text);
    RegMirror mirror(document);
    std::vector<std::string> texts{text};
    for (int edit = 0; edit < 12 && !HasFailure(); ++edit) {
      SCOPED_TRACE(testing::Message() << document_number << ", " << edit);
      if (next(5) == 0) document.ShowComments(next(2) == 0 ? RegComments::Shown : RegComments::Hidden);
      const std::size_t at = next(text.size() + 1);
      const std::size_t size = std::min(text.size() - at, next(3) == 0 ? next(60) : next(4));
      const std::string with = next(3) == 0 ? some_lines(4) : std::string(1, "\n[]\";1ax\\,"[next(10)]);
      const std::string before = text;
      text.replace(at, size, with);
      ReplaceBytes(document, at, size, with);
      ExpectAsRead(document, text);
      if (text != before) texts.push_back(text);
      ASSERT_EQ(document.EditPosition() + 1, texts.size()) << before << "\n---\n" << text;
      mirror.Check();
    }
    for (std::size_t i = texts.size() - 1; i > 0 && !HasFailure(); --i) {
      document.Undo();
      ExpectAsRead(document, texts[i - 1]);
    }
    while (document.CanRedo()) document.Redo();
    ExpectAsRead(document, text);
    mirror.Check();
  }
}

}  // namespace
}  // namespace tme
