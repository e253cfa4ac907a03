// The console program: values that are set and deleted, and sections and keys that are listed.
#include <gmock/gmock.h>

#include "ConsoleProbe.h"
#include "files/CodePage.h"
#include "files/FileStamp.h"
#include "files/TextEncoding.h"

using namespace tme;

namespace {

using ConsoleEdit = ConsoleProbe;

/// What a command makes of a text: a part that becomes another one.
struct EditCase {
  std::vector<std::string> words;
  std::string from;
  std::string to;
  int result = 0;
};

std::string Exchanged(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  return at == std::string::npos ? "no " + from : text.replace(at, from.size(), to);
}

const std::string kEditedIni =
    "; top\r\na=1\r\n\r\n[A]\r\n; c\r\n  k = \"old\"  \r\nk2 = x\r\n\r\n; of b\r\n[B]\nz=1\nz=2\n[b]\nz=3";
const std::string kEditedReg =
    "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\A]\r\n\"a\"=\"1\"\r\n\"e\"=hex(2):25,00,00,00\r\n"
    "@=dword:00000001\r\n\"d\"=-\r\n\r\n[HKEY_USERS\\A\\B]\r\n\"x\"=\"y\"\r\n\r\n[-HKEY_USERS\\Q]\r\n";

}  // namespace

TEST_F(ConsoleEdit, ChangesOneLineOfAnIniFile) {
  const EditCase cases[] = {
      {{"set", "A", "K", "new"}, "old", "new"},
      {{"set", "a", "k", "old"}, "old", "old"},
      {{"set", "A", "k", " x "}, "old", " x "},
      {{"set", "A", "k", "\"q\""}, "\"old\"", "'\"q\"'"},
      {{"set", "A", "k2", " q"}, "x", "\" q\""},
      {{"set", "A", "k2", "'a\" "}, "x", "x", 2},
      {{"set", "A", "k2", "\xC3\xB6"}, "x", IsCodePageUsual() ? "\xF6" : "\xC3\xB6"},
      {{"set", "A", "k2", "\xE6\x97\xA5"}, "x", "\xE6\x97\xA5"},
      {{"set", "A", "n", "v"}, "x\r\n", "x\r\nn = v\r\n"},
      {{"set", "C", "n", "v"}, "z=3", "z=3\n[C]\nn=v"},
      {{"set", "", "n", "v"}, "a=1\r\n", "a=1\r\nn=v\r\n"},
      {{"set", "b", "z", "4"}, "z=1", "z=4"},
      {{"set", "A", "x=y", "1"}, "", "", 2},
      {{"set", "A", ";x", "1"}, "", "", 2},
      {{"set", "A", "", "1"}, "", "", 2},
      {{"set", "A", "k", "a\nb"}, "", "", 2},
      {{"set", "A", "k", "1", "2"}, "", "", 2},
      {{"set", "A", "k", "1", "--type", "sz"}, "", "", 2},
      {{"delete", "A", "K"}, "  k = \"old\"  \r\n", ""},
      {{"delete", "B", "z"}, "z=1\nz=2\n[b]\nz=3", "[b]\n"},
      {{"delete", "A"}, "[A]\r\n; c\r\n  k = \"old\"  \r\nk2 = x\r\n\r\n", ""},
      {{"delete", "C"}, "", "", 1},
      {{"delete", "A", "none"}, "", "", 1},
      {{"delete", "A", "--write-deletion"}, "", "", 2},
  };
  for (const EditCase& each : cases) {
    PutFile("a.ini", kEditedIni);
    auto words = each.words;
    words.insert(words.begin() + 1, "FILE:a.ini");
    EXPECT_EQ(Run(words), each.result) << testing::PrintToString(words);
    EXPECT_EQ(FileBytes("a.ini"), Exchanged(kEditedIni, each.from, each.to)) << testing::PrintToString(words);
    EXPECT_EQ(output_, "");
    EXPECT_EQ(errors_.empty(), each.result < 2) << errors_;
  }
}

