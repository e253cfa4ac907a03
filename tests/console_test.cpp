// The console program: its arguments, and values that are read.
#include <QProcess>

#include "ConsoleProbe.h"

using namespace tme;

namespace {

using Console = ConsoleProbe;

struct Case {
  std::string words;
  int result;
  std::string output;
};

const std::string kConsoleIni =
    "top=1\r\n[A]\r\n; c\r\nkey = \"v w\"\r\nKey=2\r\n\r\n[B]\r\nx\r\n[a]\r\nlate=3\r\nbs=a\tb\r\n";
const std::string kConsoleReg =
    "REGEDIT4\n\n[HKEY_USERS\\A\\B]\n@=\"d\"\n\"t\"=\"1\"\n\"T\"=\"a\\\\b\"\n\"n\"=dword:0000001a\n"
    "\"m\"=hex(7):61,00,62,00,00\n\"e\"=hex(2):25,\\\n  41,00\n\"b\"=hex:01,ff\n\"gone\"=-\n"
    "\"q\"=hex(b):ff,ff,ff,ff,ff,ff,ff,ff\n";

}  // namespace

TEST_F(Console, GetsValues) {
  PutFile("a.ini", kConsoleIni);
  PutFile("a.reg", kConsoleReg);
  const Case cases[] = {
      {"get FILE:a.ini a KEY", 0, "v w\n"},
      {"get FILE:a.ini A late", 0, "3\n"},
      {"get FILE:a.ini a", 0, "key\tv w\nKey\t2\nlate\t3\nbs\ta\\tb\n"},
      {"get FILE:a.ini A key --json", 0, "{\"key\": \"key\", \"value\": \"v w\"}\n"},
      {"get --json FILE:a.ini B", 0, "[\n  {\"key\": \"x\", \"value\": \"\"}\n]\n"},
      {"get FILE:a.ini A none", 1, ""},
      {"get FILE:a.ini C", 1, ""},
      {"get FILE:a.reg hku\\a\\B @", 0, "d\n"},
      {"get FILE:a.reg HKEY_USERS\\A\\B t", 0, "a\\b\n"},
      {"get FILE:a.reg HKU\\A\\B m", 0, "a\nb\n"},
      {"get FILE:a.reg HKU\\A\\B gone", 1, ""},
      {"get FILE:a.reg HKU\\A\\C", 1, ""},
      {"get FILE:a.reg HKU\\A", 0, ""},
      {"get FILE:a.reg HKU\\A\\B", 0,
       "@\tREG_SZ\td\nt\tREG_SZ\t1\nT\tREG_SZ\ta\\b\nn\tREG_DWORD\t26\nm\tREG_MULTI_SZ\ta\\0b\n"
       "e\tREG_EXPAND_SZ\t%A\nb\tREG_BINARY\t01 ff\nq\tREG_QWORD\t18446744073709551615\n"},
      {"get --json FILE:a.reg HKU\\A\\B m", 0,
       "{\"name\": \"m\", \"type\": \"REG_MULTI_SZ\", \"value\": [\"a\", \"b\"]}\n"},
      {"get --json FILE:a.reg HKU\\A\\B q", 0,
       "{\"name\": \"q\", \"type\": \"REG_QWORD\", \"value\": \"0xffffffffffffffff\"}\n"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(RunWords(each.words), each.result) << each.words << errors_;
    EXPECT_EQ(output_, each.output) << each.words;
    EXPECT_EQ(errors_, "") << each.words;
  }
  EXPECT_EQ(Run({"get", "FILE:a.ini", "", "top"}), 0);
  EXPECT_EQ(output_, "1\n") << "before the first section";
}

TEST_F(Console, TakesTheKindOfAFile) {
  PutFile("a", kConsoleReg);
  EXPECT_EQ(RunWords("get FILE:a HKU\\A\\B @"), 0) << "by what it says";
  PutFile("a.ini", kConsoleReg);
  EXPECT_EQ(RunWords("get FILE:a.ini HKU\\A\\B @"), 1) << "by its name";
  EXPECT_EQ(RunWords("get FILE:a.ini HKU\\A\\B @ --kind=reg"), 0);
  input_ = "[A]\nk=\xE9\n";
  EXPECT_EQ(RunWords("get - A k"), 0);
  EXPECT_EQ(output_, "\xC3\xA9\n");
  PutFile("a.txt", "[A]\nk=1\n");
  EXPECT_EQ(RunWords("get FILE:a.txt A k"), 2);
  EXPECT_EQ(errors_, "tmec: " + PathText("a.txt") + ": a text file has no keys (--kind ini takes it as an INI file)\n");
}

TEST_F(Console, RefusesWhatItIsNotFor) {
  PutFile("-x.ini", "[A]\n--k=1\n-1=2\n");
  const std::pair<std::string, std::string> wrong[] = {
      {"", "no command (see tmec --help)"},
      {"got a", "no command \"got\" (see tmec --help)"},
      {"get a", "get: usage: tmec get [OPTION…] FILE SECTION [KEY] (see tmec get --help)"},
      {"get a b c d", "get: usage: tmec get [OPTION…] FILE SECTION [KEY] (see tmec get --help)"},
      {"get --kind", "get: --kind needs a value (see tmec get --help)"},
      {"get --json=1 a b", "get: --json takes no value (see tmec get --help)"},
      {"get -k a b", "get: no option -k here; \"--\" goes before what only looks like one (see tmec get --help)"},
      {"get a b --kind x", "--kind is ini, reg, rtf or txt, and not \"x\""},
  };
  for (const auto& [words, why] : wrong) {
    EXPECT_EQ(RunWords(words), 2) << words;
    EXPECT_EQ(errors_, "tmec: " + why + "\n");
    EXPECT_EQ(output_, "");
  }
  EXPECT_EQ(RunWords("get FILE:-x.ini A -- --k"), 0);
  EXPECT_EQ(RunWords("get FILE:-x.ini A -1"), 0) << "is no option";
  EXPECT_EQ(RunWords("get FILE:none\x1b.ini A"), 2);
  EXPECT_NE(errors_.find("none\\x1b.ini: "), std::string::npos) << errors_;
  EXPECT_EQ(RunWords("--version"), 0);
  EXPECT_EQ(RunWords("--help"), 0);
  for (const console::Command* command : console::Commands()) {
    EXPECT_NE(output_.find(std::string("  ") + std::string(command->name) + " "), std::string::npos);
    EXPECT_EQ(Run({std::string(command->name), "--help"}), 0);
    EXPECT_TRUE(output_.starts_with("Usage: tmec " + std::string(command->name))) << output_;
    RunWords("--help");
  }
}

TEST_F(Console, RunsAsAProgram) {
  PutFile("\xC3\xA4.ini", "[\xC3\xA4]\nk=\xC3\xB6\n");
  QProcess program;
  program.start(QStringLiteral(TME_CONSOLE_PROGRAM),
                {QStringLiteral("get"), QString::fromStdString(PathText("\xC3\xA4.ini")), QStringLiteral("\u00C4"),
                 QStringLiteral("k")});
  ASSERT_TRUE(program.waitForFinished());
  EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
  EXPECT_EQ(program.readAllStandardOutput(), "\u00F6\n");
  program.start(QStringLiteral(TME_CONSOLE_PROGRAM), {QStringLiteral("get"), QStringLiteral("-"), QStringLiteral("A")});
  program.write("[A]\nk=1\n");
  program.closeWriteChannel();
  ASSERT_TRUE(program.waitForFinished());
  EXPECT_EQ(program.readAllStandardOutput(), "k\t1\n");
  program.start(QStringLiteral(TME_CONSOLE_PROGRAM), {QStringLiteral("--bad")});
  ASSERT_TRUE(program.waitForFinished());
  EXPECT_EQ(program.exitCode(), 2);
}
