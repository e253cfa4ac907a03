// The console program: files that are compared and merged.
#include <QProcess>

#include "ConsoleProbe.h"

using namespace tme;

namespace {

using ConsoleCompare = ConsoleProbe;

struct CompareCase {
  std::string words;
  int result;
  std::string output;
};

const std::string kVersion5 = "Windows Registry Editor Version 5.00\r\n";

}  // namespace

TEST_F(ConsoleCompare, TellsWhatDiffers) {
  PutFile("a.ini", "; c\r\n[A]\r\nk=1\r\nold=x\r\n[B]\r\n");
  PutFile("b.ini", "[b]\n[a]\nK = 2\n[N]\nn=1\n");
  PutFile("a.reg", Utf16(kVersion5 + "[HKEY_USERS\\A]\r\n\"n\"=dword:1\r\n\"gone\"=hex:01\r\n"));
  PutFile("b.reg", "REGEDIT4\n[HKEY_USERS\\a]\n\"N\"=hex(4):01,00,00,00\n\"v\"=-\n[-HKEY_USERS\\B]\n");
  PutFile("empty", "");
  for (const std::string number : {"1", "2"})
    PutFile("gone" + number + ".reg", "REGEDIT4\n[HKEY_USERS\\A]\n\"v\"=\"" + number + "\"\n[-HKEY_USERS\\A]\n");
  PutFile("list1", "[t]\nd =\n  x\n  y\n[t]\nk=1\n");
  PutFile("list2", "[t]\nd =\n  y\nd=2\n[t]\nk=\"1\"\n");
  const CompareCase cases[] = {
      {"diff FILE:a.ini FILE:a.ini --order --comments", 0, ""},
      {"diff FILE:a.ini FILE:b.ini", 1, " [A]\n-k=1\n+K=2\n-old=x\n+[N]\n+n=1\n"},
      {"diff FILE:b.ini FILE:a.ini --json", 1,
       "[\n  {\"change\": \"changed\", \"section\": \"a\", \"name\": \"K\", \"before\": \"2\", \"after\": \"1\"},\n"
       "  {\"change\": \"added\", \"section\": \"a\", \"name\": \"old\", \"after\": \"x\"},\n"
       "  {\"change\": \"removed\", \"section\": \"N\"},\n"
       "  {\"change\": \"removed\", \"section\": \"N\", \"name\": \"n\", \"before\": \"1\"}\n]\n"},
      {"diff FILE:a.reg FILE:b.reg", 1, " [HKEY_USERS\\A]\n+\"v\"=-\n-\"gone\"=hex:01\n+[-HKEY_USERS\\B]\n"},
      {"diff FILE:a.reg FILE:b.reg --json", 1,
       "[\n  {\"change\": \"added\", \"key\": \"HKEY_USERS\\\\A\", \"name\": \"v\", \"after\": {\"deletion\": true}},\n"
       "  {\"change\": \"removed\", \"key\": \"HKEY_USERS\\\\A\", \"name\": \"gone\", "
       "\"before\": {\"type\": \"REG_BINARY\", \"bytes\": \"01\"}},\n"
       "  {\"change\": \"added\", \"key\": \"HKEY_USERS\\\\B\", \"deletion\": true}\n]\n"},
      {"diff FILE:a.reg FILE:b.reg --reg", 1,
       Utf16(kVersion5 + "\r\n[-HKEY_USERS\\B]\r\n\r\n[HKEY_USERS\\A]\r\n\"gone\"=-\r\n\"v\"=-\r\n")},
      {"diff FILE:b.reg FILE:a.reg --reg --undo", 1,
       Utf16(kVersion5 + "\r\n[-HKEY_USERS\\B]\r\n\r\n[HKEY_USERS\\A]\r\n\"gone\"=-\r\n\"v\"=-\r\n")},
      {"diff FILE:empty FILE:b.reg --reg --undo", 1, "REGEDIT4\r\n\r\n[-HKEY_USERS\\a]\r\n"},
      {"diff FILE:a.reg FILE:a.reg --reg", 0, ""},
      // What a line below deletes again is a difference of the files, and none of what they leave.
      {"diff FILE:gone1.reg FILE:gone2.reg", 1, " [HKEY_USERS\\A]\n-\"v\"=\"1\"\n+\"v\"=\"2\"\n"},
      {"diff FILE:gone1.reg FILE:gone2.reg --reg", 0, ""},
      // Values that go on in lines below, quotes, and names that come again.
      {"diff FILE:list1 FILE:list2 --json", 1,
       "[\n  {\"change\": \"changed\", \"section\": \"t\", \"name\": \"d\", \"before\": \"\\nx\\ny\", "
       "\"after\": \"\\ny\"},\n"
       "  {\"change\": \"added\", \"section\": \"t\", \"name\": \"d\", \"name_number\": 2, \"after\": \"2\"},\n"
       "  {\"change\": \"changed\", \"section\": \"t\", \"number\": 2, \"name\": \"k\", \"before\": \"1\", "
       "\"after\": \"\\\"1\\\"\"}\n]\n"},
      {"diff FILE:list1 FILE:list2", 1, " [t]\n-d=\\nx\\ny\n+d=\\ny\n+d=2\n [t] (2)\n-k=1\n+k=\"1\"\n"},
  };
  for (const CompareCase& each : cases) {
    EXPECT_EQ(RunWords(each.words), each.result) << each.words << errors_;
    EXPECT_EQ(output_, each.output) << each.words;
  }
  const std::pair<std::string, std::string> wrong[] = {
      {"diff FILE:a.ini FILE:b.ini --reg", PathText("b.ini") + ": --reg is for registry files"},
      {"diff FILE:a.reg FILE:b.reg --undo", "diff: --undo goes with --reg"},
      {"diff FILE:a.ini FILE:b.reg",
       PathText("b.reg") + ": a registry file, where the other one is an INI file (--kind takes both as one)"},
  };
  for (const auto& [words, why] : wrong) {
    EXPECT_EQ(RunWords(words), 2) << words;
    EXPECT_EQ(errors_, "tmec: " + why + "\n");
  }
}

