// The console program: lines that readers take in different ways, and the text that line tools compare.
#include "ConsoleProbe.h"
#include "files/TextEncoding.h"

using namespace tme;

namespace {

using ConsoleCheck = ConsoleProbe;

const std::string kReg5 = "Windows Registry Editor Version 5.00\r\n\r\n";

/// "line what" for each finding.
std::string Short(const std::string& output, const std::string& path) {
  std::istringstream lines(output);
  std::string shortened;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(path + ":")) line.erase(0, path.size() + 1);
    shortened += line.substr(0, line.rfind(" (")) + "\n";
  }
  return shortened;
}

}  // namespace

TEST_F(ConsoleCheck, NamesLinesThatReadersTakeInDifferentWays) {
  const std::pair<std::string, std::string> cases[] = {
      {"; c\n[A]\nk=1\n\n[B] ; b\nk=2\n# c\n", ""},
      {"[A]\nk=1\nK = 2\n[B]\nk=1\n[a]\n",
       "3: key \"K\" again, first in line 2\n6: section [a] again, first in line 1\n"},
      {"x=1\ny=2\n[A\n",
       "1: an entry before the first section\n1: the editor's reading by the rules ends here\n"
       "3: a section without \"]\"\n"},
      {"[A] b\n[ C ]\nfoo\n=1\n#x=1\n",
       "1: text behind the \"]\" of a section\n2: blanks around the name of a section\n3: an entry without \"=\"\n"
       "4: an entry without a key\n5: a comment with \"#\" and \"=\"\n"},
      {"\xEF\xBB\xBF[A]\n\xC3\xA4=1\r\n\xC3\xA4\xC3\xB6\xC3\xBC=2\r\n\xE4=3\n",
       "1: the byte order mark of UTF-8 right before the first section\n"
       "2: the line ends in CR LF and not in LF; lines that end in another way than the first: 2\n4: bytes that are no "
       "UTF-8 in a file of UTF-8\n"},
      {"\xEF\xBB\xBF; \xC3\xA4\n[]\n", "1: the byte order mark of UTF-8 at the start\n2: a section without a name\n"},
      {"[A]\nk=1\n  l=2\n  m\n\n; c\n\tn\nk2=1\n[B]\n  m\n  m2=1\n",
       "3: an entry that stands deeper than key \"k\" above, in line 2\n"
       "4: a line that stands deeper than key \"k\" above, in line 2\n"
       "7: a line that stands deeper than key \"k\" above, in line 2\n10: an entry without \"=\"\n"},
      {"[A]\rk=1\r", "1: the line ends in CR alone\n"},
      {"[A]\n\xE4\xF6=1\n\xFC=2\n\xC3\xA4=3\nn=\0\n", "4: UTF-8 in a file of 8-bit characters\n"},
  };
  for (const auto& [text, findings] : cases) {
    PutFile("a.ini", text);
    EXPECT_EQ(RunWords("check FILE:a.ini"), findings.empty() ? 0 : 1);
    EXPECT_EQ(Short(output_, PathText("a.ini")), findings) << text;
  }
  const std::pair<std::string, std::string> registry[] = {
      {kReg5 + "[HKEY_USERS\\A]\r\n@=\"1\"\r\n\"m\"=hex(7):61,00,00,00,00,00\r\n\"q\"=hex(b):01,00,00,00,00,00,00,"
               "00\r\n; c\r\n",
       ""},
      {"\r\n[HKEY_USERS\\A]\r\n\"a\"=\"1\"",
       "1: a first line that is no version of registry files\n"
       "3: a last line without an end\n"},
      {kReg5 + "\"a\"=\"1\"\r\n[HKEY_USERS\\A\r\n[HKEY_X\\A]\r\n[HKEY_USERS\\A] b\r\n[hkey_users\\a]\r\n\"b\r\n",
       "3: a value before the first key\n4: a key without \"]\"\n5: a key of no known hive, \"HKEY_X\"\n"
       "6: text behind the \"]\" of a key\n7: key \"hkey_users\\a\" again, first in line 6\n"
       "8: a line that is no key, value or comment\n"},
      {kReg5 + "[-HKEY_USERS\\A]\r\n[HKEY_USERS\\A]\r\n\"v\"=\"1\"\r\n\"V\"=dword:1\r\n\"e\"=hex(2):61,00,62\r\n"
               "\"s\"=hex(1):61,00\r\n\"q\"=hex(b):1,\\\r\n  2\r\n\"m\"=hex(7):00,d8,00,00,00,00\r\n",
       "6: value \"V\" again, first in line 5\n7: a REG_EXPAND_SZ with an odd number of bytes, 3, in UTF-16\n"
       "8: a REG_SZ without the NUL at its end\n9: a byte of one hex digit\n9: a REG_QWORD of 2 bytes\n"
       "11: a REG_MULTI_SZ with bytes that are no text of one or more whole strings\n"},
      {kReg5 + "[HKEY_USERS\\\xE4]\r\n", "3: 8-bit characters beyond ASCII in a file of version 5.00\n"},
      {"\n; c\nregedit4 \n[-HKEY_USERS\\A]\n\"z\"=\"1\"\n\"y\"=\"1\"\n[HKEY_USERS\\\\B]\n\"C:\\x\"=\"a\\\\b\\\"\\n\"\n",
       "3: the version is not in the first line\n3: a version in other letter case or with blanks around it\n"
       "5: a value below the deletion of a key, in line 4\n7: an empty name in the path of a key\n"
       "8: a backslash before neither \\ nor \"\n8: a backslash before neither \\ nor \"\n"},
      {"REGEDIT4\n[HKEY_USERS\\A\\B]\n\"h\"=hex:01,\\\n\n\"s\"=hex:1,02 ; ,\n[HKEY_USERS\\A!]\n[-HKEY_USERS\\a]\n",
       "3: a comma or a backslash behind the last byte\n5: a byte of one hex digit\n"
       "7: this deletes a key that stands above, in line 2\n"},
      {"REGEDIT4\n[HKEY_USERS\\A]\n\"s\"=\"a\nb\nc\"\nd\n",
       "3: a text in quotes that does not end in its line\n4: a line that goes on with a text or is none\n"
       "5: a line that goes on with a text or is none\n6: a line that is no key, value or comment\n"},
      {"\xEF\xBB\xBF" + kReg5, "1: the byte order mark of UTF-8\n"},
  };
  for (const auto& [text, findings] : registry) {
    PutFile("a.reg", text);
    EXPECT_EQ(RunWords("check FILE:a.reg"), findings.empty() ? 0 : 1);
    EXPECT_EQ(Short(output_, PathText("a.reg")), findings) << text;
  }
}

