#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "RegProbe.h"
#include "documents/reg/RegConversion.h"
#include "documents/reg/RegWholeReader.h"
#include "documents/reg/RegWholeWriter.h"
#include "files/CodePage.h"

namespace tme {
namespace {

using namespace std::string_view_literals;

constexpr RegCoding kCoding{RegVersion::Regedit4, CodePageToUtf8, Utf8ToCodePage};

std::string WholeText(const RegDocument& document, RegLayout layout = RegLayout::Regular) {
  std::string text;
  EXPECT_TRUE(WriteWholeReg(document, layout, [&text](std::string_view part) {
    text += part;
    return true;
  }));
  EXPECT_EQ(WholeRegBytes(document, layout), text.size());
  return text;
}

/// As Dump, with "-" before deletions.
std::string DumpWhole(const RegDocument& document) {
  std::string dump;
  const auto enter = [&](const RegNode& node) {
    if (node.Parent() != nullptr) dump.append(node.Row() == 0 ? "{" : " ");
    if (node.Parent() != nullptr) dump.append(node.Tag() == RegTag::Deletion ? "-" : "").append(node.Text());
    dump += DumpValues(document, node);
    return true;
  };
  WalkKeys(*document.Root(), enter, [&](const RegNode& node) { dump += node.ChildCount() > 0 ? "}" : ""; });
  return dump;
}

/// The tree is what a reader makes of the text.
void ExpectTreeOfText(const RegDocument& document) {
  RegDocument again;
  const auto unsaid = RegWholeOptions{.unsaid = document.Version(), .first_values = {}, .progress = {}};
  ReadWholeReg(again, WholeText(document), unsaid);
  again.ShowComments(document.Comments());
  EXPECT_EQ(DumpWhole(again), DumpWhole(document)) << WholeText(document);
}

struct OddFile {
  const char* name;
  std::string_view text;
  const char* tree;
  std::uint64_t not_understood = 0;
};

// clang-format off
const std::vector<OddFile> kOddFiles = {
    {"nothing", "", ""},
    {"blank lines alone", "| |\t|", ""},
    {"no header, no last line end", "[$/a]|'v'='1'", "{HKEY_USERS{a(v:S='1')}}"},
    {"header behind blanks and a comment, other letters", " |;c| regedit4 |[$/a]|'v'=hex(2):41,00|", "{HKEY_USERS{a(v:H=hex(2):41,00)}}"},
    {"blanks everywhere", "REGEDIT4|  [$/a]x]  |\t'v' = '1' ; c|@ =\tdword:1 |", "{HKEY_USERS{a]x(v:S='1' :D=dword:1)}}"},
    {"letters of keys and marks", "REGEDIT4|[hkey_users/A]|'v'=DWORD:1F|[$/a/]|'w'=HEX:1,2|[$//a]|'v'='2'|", "{hkey_users{A(v:D=DWORD:1F w:H=HEX:1,2 v:S='2')}}"},
    {"escapes", "REGEDIT4|[$/a]|'/'q//'='/'//'|", "{HKEY_USERS{a('q\\:S='/'//')}}"},
    {"deletions", "REGEDIT4|[-$/a/b]|[-$]|[$/a]|'v'=-|@=- ;|", "{HKEY_USERS{a(v:-=- :-=-){-b}} -HKEY_USERS}"},
    {"hex goes on behind comments and blank lines, and ends before what is none", "REGEDIT4|[$/a]|'v'=hex:1,/ ;c|  2,/||;c|3|'w'=hex:1,/||'x'='1'|", "{HKEY_USERS{a(v:H=hex:1,/ ;c|  2,/||;c|3 w:H=hex:1,/ x:S='1')}}"},
    {"hex that is no bytes", "REGEDIT4|[$/a]|'v'=hex:012,3|'v'=hex:1,,2|'v'=hex:1 2|'v'=hex:,|'v'=hex:1,/|  234|'w'=hex:1 , 2,|", "{HKEY_USERS{a(v:H=hex:1,/ w:H=hex:1 , 2,)}}", 5},
    {"not understood", "x|'n'='1'|[]|[$|[$/a]|'n|'n'='1|'n'='1'x|'n'=x|'n'=dword:|'n'=dword:123456789|'n'=hex:1g|'n'|@x=''|=|", "{HKEY_USERS{a}}", 14},
    {"unknown hive and any bytes", "\0[x]\r[\xFF\0]\n\r\"\0\"=\"\x1F\"\r\r\n@=\"\""sv, nullptr, 1},
    {"pairs", "REGEDIT|;c|$/.a = t = 1|\t$/b =|hkey_users/B/c  x y|$/d|$|[$/e]|x = y|", "{HKEY_USERS{.a(:S=t = 1) b(:S=){c(:S=x y)} d}}", 2},
};
// clang-format on

TEST(RegWhole, OddFilesStayAsTheyAre) {
  for (const OddFile& file : kOddFiles) {
    SCOPED_TRACE(file.name);
    const std::string text = file.tree == nullptr ? std::string(file.text) : Reg(file.text);
    RegDocument document;
    const RegWholeResult result = ReadWholeReg(document, text);
    EXPECT_EQ(WholeText(document), text);
    if (file.tree != nullptr) {
      EXPECT_EQ(DumpWhole(document), Reg(file.tree));
    }
    EXPECT_EQ(result.not_understood, file.not_understood);
    EXPECT_EQ(document.HeldAs(), Holding::Whole);
  }
}

TEST(RegWhole, CancelLeavesNothing) {
  std::string text;
  for (int i = 0; i < 20'000; ++i) text += "[H]\n";
  RegDocument document("title");
  std::uint64_t last = 0;
  const auto cancel = [&last](std::uint64_t done, std::uint64_t all) { return last = done, 2 * done < all; };
  EXPECT_TRUE(ReadWholeReg(document, text, {.unsaid = {}, .first_values = {}, .progress = cancel}).cancelled);
  EXPECT_TRUE(2 * last >= text.size() && last < text.size());
  EXPECT_TRUE(document.NodeCount() == 1 && WholeText(document).empty() && document.Root()->Text() == "title");
}

struct WholeEdit {
  const char* name;
  const char* before;
  std::function<void(RegDocument&)> edit;
  const char* after;
};

RegNode* At(RegDocument& document, std::string_view path) { return NodeAt(document, path); }

// clang-format off
const std::vector<WholeEdit> kWholeEdits = {
    {"a value in the style above, before blank lines and the next block's comment", "REGEDIT4||[$/a]|\t'v' = '1'|; own||; b's|[$/b]|",
     [](RegDocument& d) { d.AddValue(At(d, "$/a"), "n\"", "dword:00000001"); },
     "REGEDIT4||[$/a]|\t'v' = '1'|; own|\t'n/'' = dword:00000001||; b's|[$/b]|"},
    {"in the last of several blocks", "[$/a]|'v'='1'|[$/b]|[$/A]", [](RegDocument& d) { d.AddValue(At(d, "$/a"), "", "\"\""); }, "[$/a]|'v'='1'|[$/b]|[$/A]|@=''"},
    {"in a key that only others imply", "REGEDIT4||[$/a/b]|@='1'||[$/c]|", [](RegDocument& d) { d.AddValue(At(d, "$/a"), "v", "hex:"); },
     "REGEDIT4||[$/a/b]|@='1'||[$/a]|'v'=hex:||[$/c]|"},
    {"keys behind all below their parent", "REGEDIT4||[$/a]||[$/a/b]|@='1'||;c|[$/c]||", [](RegDocument& d) { d.AddKey(d.AddKey(At(d, "$/a"), "n"), "m"); },
     "REGEDIT4||[$/a]||[$/a/b]|@='1'||[$/a/n]||[$/a/n/m]||;c|[$/c]||"},
    {"where blocks touch, so does the new one", "[$/a]|[$/b]|", [](RegDocument& d) { d.AddKey(At(d, "$/b"), "n"); }, "[$/a]|[$/b]|[$/b/n]|"},
    {"a hive for an empty file", "", [](RegDocument& d) { d.AddKey(d.Root(), "H"); }, "REGEDIT4\r\n\r\n[H]\r\n"},
    {"only the bytes of an assignment and a name", "[$/a]| 'v' =\tHEX:1 ; c|'w'=hex:1,/|  2 ;d|",
     [](RegDocument& d) { d.SetAssignment(0, "\"x\""), d.RenameValue(0, ""), d.SetAssignment(1, "hex:05,06"), d.RenameValue(1, "w w"); },
     "[$/a]| @ =\t'x' ; c|'w w'=hex:05,06 ;d|"},
    {"values go with their lines", "[$/a]|'v'=hex:1,/|2|;c|'w'='1'", [](RegDocument& d) { d.DeleteValue(0), d.WriteDeletion(1); }, "[$/a]|;c|'w'=-"},
    {"a key goes with what is below, but not the next one's comment", "[$/a]|@='1'||;b|[$/a/b]||[$/c]|'v'='1'||;a|[$/A]|'v'='2'||;d|[$/d]|",
     [](RegDocument& d) { d.ShowComments(RegComments::Shown), d.RemoveKey(At(d, "$/a")); }, "[$/c]|'v'='1'||;d|[$/d]|"},
    {"a key becomes its deletion", "REGEDIT4||;b|[$/a/b]|@='1'||;c|[$/c]||;a|[$/A]||;d|[$/d]|",
     [](RegDocument& d) { d.ShowComments(RegComments::Shown), d.WriteDeletion(At(d, "$/a")); }, "REGEDIT4||;b|[-$/a]||;c|[$/c]||;d|[$/d]|"},
    {"a rename changes one component", "[$/a]|[-$/A/b]|[$//a/c ] ;a|[$/ab]|", [](RegDocument& d) { d.RenameKey(At(d, "$/a"), "new"); },
     "[$/new]|[-$/new/b]|[$//new/c ] ;a|[$/ab]|"},
    {"comments as nodes", ";r||;a|[$/a]| ;1|@=''|;2||;b|;c|[$/b]|;4|",
     [](RegDocument& d) {
       d.ShowComments(RegComments::Shown), d.SetComment(d.Root()->Child(0), ";R"), d.SetComment(At(d, "$/a")->Child(0), ";A"), d.RemoveKey(At(d, "$/b")->Child(1));
       EXPECT_EQ(DumpWhole(d), Reg("{;R HKEY_USERS{a(:S=''){;A ;1 ;2} b{;b ;4}}}")); },
     ";R||;A|[$/a]| ;1|@=''|;2||;b|[$/b]|;4|"},
    {"comments between the lines of a value stand above it", "[$/a]|;1|'v'=hex:1,/ ;2|  ;3|2,/||3;4|;5|[$/b]|'w'=hex:1,/|;6|2",
     [](RegDocument& d) { d.ShowComments(RegComments::Shown), d.SetAssignment(0, "hex:04"), d.DeleteValue(1); },
     "[$/a]|;1|;2|  ;3|'v'=hex:04;4|;5|[$/b]|;6|"},
    {"a comment goes with what it comes to touch, and touches no new header", "[$/a]|;1|'v'='1'|[$/b]|;2|",
     [](RegDocument& d) { d.ShowComments(RegComments::Shown), d.DeleteValue(0), d.AddKey(At(d, "$/b"), "n"); }, "[$/a]|;1|[$/b]|;2||[$/b/n]|"},
    {"pairs", "REGEDIT|$/a = 1|$/b|$/c=2|", [](RegDocument& d) {
       d.AddValue(At(d, "$/b"), "", "x"), d.DeleteValue(1), d.AddKey(At(d, "$/a"), "n"), d.RenameKey(At(d, "$/a"), "A"), d.SetAssignment(0, "3"); },
     "REGEDIT|$/A = 3|$/A/n|$/b = x|$/c|"},
};
// clang-format on

TEST(RegWhole, AnEditIsItsLines) {
  for (const WholeEdit& test : kWholeEdits) {
    SCOPED_TRACE(test.name);
    RegDocument document;
    ReadWholeReg(document, Reg(test.before));
    RegMirror mirror(document);
    const std::uint64_t revision = document.Revision();
    test.edit(document);
    EXPECT_EQ(WholeText(document), Reg(test.after));
    EXPECT_GT(document.Revision(), revision);
    ExpectTreeOfText(document);
    mirror.Check();
  }
}

struct PasteCase {
  const char* name;
  const char* before;
  const char* key;
  const char* text;
  const char* after;
  std::size_t left_out = 0;
};

// clang-format off
const std::vector<PasteCase> kPastes = {
    {"values alone", "REGEDIT4||[$/a]|'v'='1'||[$/b]|", "$/a", "Windows Registry Editor Version 5.00||'x'=hex(2):41,00,00,00||;c|'y'=\"2\"",
     "REGEDIT4||[$/a]|'v'='1'|'x'=hex(2):41,00|;c|'y'='2'||[$/b]|"},
    {"a key with what is below and its comment", "REGEDIT4||[$/a]||[$/b]|", "$/a", "REGEDIT4||;c|[%/x/y] ;t|@='1'||[-%/x/y/z]||",
     "REGEDIT4||[$/a]||;c|[$/a/y] ;t|@='1'||[-$/a/y/z]||[$/b]|"},
    {"several keys, one of which is there", "[$/a]|[$/a/Y]|'v'='1'", "$/a", "[%/x/y]|'v'='2'|[%/x/z]|", "[$/a]|[$/a/Y]|'v'='1'|[$/a/Y]|'v'='2'|[$/a/z]"},
    {"below the root as they stand", "REGEDIT4||[$/a]|", "", "[%/x]|@='1'", "REGEDIT4||[$/a]||[%/x]|@='1'|"},
    {"comments and other lines alone", "[$/a]|'v'='1'|[$/b]|", "$/a", " |x|;c|", "[$/a]|'v'='1'|x|;c||[$/b]|"},
    {"pairs", "REGEDIT4||[$/a]|", "$/a", "REGEDIT|%/x = /t'|", "REGEDIT4||[$/a]||[$/a/x]|@='//t/''|"},
    {"what code pages have not", "REGEDIT4|[$/a]|", "$/a", "Windows Registry Editor Version 5.00|'v'=hex(1):00,04,00,00|'w'=hex(7):e9,00,00,00,00,00|",
     "REGEDIT4|[$/a]|'w'=hex(7):e9,00,00|", 1},
};
// clang-format on

TEST(RegWhole, PastesWhatItIsGiven) {
  for (const PasteCase& test : kPastes) {
    SCOPED_TRACE(test.name);
    RegDocument document;
    ReadWholeReg(document, Reg(test.before));
    const RegPasteResult result = document.Paste(NodeAt(document, test.key), Reg(test.text), kCoding);
    EXPECT_EQ(WholeText(document), Reg(test.after));
    EXPECT_EQ(result.left_out, test.left_out);
    ExpectTreeOfText(document);
  }
}

TEST(RegWhole, ClipboardAndExpandedTexts) {
  RegDocument document;
  ReadWholeReg(document, Reg("REGEDIT4|;1|[$/a/b]|'v'=hex:1,/|2||;2|[$/c]|'w'='3'|[-$/d/e]|[$/a/B/x]"));
  EXPECT_EQ(ClipboardText(document, *NodeAt(document, "$/a")),
            Reg("REGEDIT4||[$/a]||;1|[$/a/b]|'v'=hex:1,/|2||[$/a/B/x]|"));
  EXPECT_EQ(ClipboardText(document, std::vector<std::size_t>{1, 0}), Reg("REGEDIT4||'w'='3'|'v'=hex:1,/|2|"));
  EXPECT_EQ(WholeText(document, RegLayout::Expanded),
            Reg("REGEDIT4|[$/a]||;1|[$/a/b]|'v'=hex:1,/|2||;2|[$/c]|'w'='3'|[-$/d/e]|[$/a/B/x]"));
}

TEST(RegWhole, BecomesAnotherVersion) {
  const std::string five =
      Reg("Windows Registry Editor Version 5.00||[$/a]|'v'=hex(2):00,04,00,00|'w'=hex(7):e9,00,/|  00,00,00,00 "
          ";c|'x'=hex(2):41|");
  RegDocument document;
  ReadWholeReg(document, five);
  const std::vector<RegUnsayable> unsayable = UnsayableIn(document, RegVersion::Regedit4, kCoding);
  ASSERT_EQ(unsayable.size(), 2U);
  EXPECT_TRUE(unsayable[1].name == "x" && unsayable[1].fault == RegFault::NotUnicode) << "half a character";
  EXPECT_TRUE(unsayable[0].line == 4 && unsayable[0].name == "v" && unsayable[0].fault == RegFault::NotInCodePage);
  document.ConvertTo(RegVersion::Regedit4, kCoding);
  EXPECT_EQ(WholeText(document), Reg("REGEDIT4||[$/a]|'v'=hex(2):00,04,00,00|'w'=hex(7):e9,00,00 ;c|'x'=hex(2):41|"));
  ExpectTreeOfText(document);
  document.ConvertTo(RegVersion::Version5, kCoding);
  EXPECT_NE(WholeText(document).find("\"w\"=hex(7):e9,00,00,00,00,00 ;c\n\"x\"=hex(2):41,00\n"), std::string::npos);
}

/// A file as a list of lines, edited by looking at them. Every value has another name.
class LineModel {
 public:
  std::vector<std::string> lines{"REGEDIT4", "", "[H\\a]", "\"0\"=\"0\"", "", "[H\\b]", "", "[H\\a\\c]", "[H\\A]"};

  std::string Text() const {
    std::string text;
    for (const std::string& line : lines) text.append(line).append("\r\n");
    return text;
  }
  std::size_t LineOf(const std::string& name) const {
    for (std::size_t at = 0; at < lines.size(); ++at)
      if (lines[at].starts_with('"' + name + "\"=")) return at;
    return lines.size();
  }
  void Delete(const std::string& name) {
    const std::size_t at = LineOf(name);
    do lines.erase(Place(at));
    while (at < lines.size() && lines[at].starts_with("  "));
  }
  void Set(const std::string& name, const std::vector<std::string>& assignment) {
    const std::size_t at = LineOf(name);
    Delete(name);
    lines.insert(Place(at), assignment.begin(), assignment.end());
    lines[at].insert(0, '"' + name + "\"=");
  }
  void Add(const std::string& key, const std::string& line) {
    std::size_t end = lines.size();
    while (lines[end - 1] != key) --end;
    while (end < lines.size() && !lines[end].starts_with('[')) ++end;
    while (lines[end - 1].empty()) --end;
    lines.insert(Place(end), line);
  }
  void Rename(const std::string& from, const std::string& to) {
    for (std::string& line : lines)
      if (line.starts_with('[' + from)) line.replace(1, from.size(), to);
  }

 private:
  std::vector<std::string>::iterator Place(std::size_t at) { return lines.begin() + static_cast<std::ptrdiff_t>(at); }
};

TEST(RegWhole, RandomEditsAreThoseOfAModelOfLines) {
  std::mt19937 random(7);
  LineModel model;
  RegDocument document;
  ReadWholeReg(document, model.Text());
  RegNode* hive = document.Root()->Child(0);
  std::string b = "H\\b";
  std::vector<std::pair<std::string, std::size_t>> values{{"0", 0}};
  for (int step = 1; step < 2000; ++step) {
    const std::string number = std::to_string(1000 + step);
    const std::size_t chosen = values.empty() ? 0 : random() % values.size();
    switch (values.empty() ? 0 : random() % 5) {
      case 0: {
        const bool first = random() % 2 == 0;
        model.Add(first ? "[H\\A]" : '[' + b + ']', '"' + number + "\"=dword:1");
        values.emplace_back(number, document.AddValue(hive->Child(first ? 0 : 1), number, "dword:1"));
        break;
      }
      case 1: {
        std::string bytes = "hex(7):";
        for (int i = 0; i < 25; ++i) bytes += "0f,";
        const std::size_t before = 1 + values[chosen].first.size() + 2;
        const std::size_t split = bytes.find(',', 77 - before - 1) + 1;
        std::vector<std::string> wrapped{bytes.substr(0, split) + '\\', "  " + bytes.substr(split) + "00"};
        model.Set(values[chosen].first, wrapped);
        document.SetAssignment(values[chosen].second, bytes + "00");
        break;
      }
      case 2:
        model.Set(values[chosen].first, {"-"});
        document.WriteDeletion(values[chosen].second);
        break;
      case 3:
        model.Delete(values[chosen].first);
        document.DeleteValue(values[chosen].second);
        values.erase(values.begin() + static_cast<std::ptrdiff_t>(chosen));
        break;
      default:
        model.Rename(b, "H\\" + number);
        b = "H\\" + number;
        document.RenameKey(hive->Child(1), number);
    }
    ASSERT_EQ(WholeText(document), model.Text()) << step;
  }
  ExpectTreeOfText(document);
}

}  // namespace
}  // namespace tme
