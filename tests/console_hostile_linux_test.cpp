// The console program as a process, where files and streams are not as one wishes.
#include <gmock/gmock.h>

#include <QProcess>
#include <array>

#include "ConsoleProbe.h"
#include "console/ConsoleFile.h"

using namespace tme;

namespace {

class ConsoleHostile : public ConsoleProbe {
 protected:
  /// Runs a line of the shell in the folder, in which $T is the program. "status: what it wrote", both streams joined.
  std::string Shell(const std::string& line) {
    QProcess shell;
    shell.setWorkingDirectory(QString::fromStdString(PathText("")));
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start(QStringLiteral("sh"),
                {QStringLiteral("-c"), QString::fromStdString("T=" TME_CONSOLE_PROGRAM "\n" + line)});
    if (!shell.waitForFinished()) return "hangs";
    return std::to_string(shell.exitCode()) + ": " + shell.readAllStandardOutput().toStdString();
  }
};

}  // namespace

TEST_F(ConsoleHostile, RefusesWhatIsNoFileAndKeepsWhatIsOne) {
  const std::string text = "[A]\nk=1\n";
  PutFile("a.ini", text);
  const std::pair<std::string, std::string> cases[] = {
      {"$T get . A", "2: tmec: .: Is a directory\n"},
      {"$T get '' A", "2: tmec: an empty text names no file\n"},
      {"$T get a.ini/x A", "2: tmec: a.ini/x: Not a directory\n"},
      {"mkfifo f.ini; cat a.ini >f.ini & sleep 0.1; $T get f.ini A k", "0: 1\n"},
      {"cat a.ini >f.ini & sleep 0.1; $T set f.ini A k 2",
       "2: tmec: f.ini: this is no regular file; -o says where to write\n"},
      {"cat f.ini & $T set a.ini A k 2 -o f.ini; wait", "0: [A]\nk=2\n"},
      {"$T set a.ini A k 2 -o /dev/stdout; $T get /dev/stdin A k <a.ini", "0: [A]\nk=2\n1\n"},
      {"printf 'a\\0b' >b; $T set b A k 2; rm b",
       "0: tmec: b: no text file, for it has NUL characters (--kind takes it as one)\n"},
      {"$T set a.ini A k 2 -o no/x", "2: tmec: no/x: No such file or directory\n"},
      {"$T get a.ini A k >/dev/full", "2: tmec: standard output: No space left on device\n"},
      {"$T get a.ini A k >&-", "2: tmec: standard output: Bad file descriptor\n"},
      {"$T get - A k <&-", "2: tmec: standard input: Bad file descriptor\n"},
      {"$T get a.ini A k 2>&-", "0: 1\n"},
      {"$T got 2>&-", "2: "},
      {"(trap '' PIPE; exec 3>&1; { sleep 0.2; $T get a.ini A k 2>&3; echo $? >&3; } | :)",
       "0: tmec: standard output: Broken pipe\n2\n"},
      {"(trap '' XFSZ; ulimit -f 0; $T set a.ini A k 2 2>&1 | cat)", "0: tmec: a.ini: File too large\n"},
      {"ln a.ini hard; $T set a.ini A k 2; status=$?; rm hard; exit $status",
       "2: tmec: a.ini: A new file cannot have the owner, the access rights and the links of the old one; nothing was "
       "written (-o OUT writes another file)\n"},
      {"ls -A", "0: a.ini\nf.ini\n"},
  };
  for (const auto& [line, answer] : cases) EXPECT_EQ(Shell(line), answer) << line;
  EXPECT_EQ(FileBytes("a.ini"), text);
  EXPECT_EQ(Shell("ln -s a.ini l.ini; $T set l.ini A k 2; readlink l.ini"), "0: a.ini\n");
  EXPECT_EQ(Shell("ln -s new.ini n.ini; $T set l.ini A k 3 -o n.ini; readlink n.ini; cat new.ini"),
            "0: new.ini\n[A]\nk=3\n");
  EXPECT_EQ(FileBytes("a.ini"), "[A]\nk=2\n") << "what the link leads to";
}

TEST_F(ConsoleHostile, LeavesAFileThatChangedMeanwhile) {
  const std::array<std::string_view, 4> texts{"x", "A", "k", "2"};
  const console::Arguments arguments(*console::Commands()[1], texts);
  class NoStreams : public console::Streams {
    std::optional<FileFailure> ReadInput(std::string& /*bytes*/) override { return FileFailure{"none"}; }
    std::optional<FileFailure> WriteOutput(std::string_view /*text*/) override { return FileFailure{"none"}; }
    void WriteError(std::string_view /*text*/) override {}
    bool ErrorIsTerminal() const override { return false; }
  } streams;
  for (const bool vanishes : {false, true}) {
    PutFile("a.ini", "[A]\nk=1\n");
    console::ConsoleFile file(PathText("a.ini"), {}, streams);
    file.Ini().AddSection("B");
    PutFile("a.ini", "[A]\nk=another\n");
    if (vanishes) fs::remove(In("a.ini"));
    EXPECT_THROW(file.Save(arguments, streams), console::Trouble);
    EXPECT_THAT(FileBytes("a.ini"), testing::StartsWith(vanishes ? "failed" : "[A]\nk=another\n"));
  }
}

TEST_F(ConsoleHostile, TakesLinesOfAnySizeAndBytesOfAnyKind) {
  std::string line;
  line.resize(10'000'000, 'x');
  PutFile("a.ini", "[A]\nk=" + line + "\ns=1\n");
  EXPECT_EQ(RunWords("get FILE:a.ini A k"), 0);
  EXPECT_EQ(output_.size(), line.size() + 1);
  EXPECT_EQ(RunWords("set FILE:a.ini A s 2"), 0);
  EXPECT_EQ(FileBytes("a.ini"), "[A]\nk=" + line + "\ns=2\n");
  std::string bytes;
  std::uint32_t state = 1;
  for (int at = 0; at < 20'000; ++at) bytes += static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  PutFile("r", bytes);
  for (const std::string kind : {"ini", "reg", "rtf", "txt"})
    for (const std::string command : {"get", "set", "delete", "list", "check", "convert --to json", "text"}) {
      const std::string rest = command == "get" || command == "delete" ? " A k" : command == "set" ? " A k v" : "";
      const int result = RunWords(std::string(command).append(" --kind ").append(kind).append(" FILE:r").append(rest));
      EXPECT_EQ(result == 2, !errors_.empty()) << command << kind;
    }
}
