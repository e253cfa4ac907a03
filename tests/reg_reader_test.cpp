#include <gtest/gtest.h>

#include "RegProbe.h"
#include "documents/reg/RegLosses.h"

using namespace std::string_literals;

namespace tme {
namespace {

struct ReadCase {
  const char* name;
  std::string text;
  std::string expected;
  RegReadResult result = {};
};

// After the line "REGEDIT4" each, and before an empty last line unless the name says otherwise; the title is "T".
// clang-format off
const std::vector<ReadCase> kReads = {
    {"all types, nothing decoded", "|[$/a]|@='d'|'s'='C://x /'q/''|'w'=dword:0000000a|'h'=hex:0a,0b||",
     "{${a([default]:S=d s:S=C://x /'q/' w:D=0000000a h:H=0a,0b)}}", {.default_values = 1}},
    {"keys come back, a part of a path is another key, case counts",
     "[$/a/b]|'1'=''|[$/a]|'2'=''|[$/ab/c]|[%/x]|[$/A]|[$/a/b]|'3'=''|", "{${a(2:S=){b(1:S= 3:S=)} ab{c} A} %{x}}"},
    {"paths: backslash at the end, two in a row, no bracket at the end, blanks",
     "[$/]|'h'=''|[$/a/]|[$//a]|[$//]|'e'=''|[$///]|[$/bc|[$/ d ]]|[$/d] |[$/\xC3\xA9\xC3\xA9|",
     "{$(h:S=){a (e:S=){a } b  d ] d] \xC3\xA9}}", {.cut_keys = 3}},
    {"a bare hive leaves the root selected; only the first is accepted",
     "[%]|'r'=''|[$/a]|[$]|'s'=''|[$/a]|[%]|'t'=''|", "(r:S= s:S= t:S=){% ${a}}",
     {.error_log = "T: [$]\r", .failed_lines = 1}},
    {"a failed key line selects the root, but a bracket alone does not",
     "[$/a]|[|'1'=''|[]|'2'=''|[$/a]|[A]|[$/b]|'x|", "(2:S=){${a(1:S=) b}}",
     {.error_log = "a: [\rT: []\rT: [A]\rb: 'x\r", .failed_lines = 4}},
    {"a bracket alone first", "[|'1'=''|", "(1:S=)", {.error_log = "T: [\r", .failed_lines = 1}},
    {"an unknown hive ends it without a log", "[$/a]|'x|[$x/b]||;c|[$/c]|'x", "{${a}}",
     {.end = RegReadEnd::UnknownHive, .ended_at_line = 4, .failed_lines = 1, .after_unknown_hive = 4}},
    {"removed keys of newer files too", "[-$/a]|[$/b]|", "",
     {.end = RegReadEnd::UnknownHive, .ended_at_line = 2, .ended_at_deletion = true, .after_unknown_hive = 2}},
    {"before the first key", ";c|'a'=''|  |[$/a]|", "{${a}}", {.comment_lines = 1, .other_lines = 1}},
    {"no key", "'a'=''|x|", "", {.other_lines = 2}},
    {"names end before the character before the first '='",
     "[$/a]|'n=m'='c'|'x=1|'='y'|'no'|''='e'|'\xC3\xA9=2|'b' = '3'|", "{${a(:S=m'='c' :S=1 :S=e :S=2 b':S= '3')}}",
     {.error_log = "a: '='y'\ra: 'no'\r", .failed_lines = 2, .other_forms = 4}},
    {"a name in quotes of its own moves its data back by two",
     "[$/a]|''q''='x'|''q''=dword:12|'''='x'|''\xC3\xA9\xC3\xA9=hex:1|", "{${a(q:S=='x q:D=d:12 :H=x:1)}}",
     {.error_log = "a: '''='x'\r", .failed_lines = 1, .other_forms = 3}},
    {"the type is looked for in the whole line",
     "[$/a]|'s'='b=dword:c'|'h'=hex:1=dword:2|'k=hex:'='x'|'\xC3\xA9'=\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9=hex:7|",
     "{${a(s:D=rd:c' h:D=dword:2 :H='='x' \xC3\xA9:H=\xC3\xA9=hex:7)}}", {.other_forms = 4}},
    {"strings without quotes, with one, with something after",
     "[$/a]|'1'=x|'2'='x|'3'='x' |'4'='|'5'=|'6'='\xC3\xA9|", "{${a(1:S=x 2:S= 3:S=x' 5:S= 6:S=)}}",
     {.error_log = "a: '4'='\r", .failed_lines = 1, .other_forms = 5}},
    {"deletions", "[$/a]|'1'=-|@=-|'2'='-'|", "{${a(1:S=- [default]:S=- 2:S=-)}}", {.default_values = 1, .value_deletions = 2}},
    {"default values", "[$/a]|@=hex:1,/| 2|@|@x=dword:1|@yz=1|@='|",
     "{${a([default]:H=1,2 [default]':D=1 [default]'y:S=1)}}", {.error_log = "a: @\ra: @='\r", .failed_lines = 2, .default_values = 3, .other_forms = 2}},
    {"hex lines: blanks go, tabs do not; anything is joined",
     "[$/a]|'1'=hex:1,/|  2,/  |\t3|'2'=hex:1,/\r|  2,/\r|   3,4  \r|'3'=hex://||[$/b]|'4'=hex:/|[x]|",
     "{${a(1:H=1,2,\t3 2:H=1,2,3,4 3:H=[$/b] 4:H=[x])}}"},
    {"no empty last line: hex lines may take the last one", "[$/a]|'1'=hex:1,/|2", "{${a(1:H=1,2)}}"},
    {"no empty last line: hex lines run out", "[$/a]|@=hex:1,///|2,3,4,/|/", "{${a}}",
     {.error_log = "a: @=hex:1,///\r", .failed_lines = 1}},
    {"no empty last line: it is not taken", "[$/a]|'1'=''|'2'=''|", "{${a(1:S=)}}", {.unfinished_last_line = 1}},
    {"no empty last line: nor a key", "[$/a]|[$/b]", "{${a}}", {.unfinished_last_line = 1}},
    {"no empty last line: but the first key is", "[$/a]", "{${a}}"},
    {"typed hex values and what else is passed over",
     "[$/a]|'1'=hex(2):61,/|  62,/|\t63|  64|;c|'2'=hex(7):00|'3'='hex(2):/|  1| x|q|",
     "{${a(1:S=hex(2):61,/ 2:S=hex(7):00 3:S=hex(2):)}}",
     {.comment_lines = 1, .typed_hex_values = 2, .typed_hex_lines = 2, .other_lines = 4, .other_forms = 1}},
    {"line ends of all kinds; NUL and invalid bytes pass through",
     "\r|[$/a]\r'1'='\0'|\r'\xFF'='\xC3'\r|'\xA9\xC3'='\xE2\x82'\r\r"s,
     "{${a(1:S=\0 \xFF:S=\xC3 \xA9\xC3:S=\xE2\x82)}}"s},
};
// clang-format on

void ExpectResult(const RegReadResult& result, const RegReadResult& expected) {
  EXPECT_EQ(result.end, expected.end);
  EXPECT_EQ(result.ended_at_line, expected.ended_at_line);
  EXPECT_EQ(result.error_log, Reg(expected.error_log));
  EXPECT_EQ(result.failed_lines, expected.failed_lines);
  EXPECT_EQ(result.comment_lines, expected.comment_lines);
  EXPECT_EQ(result.typed_hex_values, expected.typed_hex_values);
  EXPECT_EQ(result.typed_hex_lines, expected.typed_hex_lines);
  EXPECT_EQ(result.after_unknown_hive, expected.after_unknown_hive);
  EXPECT_EQ(result.unfinished_last_line, expected.unfinished_last_line);
  EXPECT_EQ(result.other_lines, expected.other_lines);
  EXPECT_EQ(result.ended_at_deletion, expected.ended_at_deletion);
  EXPECT_EQ(result.default_values, expected.default_values);
  EXPECT_EQ(result.value_deletions, expected.value_deletions);
  EXPECT_EQ(result.other_forms, expected.other_forms);
  EXPECT_EQ(result.cut_keys, expected.cut_keys);
}

TEST(RegReader, ReadsFiles) {
  for (const ReadCase& test : kReads) {
    SCOPED_TRACE(test.name);
    const bool whole = std::string_view(test.name).starts_with("no empty last line");
    RegDocument document("T");
    RegMirror mirror(document);
    ExpectResult(ReadReg(document, "REGEDIT4|" + test.text + (whole ? "" : "|")), test.result);
    EXPECT_EQ(Dump(document), Reg(test.expected));
    EXPECT_EQ(document.Selected(), document.Root());
    EXPECT_EQ(document.Revision() > 0, !test.expected.empty());
    EXPECT_EQ(mirror.resets, 1);
    mirror.Check();
  }
}

struct QuestionCase {
  std::string text;
  const char* answers;  // to the header question, to the large file question; "-" when it is not asked
  RegReadEnd end;
  std::uint64_t line_count;
  std::size_t nodes;
};

TEST(RegReader, AsksBeforeItReads) {
  const std::string key = "[$/a]\r|";
  const auto lines = [&key](int count) {
    std::string text = key;
    for (; count > 1; --count) text += count % 3 == 0 ? "\r" : count % 3 == 1 ? "|" : "\r|";
    return text;
  };
  const std::vector<QuestionCase> cases = {
      {"REGEDIT4\r|" + key, "--", RegReadEnd::EndOfInput, 1, 3},
      {"regedit4\r|" + key, "y-", RegReadEnd::EndOfInput, 1, 3},
      {"REGEDIT4 \r|" + key, "n-", RegReadEnd::HeaderRefused, 0, 1},
      {"", "n-", RegReadEnd::HeaderRefused, 0, 1},
      {"", "y-", RegReadEnd::EndOfInput, 0, 1},
      {key, "y-", RegReadEnd::EndOfInput, 0, 3},
      {"REGEDIT4|" + lines(499), "--", RegReadEnd::EndOfInput, 499, 3},
      {"REGEDIT4\r" + lines(499) + "x", "-y", RegReadEnd::EndOfInput, 500, 3},
      {"REGEDIT4|" + lines(500), "-n", RegReadEnd::LargeFileRefused, 500, 1},
      {"REGEDIT4\r|" + lines(501), "-y", RegReadEnd::EndOfInput, 501, 3},
      {"x\r|" + lines(3000), "yn", RegReadEnd::LargeFileRefused, 500, 1},
      {"REGEDIT4\r|" + lines(2'000'000), "-y", RegReadEnd::EndOfInput, 2'000'000, 3},
  };
  for (const QuestionCase& test : cases) {
    SCOPED_TRACE(std::to_string(test.line_count) + test.text.substr(0, 9) + test.answers);
    RegDocument document;
    RegMirror mirror(document);
    std::string asked = "--";
    std::uint64_t before = 0;
    const auto answer = [&](std::size_t question) {
      mirror.Check();
      EXPECT_EQ(asked[question], '-');
      asked[question] = test.answers[question];
      return asked[question] == 'y';
    };
    const auto progress = [&](const RegProgress& now) {
      EXPECT_EQ(now.total, now.phase == RegProgress::Phase::Importing ? test.line_count : 0);
      EXPECT_TRUE(now.lines >= before || now.phase == RegProgress::Phase::Importing);
      EXPECT_LE(before = now.lines, test.line_count);
    };
    const RegReadResult result =
        ReadReg(document, Reg(test.text), {[&] { return answer(0); }, [&] { return answer(1); }, progress});
    EXPECT_EQ(asked, test.answers);
    EXPECT_EQ(result.end, test.end);
    EXPECT_EQ(result.line_count, test.line_count);
    EXPECT_EQ(document.NodeCount(), test.nodes);
    EXPECT_EQ(mirror.resets, test.end == RegReadEnd::EndOfInput ? 1 : 0);
  }
}

std::string Repeated(std::string_view text, int times) {
  std::string out;
  for (; times > 0; --times) out += text;
  return out;
}

/// Each is to end within the test's time, and to be closed again.
TEST(RegReader, TakesHostileFiles) {
  std::string ever_deeper = "[$/a";
  std::string deeper_keys;
  for (int i = 0; i < 3000; ++i) deeper_keys += (ever_deeper += "/b") + "]|'v'=''|";
  std::string siblings;
  for (int i = 0; i < 200'000; ++i) siblings += "[$/" + std::to_string(i * 7919LL % 100'000) + "]|'v'=''|";
  const std::string long_line = Repeated("x", 10'000'000);
  const std::string deep = "[$" + Repeated("/a", 100'000) + "]|";
  const std::vector<std::tuple<const char*, std::string, std::size_t, std::size_t>> cases = {
      {"long value", "[$/a]|'v'='" + long_line + "|", 3, 1},
      {"long key, many failures", "[$/" + long_line + "]|" + Repeated("'|", 100'000), 3, 0},
      {"only '='", "[$/a]|'v" + Repeated("=", 10'000'000) + "|", 3, 1},
      {"only backslashes", "[$/a]|'v'=hex:" + Repeated("/", 1'000'000) + "|||", 3, 0},
      {"hex without end", "[$/a]|'v'=hex:" + Repeated("1,/|", 1'000'000), 3, 1},
      {"deep key, again and again", deep + "'v'=''|" + deep + "[$/a/c]|" + deep + "'v'=''|", 100'003, 2},
      {"ever deeper keys", deeper_keys, 3003, 3000},
      {"brackets", Repeated("[|", 1'000'000), 1, 0},
      {"many siblings, twice", siblings, 100'002, 200'000},
      {"owners by turns", Repeated("[$/a]|@=|[$/b]|@=|", 200'000), 4, 400'000},
  };
  for (const auto& [name, text, nodes, values] : cases) {
    SCOPED_TRACE(name);
    RegDocument document;
    const RegReadResult result = ReadReg(document, "REGEDIT4|" + text + "|");
    EXPECT_EQ(document.NodeCount(), nodes);
    EXPECT_EQ(document.Values().size(), values);
    EXPECT_LE(result.error_log.size(), kMaxErrorLog);
    EXPECT_GT(RegOutputBytes(document, RegLayout::Expanded), 0U);
    EXPECT_TRUE(WriteReg(document, RegLayout::Regular, [](std::string_view) { return true; }));
    EXPECT_LE(document.KeysSharingAName() + LossesOf(document, RegLayout::Regular).values, std::max(nodes, values));
    if (document.Root()->ChildCount() > 0) document.RemoveKey(document.Root()->Child(0));
    EXPECT_EQ(document.NodeCount(), 1U);
  }
}

}  // namespace
}  // namespace tme
