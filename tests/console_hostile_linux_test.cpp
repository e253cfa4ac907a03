// The console program as a process, where files and streams are not as one wishes.
#include <gmock/gmock.h>

#include <QProcess>
#include <array>
#include <chrono>

#include "ConsoleProbe.h"
#include "console/ConsoleFile.h"
#include "files/EditLock.h"

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
      // A stream that is named goes on where it stands, and the file behind it stays that file.
      {"echo 1 >o; { $T set a.ini A k 2 -o /dev/stdout; echo 3; } >>o; cat o; rm o", "0: 1\n[A]\nk=2\n3\n"},
      {"echo 1 >o; ln o o2; exec 4>>o; $T convert a.ini --to lf -o /dev/fd/4; cat o2; rm o o2", "0: 1\n[A]\nk=1\n"},
      {"$T set a.ini A k 2 -o /dev/stdout >&-", "2: tmec: /dev/stdout: Bad file descriptor\n"},
      {"$T set a.ini A k 2 -o /dev/fd/9", "2: tmec: /dev/fd/9: No such file or directory\n"},
      {"$T set /dev/stdin A k 2 <a.ini", "2: tmec: /dev/stdin: this is no regular file; -o says where to write\n"},
      {"{ read line; $T get /dev/stdin '' k; } <a.ini", "0: 1\n"},
      {"$T set a.ini A k 2 -o .", "2: tmec: .: Is a directory\n"},
      {"$T set a.ini A k 2 -o /dev/full", "2: tmec: /dev/full: No space left on device\n"},
      {"chmod 444 a.ini; $T set a.ini A k 2; status=$?; chmod 644 a.ini; exit $status",
       "2: tmec: a.ini: The file is read-only\n"},
      {"ls -A", "0: a.ini\nf.ini\n"},
  };
  for (const auto& [line, answer] : cases) EXPECT_EQ(Shell(line), answer) << line;
  EXPECT_EQ(FileBytes("a.ini"), text);
  EXPECT_EQ(Shell("ln -s a.ini l.ini; $T set l.ini A k 2; readlink l.ini"), "0: a.ini\n");
  EXPECT_EQ(Shell("ln -s new.ini n.ini; $T set l.ini A k 3 -o n.ini; readlink n.ini; cat new.ini"),
            "0: new.ini\n[A]\nk=3\n");
  EXPECT_EQ(FileBytes("a.ini"), "[A]\nk=2\n") << "what the link leads to";
}

TEST_F(ConsoleHostile, LosesNoEditOfSeveralPrograms) {
  const std::string all = "for i in 1 2 3 4 5 6 7 8 9 10 11 12; do ", wait = " & done; wait; ";
  PutFile("b.ini", "[A]\n");
  EXPECT_EQ(Shell(all + "$T set b.ini A k$i $i" + wait + "grep -c k b.ini"), "0: 12\n");
  EXPECT_EQ(Shell("ln -s b.ini l.ini; " + all + "$T delete $([ $i -gt 6 ] && echo l || echo b).ini A k$i" + wait +
                  "cat b.ini"),
            "0: [A]\n")
      << "also through a link";
  EXPECT_EQ(Shell(all + "$T set new.reg 'HKCU\\A' k$i $i" + wait + "$T get new.reg 'HKCU\\A' | grep -c k"), "0: 12\n")
      << "also where the first one makes the file";
  EXPECT_EQ(Shell("cp b.ini o.ini; " + all + "$T set b.ini A t$i $i -o t$i.ini; done; " + all +
                  "$T merge b.ini o.ini t$i.ini -o o.ini" + wait + "grep -c t o.ini; rm t*.ini"),
            "0: 12\n");
  EXPECT_EQ(Shell("flock b.ini $T set b.ini A k 1; cat b.ini"), "0: [A]\nk=1\n") << "the lock is handed down";
  EXPECT_EQ(Shell("$T set b.ini A k 2 & $T set b.ini A k 2 & wait; ls -A"), "0: b.ini\nl.ini\nnew.reg\no.ini\n");
}

TEST_F(ConsoleHostile, WaitsForALockNoLongerThanItSays) {
  using std::chrono_literals::operator""ms;
  PutFile("b.ini", "[A]\n");
  for (const char* name : {"b.ini", "missing.ini"}) {
    EditLock first;
    EXPECT_EQ(Reason(first.Take(In(name))), "none");
    EditLock second;
    EXPECT_EQ(Reason(second.Take(In(name), 20ms)), "Another program has held a lock on it for 0 seconds");
  }
  EditLock file, folder, nothing;
  EXPECT_EQ(Reason(file.Take(In("b.ini"), 0ms)), "none") << "free again";
  EXPECT_EQ(Reason(folder.Take(In(""), 0ms)), "none") << "a write will say what is wrong";
  EXPECT_EQ(Reason(nothing.Take(In("no/x"), 0ms)), "none");
}

TEST_F(ConsoleHostile, LeavesNothingBesideTheFileWhenItIsEnded) {
  PutFile("b.ini", "[A]\nk=" + std::string(3'000'000, 'x') + "\n");
  // Wherever the signal meets it.
  EXPECT_EQ(Shell("for t in 002 004 006 008 010 015 020 030; do $T set b.ini A n $t & sleep 0.$t; kill -INT $!; "
                  "kill -TERM $!; wait $!; done 2>/dev/null; ls -A; grep -c k= b.ini"),
            "0: b.ini\n1\n");
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