/// Lines that stand deeper than a key, which readers other than those of Windows take for more of its value.
TEST_F(ConsoleEdit, LeavesNoLineOfAValueToAnotherOne) {
  const std::string text = "[t]\na=1\ndeps =\n    x\n    # c\n\n    y\nenv = z\n  deeper=1\n",
                    above = PathText("a.ini");
  const EditCase cases[] = {
      {{"set", "t", "deps", "v"}, "", "", 2},
      {{"delete", "t", "deps"}, "", "", 2},
      {{"set", "t", "deps", ""}, "", ""},
      {{"delete", "t", "y"}, "    y\n", ""},
      {{"set", "t", "a", "2"}, "a=1", "a=2"},
      {{"set", "t", "env", "2"}, "env = z", "env = 2"},
      {{"delete", "t", "a"}, "a=1\n", ""},
      {{"delete", "t"}, text, ""},
      {{"set", "u", "n", "1"}, "deeper=1\n", "deeper=1\n\n[u]\nn=1\n"},
  };
  for (const EditCase& each : cases) {
    PutFile("a.ini", text);
    auto words = each.words;
    words.insert(words.begin() + 1, "FILE:a.ini");
    EXPECT_EQ(Run(words), each.result) << testing::PrintToString(words);
    EXPECT_EQ(FileBytes("a.ini"), Exchanged(text, each.from, each.to)) << testing::PrintToString(words);
    const std::string refusal = "tmec: " + above + ":4: this line may be more of ";
    EXPECT_THAT(errors_, testing::StartsWith(each.result == 2 ? refusal : std::string()));
  }
  // A new entry stands as deep as keys do, with blanks around its "=" as they have, also where a value begins below.
  PutFile("b.ini", "[t]\ndeps =\n    x\n");
  EXPECT_EQ(RunWords("set FILE:b.ini t n 1"), 0);
  EXPECT_EQ(FileBytes("b.ini"), "[t]\ndeps =\n    x\nn = 1\n");
  PutFile("c.ini", "[t]\ndeps   =\nn=\n");
  EXPECT_EQ(RunWords("set FILE:c.ini t deps v") + RunWords("set FILE:c.ini t n v"), 0);
  EXPECT_EQ(FileBytes("c.ini"), "[t]\ndeps   = v\nn=v\n");
  EXPECT_EQ(RunWords("get FILE:b.ini t deps"), 0);
  EXPECT_EQ(output_, "\n") << "the first line, as Windows has it";
}

TEST_F(ConsoleEdit, MakesAMissingFile) {
  EXPECT_EQ(RunWords("set FILE:new.ini A k 1"), 0) << errors_;
  EXPECT_EQ(RunWords("get FILE:new.ini a K"), 0);
  EXPECT_EQ(output_, "1\n");
  EXPECT_EQ(RunWords("set FILE:new.reg HKCU\\A n 26 --type dword"), 0) << errors_;
  EXPECT_EQ(FileBytes("new.reg"), Utf16("Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n"
                                        "\"n\"=dword:0000001a\r\n"));
  EXPECT_EQ(RunWords("set FILE:none A k 1 -o FILE:out --kind ini"), 0);
  const std::string refused[] = {"set FILE:none A ;k 1",
                                 "set FILE:none.txt A k 1",
                                 "set FILE:none.rtf A k 1",
                                 "set FILE:none.reg NoHive k 1",
                                 "set FILE:none/x A k 1",
                                 "delete FILE:none A k",
                                 "set FILE:none.ini A k 1 --type sz",
                                 "get FILE:none A k",
                                 "diff FILE:none FILE:none"};
  for (const std::string& words : refused) EXPECT_EQ(RunWords(words), 2) << words;
  EXPECT_EQ(FilesInFolder(), 3) << "what is refused makes none";
}