TEST_F(ConsoleCompare, Merges) {
  PutFile("base.reg", Utf16(kVersion5 + "[HKEY_USERS\\A]\r\n\"a\"=\"1\"\r\n\"b\"=\"1\"\r\n"));
  PutFile("ours.reg", Utf16(kVersion5 + "; ours\r\n[HKEY_USERS\\A]\r\n\"a\"=\"2\"\r\n\"b\"=\"1\"\r\n"));
  PutFile("theirs.reg", kVersion5 + "[HKEY_USERS\\A]\n\"a\"=\"1\"\n\"b\"=\"3\"\n");
  EXPECT_EQ(RunWords("merge FILE:base.reg FILE:ours.reg FILE:theirs.reg"), 0) << errors_;
  EXPECT_EQ(output_, Utf16(kVersion5 + "; ours\r\n[HKEY_USERS\\A]\r\n\"a\"=\"2\"\r\n\"b\"=\"3\"\r\n"));
  EXPECT_EQ(RunWords("merge FILE:base.reg FILE:base.reg FILE:theirs.reg"), 0);
  EXPECT_EQ(output_, FileBytes("theirs.reg")) << "also in its encoding";

  PutFile("base.ini", "[A]\nk=1\n");
  PutFile("ours.ini", "[A]\nk=2\n");
  PutFile("theirs.ini", "[A]\nk=3\n");
  EXPECT_EQ(RunWords("merge FILE:base.ini FILE:ours.ini FILE:theirs.ini -o FILE:ours.ini"), 1);
  EXPECT_EQ(output_, "");
  EXPECT_EQ(FileBytes("ours.ini"), "[A]\n; MERGE CONFLICT theirs: k=3\nk=2\n");
  EXPECT_EQ(errors_,
            "tmec: " + PathText("ours.ini") + ":2: [A] k=2: both changed it; ours stands, theirs is in a comment\n");
  EXPECT_EQ(RunWords("merge FILE:base.ini FILE:ours.ini FILE:theirs.ini --name x/y.ini"), 1);
  EXPECT_TRUE(errors_.starts_with("tmec: x/y.ini:3: ")) << errors_;
  EXPECT_EQ(RunWords("merge FILE:base.ini FILE:ours.ini FILE:theirs.ini"), 1);
  EXPECT_TRUE(errors_.starts_with("tmec: the result:3: ")) << errors_;
  for (const auto& [name, bytes] :
       {std::pair{"b", "01,02,\\\n  03,04"}, {"o", "01,02,\\\n  dd,ee"}, {"t", "aa,bb,\\\n  03,04"}})
    PutFile(name, std::string("; c\n\n[HKEY_USERS\\A]\n\"b\"=hex:") + bytes + "\n");
  EXPECT_EQ(RunWords("merge FILE:b FILE:o FILE:t"), 1) << "registry files by what stands below the comment";
  EXPECT_EQ(RunWords("diff - -"), 2);
  PutFile("pairs.reg", "REGEDIT\nHKEY_USERS\\a = 1\n");
  EXPECT_EQ(RunWords("merge FILE:base.reg FILE:pairs.reg FILE:theirs.reg"), 2);
  EXPECT_EQ(RunWords("merge FILE:base.reg FILE:ours.reg FILE:none.reg"), 2);
}