TEST_F(ConsoleCheck, LooksAtAllFiles) {
  PutFile("a.ini", "[A]\nx\n");
  PutFile("b.ini", "[A]\n");
  PutFile("c.rtf", "{\\rtf1 a");
  PutFile("d.txt", "a\r\nb\n");
  EXPECT_EQ(RunWords("check FILE:none FILE:b.ini FILE:a.ini"), 2);
  const std::string finding = "an entry without \"=\"", why = "readers pass over it or refuse the file";
  EXPECT_EQ(output_, PathText("a.ini") + ":2: " + finding + " (" + why + ")\n");
  EXPECT_EQ(RunWords("check --json FILE:b.ini"), 0);
  EXPECT_EQ(output_, "[]\n");
  EXPECT_EQ(RunWords("check FILE:c.rtf FILE:d.txt"), 1);
  EXPECT_EQ(std::count(output_.begin(), output_.end(), '\n'), 2) << output_;
  input_ = "[A]\nx\n";
  EXPECT_EQ(RunWords("check --json -"), 1);
  EXPECT_EQ(output_,
            "[\n  {\"file\": \"standard input\", \"line\": 2, \"what\": \"an entry without \\\"=\\\"\", \"why\": \"" +
                why + "\"}\n]\n");
}

TEST_F(ConsoleCheck, GivesTextsThatLinesOfCanBeCompared) {
  PutFile("a.ini", "[\xE4]\r\n");
  EXPECT_EQ(RunWords("text FILE:a.ini"), 0);
  EXPECT_EQ(output_, "[\xC3\xA4]\r\n");
  const std::string reg =
      "\r\n[HKEY_USERS\\A]\r\n\"s\"=\"a\\\\b\"\r\n\"N\"=DWORD:1A ; c\r\n\"e\"=hex(2):25,\\\r\n; in\r\n  "
      "00,0A,00,00,00\r\n"
      "\"m\"=hex(7):61,00,00,00,22,00,00,00,00,00\r\n\"b\"=hex:1\r\n\"o\"=hex(2):1\r\n\"q\"=hex(b):1,0,0,0,0,0,0,0\r\n"
      "\"d\"=-\r\n? \r\n";
  TextFormat format{.encoding = TextEncoding::Utf16Le, .stray_byte = {}};
  PutFile("a.reg", EncodeText("Windows Registry Editor Version 5.00\r\n" + reg, format));
  EXPECT_EQ(RunWords("text FILE:a.reg"), 0);
  EXPECT_EQ(output_,
            "Windows Registry Editor Version 5.00\n\n[HKEY_USERS\\A]\n\"s\"=\"a\\\\b\"\n\"N\"=dword:0000001a ; c\n"
            "; in\n\"e\"=expand:\"%\\n\"\n\"m\"=multi:\"a\",\"\\\"\"\n\"b\"=hex:01\n\"o\"=hex(2):01\n"
            "\"q\"=qword:0000000000000001\n\"d\"=-\n? \n");
  PutFile("b.ini", "\xEF\xBB\xBFk=\xC3\xA4\xE9\xFF\n");
  EXPECT_EQ(RunWords("text FILE:b.ini"), 0);
  EXPECT_EQ(output_, "k=\xC3\xA4\\xe9\\xff\n") << "UTF-8, whatever the file has";
  PutFile("b.reg", std::string("\xFF\xFE[\0", 4) + std::string("\0\xD8]\0\n\0", 6));
  EXPECT_EQ(RunWords("text FILE:b.reg"), 0);
  EXPECT_EQ(output_, "[\\ud800]\n");
  PutFile(
      "a.rtf",
      "{\\rtf1 \\b one\\b0  two\\line three\\par\\trowd\\cellx100\\cellx200\\intbl a\\par b\\cell c\\cell\\row end}");
  EXPECT_EQ(RunWords("text FILE:a.rtf"), 0);
  EXPECT_EQ(output_, "one two\nthree\na b\tc\nend\n");
}