TEST_F(ConsoleEdit, ChangesOneLineOfARegistryFile) {
  const EditCase cases[] = {
      {{"set", "hku\\a", "A", "\xE6\x97\xA5\"\\"}, "\"1\"", "\"\xE6\x97\xA5\\\"\\\\\""},
      {{"set", "HKU\\A", "e", "%P"}, "25,00,00,00", "25,00,50,00,00,00"},
      {{"set", "HKU\\A", "@", "0x10"}, "dword:00000001", "dword:00000010"},
      {{"set", "HKU\\A", "", "text", "--type=sz"}, "dword:00000001", "\"text\""},
      {{"set", "HKU\\A", "d", "x"}, "\"d\"=-", "\"d\"=\"x\""},
      {{"set", "HKU\\A\\B", "m", "a", "b", "--type", "multi"},
       "\"y\"\r\n",
       "\"y\"\r\n\"m\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"},
      {{"set", "HKU\\A\\B", "b", "0aFF 01", "--type", "REG_BINARY"}, "\"y\"\r\n", "\"y\"\r\n\"b\"=hex:0a,ff,01\r\n"},
      {{"set", "HKU\\A\\B", "b", "", "--type", "none"}, "\"y\"\r\n", "\"y\"\r\n\"b\"=hex(0):\r\n"},
      {{"set", "HKU\\A\\N", "v", "1"}, "[-HKEY", "[HKEY_USERS\\A\\N]\r\n\"v\"=\"1\"\r\n\r\n[-HKEY"},
      {{"set", "HKU\\N\\O", "v", "1"}, "Q]\r\n", "Q]\r\n\r\n[HKEY_USERS\\N\\O]\r\n\"v\"=\"1\"\r\n"},
      {{"set", "HKX\\N", "v", "1"}, "", "", 2},
      {{"set", "HKU\\A", "@", "4294967296"}, "", "", 2},
      {{"set", "HKU\\A", "@", "1x"}, "", "", 2},
      {{"set", "HKU\\A", "m", "a", "", "--type", "multi"}, "", "", 2},
      {{"set", "HKU\\A", "b", "0 1", "--type", "binary"}, "", "", 2},
      {{"set", "HKU\\A", "x\ny", "1"}, "", "", 2},
      {{"set", "HKU\\A", "b", "1", "--type", "word"}, "", "", 2},
      {{"delete", "HKU\\A", "a"}, "\"a\"=\"1\"\r\n", ""},
      {{"delete", "HKU\\A\\B"}, "[HKEY_USERS\\A\\B]\r\n\"x\"=\"y\"\r\n\r\n", ""},
      {{"set", "HKU\\Q\\R", "v", "1"}, "Q]\r\n", "Q]\r\n\r\n[HKEY_USERS\\Q\\R]\r\n\"v\"=\"1\"\r\n"},
      {{"delete", "HKU\\A", "none"}, "", "", 1},
      {{"delete", "HKU\\A", "a", "--write-deletion"}, "\"1\"", "-"},
      {{"delete", "HKU\\A", "d", "--write-deletion"}, "", ""},
      {{"delete", "HKU\\A", "n", "--write-deletion"}, "\"d\"=-\r\n", "\"d\"=-\r\n\"n\"=-\r\n"},
      {{"delete", "HKU\\A\\B", "--write-deletion"}, "[HKEY_USERS\\A\\B]\r\n\"x\"=\"y\"\r\n", "[-HKEY_USERS\\A\\B]\r\n"},
      {{"delete", "HKU\\q", "--write-deletion"}, "", ""},
      {{"delete", "HKU\\R\\S", "--write-deletion"}, "Q]\r\n", "Q]\r\n\r\n[-HKEY_USERS\\R\\S]\r\n"},
      {{"delete", "HKU", "--write-deletion"}, "", "", 2},
  };
  for (const EditCase& each : cases) {
    PutFile("a.reg", Utf16(kEditedReg));
    auto words = each.words;
    words.insert(words.begin() + 1, "FILE:a.reg");
    EXPECT_EQ(Run(words), each.result) << testing::PrintToString(words) << errors_;
    EXPECT_EQ(DecodeText(FileBytes("a.reg")).text, Exchanged(kEditedReg, each.from, each.to))
        << testing::PrintToString(words);
    EXPECT_TRUE(FileBytes("a.reg").starts_with("\xFF\xFE"));
  }
}

TEST_F(ConsoleEdit, KnowsWhatAnImportLeaves) {
  const std::string top = "REGEDIT4\n\n; c\n[HKEY_USERS\\A\\B]\n\"x\"=\"1\"\n\"s\"=\"a\nb\"\n\n",
                    text = top + "[-HKEY_USERS\\a]\n", again = "\n[HKEY_USERS\\A\\B]\n";
  const std::tuple<std::string, int, std::string> cases[] = {
      {"get FILE:a.reg HKU\\A\\B x", 1, ""},
      {"get FILE:a.reg HKU\\A\\B x --json", 1, "null\n"},
      {"get FILE:a.reg HKU\\A --json", 1, "[]\n"},
      {"get FILE:a.reg HKU\\A\\B", 1, ""},
      {"set FILE:a.reg HKU\\A\\B x 2 -o-", 0, text + again + "\"x\"=\"2\"\n"},
      {"set FILE:a.reg HKU\\A\\B\\C n 2 -o-", 0, text + "\n[HKEY_USERS\\A\\B\\C]\n\"n\"=\"2\"\n"},
      {"delete FILE:a.reg HKU\\A\\B -o-", 0, "REGEDIT4\n\n; c\n\n[-HKEY_USERS\\a]\n"},
      {"set FILE:a.reg HKU\\A\\B s 2 -o-", 2, ""},
      {"delete FILE:a.reg HKU\\A\\B s", 2, ""},
  };
  PutFile("a.reg", text);
  for (const auto& [words, result, output] : cases) {
    EXPECT_EQ(RunWords(words), result) << words << errors_;
    EXPECT_EQ(output_, output) << words;
  }
  PutFile("b.reg", "REGEDIT4\n[HKEY_USERS\\A]\n\"s\"=\"a\nb\"\n\"s\"=\"1\"\n");
  EXPECT_EQ(RunWords("delete FILE:b.reg HKU\\A s"), 2) << "what goes on would stay";
  PutFile("b.reg", text + again + "\"y\"=\"1\"\n");
  EXPECT_EQ(RunWords("get FILE:b.reg HKU\\A\\B"), 0);
  EXPECT_EQ(output_, "y\tREG_SZ\t1\n");
}