TEST_F(ConsoleCompare, MergesIntoOurEncoding) {
  struct Case {
    const char* what;
    std::string base, ours, theirs, merged;
  } const cases[] = {
      {"8-bit characters and UTF-16", "[A]\r\nk=\xE4\r\nj=1\r\n", "[A]\r\nk=\xE4\r\nj=2\r\n",
       Utf16("[A]\nk=\xC3\xB6\nj=1\n"), "[A]\r\nk=\xF6\r\nj=2\r\n"},
      {"a mark", "\xEF\xBB\xBF[A]\nk=1\nj=1\n", "\xEF\xBB\xBF[A]\nk=1\nj=2\n", "[A]\nk=\xC3\xA4\nj=1\n",
       "\xEF\xBB\xBF[A]\nk=\xC3\xA4\nj=2\n"},
      {"what ours cannot hold", "[A]\nk=\xE4\nj=1\n", "[A]\nk=\xE4\nj=2\n", Utf16("[A]\nk=\xE6\x97\xA5\nj=1\n"), ""},
  };
  for (const Case& each : cases) {
    PutFile("b.ini", each.base);
    PutFile("o.ini", each.ours);
    PutFile("t.ini", each.theirs);
    const bool fits = !each.merged.empty();
    EXPECT_EQ(RunWords("merge FILE:b.ini FILE:o.ini FILE:t.ini -o FILE:o.ini"), fits ? 0 : 2) << each.what << errors_;
    EXPECT_EQ(FileBytes("o.ini"), fits ? each.merged : each.ours) << each.what;
  }
}

/// As git calls it: the files have names without an ending, and one of them is the output.
TEST_F(ConsoleCompare, IsAMergeDriver) {
  const auto git = [this](const QString& words) {
    QProcess process;
    process.setWorkingDirectory(QString::fromStdString(PathText("")));
    process.start(QStringLiteral("git"), words.split(QLatin1Char(' ')));
    return process.waitForFinished() ? process.exitCode() : -1;
  };
  if (git(QStringLiteral("init -q")) != 0) GTEST_SKIP() << "no git";
  PutFile(".git/config",
          "[core]\n autocrlf = false\n[user]\n name = a\n email = a@b\n[merge \"tmec\"]\n driver = " TME_CONSOLE_PROGRAM
          " merge --name %P %O %A %B -o %A\n");
  PutFile(".gitattributes", "*.reg merge=tmec\n");
  const auto commit = [&](const std::string& a, const std::string& b) {
    PutFile("a.reg", Utf16(kVersion5 + "[HKEY_USERS\\A]\r\n\"a\"=\"" + a + "\"\r\n\"b\"=\"" + b + "\"\r\n"));
    return git(QStringLiteral("add .")) + git(QStringLiteral("commit -q -m x"));
  };
  ASSERT_EQ(commit("1", "1"), 0);
  ASSERT_EQ(git(QStringLiteral("checkout -q -b theirs")), 0);
  ASSERT_EQ(commit("1", "2"), 0);
  ASSERT_EQ(git(QStringLiteral("checkout -q -")), 0);
  ASSERT_EQ(commit("3", "1"), 0);
  EXPECT_EQ(git(QStringLiteral("merge -q -m m theirs")), 0);
  EXPECT_EQ(FileBytes("a.reg"), Utf16(kVersion5 + "[HKEY_USERS\\A]\r\n\"a\"=\"3\"\r\n\"b\"=\"2\"\r\n"));
}