TEST_F(ConsoleEdit, WritesWhatTheFileCanHold) {
  const std::string regedit4 = "REGEDIT4\n[HKEY_USERS\\A]\n\"a\"=\"\xE4\"\n\"e\"=hex(2):e4,00\n";
  PutFile("a.reg", regedit4);
  EXPECT_EQ(RunWords("set FILE:a.reg HKU\\A e \xC3\xBC"), 0);
  EXPECT_EQ(FileBytes("a.reg"), Exchanged(regedit4, "e4,00", "fc,00"));
  for (const std::string name : {"a", "e", "\xE6\x97\xA5"}) {
    EXPECT_EQ(Run({"set", "FILE:a.reg", "HKU\\A", name, "\xE6\x97\xA5"}), 2);
    EXPECT_THAT(errors_, testing::HasSubstr(" has no place for "));
  }
  PutFile("a.ini", "[A]\nk=\xE4\n");
  EXPECT_EQ(RunWords("set FILE:a.ini A k2 \xE6\x97\xA5"), 2);
  EXPECT_EQ(errors_, "tmec: " + PathText("a.ini") +
                         ":3: the 8-bit code page has no place for \"\xE6\x97\xA5\"; nothing was written\n");
  PutFile("old.reg", "REGEDIT\nHKEY_CLASSES_ROOT\\.a = b\n");
  EXPECT_EQ(RunWords("set FILE:old.reg HKCR\\.a @ c"), 0);
  EXPECT_EQ(RunWords("set FILE:old.reg HKCR\\.b @ d"), 0);
  EXPECT_EQ(FileBytes("old.reg"), "REGEDIT\nHKEY_CLASSES_ROOT\\.a = c\nHKEY_CLASSES_ROOT\\.b = d\n");
  EXPECT_EQ(RunWords("set FILE:old.reg HKCR\\.a n c"), 2);
  EXPECT_EQ(RunWords("delete FILE:old.reg HKCR\\.a --write-deletion"), 2);
}

TEST_F(ConsoleEdit, WritesWhereItIsTold) {
  PutFile("a.ini", "[A]\nk=1\n");
  const auto stamp = StampOf(In("a.ini"));
  EXPECT_EQ(RunWords("set FILE:a.ini A k 1"), 0);
  EXPECT_EQ(StampOf(In("a.ini")), stamp) << "nothing to write";
  EXPECT_EQ(RunWords("set FILE:a.ini A k 2 -o FILE:b.ini"), 0) << errors_;
  EXPECT_EQ(FileBytes("b.ini"), "[A]\nk=2\n");
  EXPECT_EQ(RunWords("set FILE:a.ini A k 3 -o-"), 0);
  EXPECT_EQ(output_, "[A]\nk=3\n");
  input_ = "[A]\n";
  EXPECT_EQ(RunWords("set - A k 4"), 0);
  EXPECT_EQ(output_, "[A]\nk=4\n");
  EXPECT_EQ(StampOf(In("a.ini")), stamp);
  EXPECT_EQ(RunWords("delete - B --output -"), 1);
  EXPECT_EQ(output_, "[A]\n") << "as it is";
}

TEST_F(ConsoleEdit, ListsWhatThereIs) {
  PutFile("a.ini", "a=1\n[A]\nb\tc=2\n;\n[E]\n");
  PutFile("a.reg", kEditedReg);
  const std::string rows =
                        "HKEY_USERS\\A\ta\tREG_SZ\nHKEY_USERS\\A\te\tREG_EXPAND_SZ\nHKEY_USERS\\A\t@\tREG_DWORD\n"
                        "HKEY_USERS\\A\td\tdeletion\n",
                    below = "HKEY_USERS\\A\\B\tx\tREG_SZ\n";
  const std::tuple<std::string, int, std::string> cases[] = {
      {"FILE:a.ini", 0, "\ta\nA\tb\\tc\nE\n"},
      {"FILE:a.ini e", 0, "E\n"},
      {"FILE:a.ini F", 1, ""},
      {"FILE:a.ini --json", 0,
       "[\n  {\"section\": \"\", \"key\": \"a\"},\n  {\"section\": \"A\", \"key\": \"b\\tc\"},\n"
       "  {\"section\": \"E\"}\n]\n"},
      {"FILE:a.reg", 0, rows + below + "-HKEY_USERS\\Q\n"},
      {"FILE:a.reg HKU\\A\\B", 0, below},
      {"FILE:a.reg HKU\\C", 1, ""},
      {"--json FILE:a.reg HKU\\A\\B", 0,
       "[\n  {\"key\": \"HKEY_USERS\\\\A\\\\B\", \"name\": \"x\", \"type\": \"REG_SZ\"}\n]\n"},
  };
  for (const auto& [words, result, output] : cases) {
    EXPECT_EQ(RunWords("list " + words), result) << words;
    EXPECT_EQ(output_, output) << words;
  }
}
