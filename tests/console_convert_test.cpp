// The console program: files in other forms.
#include <gmock/gmock.h>

#include "ConsoleProbe.h"
#include "files/TextEncoding.h"

using namespace tme;

namespace {

using ConsoleConvert = ConsoleProbe;
using testing::HasSubstr;
using testing::StartsWith;

std::string EncodedAs(std::string text, TextEncoding encoding) {
  TextFormat format{.encoding = encoding, .stray_byte = {}};
  return EncodeText(std::move(text), format);
}

const std::string kHostileReg =
    "Windows Registry Editor Version 5.00\r\n\r\n; c\r\n[HKEY_USERS\\A\\%P% \"q\"]\r\n@=\"it's $x `y` \xE2\x80\x99 "
    "%P%\"\r\n"
    "\"a\\\"&b\"=dword:ffffffff ; d\r\n\"m\"=hex(7):61,00,00,00,0a,00,00,\\\r\n; in\r\n  00,00,00\r\n\"x\"=-\r\n"
    "\"q\"=hex(b):01,0,0,0,0,0,0,80\r\n\"e\"=hex:\r\n[-HKEY_USERS\\A\\B]\r\n";

}  // namespace

TEST_F(ConsoleConvert, GoesThroughJsonAndBack) {
  const std::pair<std::string, std::string> files[] = {
      {"a.ini", "x\n \n[A] ; c\r\nk = \"v\"\nk=1\r\n  #\xE4\n=\n[A\n[]\n[\xF6]\r\rk='a'b"},
      {"b.ini", ""},
      {"e.ini", "[t]\ndeps =\n    x\n\n\t; c\n  y=1\n"},
      {"c.ini", EncodedAs("[A]\nk=\xED\xA0\x80\n", TextEncoding::Utf16Be) + "x"},
      {"d.ini", "\xEF\xBB\xBF[\xC3\xA4\xC3\xB6\xC3\xBC]\n\xC3\xA4=\xFF\x01\n"},
      {"a.reg", EncodedAs(kHostileReg + "?\r\n\"o\"=hex(2):1\r\n[x\r\n\"n", TextEncoding::Utf16Le)},
      {"b.reg", "REGEDIT4\n[HKEY_USERS\\A] \n @ = \"\xE4\"\n\"T\"=hex(2):E4,0\n\"b\"=hex(ff):1\n"},
      {"c.reg", "REGEDIT\nHKEY_CLASSES_ROOT\\.a = b\nHKEY_CLASSES_ROOT\\c\n"},
      {"e.reg", "REGEDIT4\n[HKEY_USERS\\A]\n\"\"=\"x\"\n\"a\\qb\"=\"x\"\n\"C:\\Tools\"=\"x\"\n"},
      {"f.reg", "REGEDIT\n[HKEY_USERS\\A]\n\"x\"=\"1\"\n"},
      {"g.reg", EncodedAs("[HKEY_USERS\\A]\n\"e\"=hex(2):25,00,00,00\n", TextEncoding::Utf16Le)},
      {"d.reg", "[HKEY_USERS\\A]\n\"a\"=\"b\""},
  };
  for (const auto& [name, bytes] : files) {
    PutFile(name, bytes);
    EXPECT_EQ(Run({"convert", "FILE:" + name, "--to=json"}), 0) << errors_;
    input_ = output_;
    EXPECT_EQ(RunWords("convert - --from json"), 0) << errors_ << input_;
    EXPECT_EQ(output_, bytes) << input_;
  }
  PutFile("a.ini", "[A] ; c\nk = \"v\"\n");
  EXPECT_EQ(RunWords("convert FILE:a.ini --to json"), 0);
  EXPECT_EQ(output_,
            "{\n  \"kind\": \"ini\",\n  \"encoding\": \"the 8-bit code page\",\n  \"line_end\": \"\\n\",\n"
            "  \"sections\": [\n    {\"name\": null, \"lines\": []},\n    {\"name\": \"A\", \"line\": \"[A] ; c\", "
            "\"lines\": [\n"
            "      {\"key\": \"k\", \"value\": \"v\", \"line\": \"k = \\\"v\\\"\"}\n    ]}\n  ]\n}\n");
  input_ = output_.replace(output_.find("\"value\": \"v\""), 12, "\"value\": \"w\"");
  EXPECT_EQ(RunWords("convert - --from json --to crlf"), 0);
  EXPECT_EQ(output_, "[A] ; c\r\nk = \"w\"\r\n") << "the line keeps its form";
}

TEST_F(ConsoleConvert, RefusesJsonThatNoFileCanHold) {
  const auto ini = [](const std::string& lines) {
    return "{\"kind\": \"ini\", \"encoding\": \"UTF-8\", \"line_end\": \"\\n\", \"sections\": [{\"name\": "
           "null,\n\"lines\": [" +
           lines + "]}]}";
  };
  const auto reg = [](const std::string& lines) {
    return "{\"kind\": \"reg\", \"encoding\": \"UTF-16 LE\", \"line_end\": \"\\r\\n\", \"keys\": [{\"path\": null, "
           "\"lines\": "
           "[{\"other\": \"REGEDIT4\"}]},\n{\"path\": \"HKEY_USERS\\\\A\", \"lines\": [" +
           lines + "]}]}";
  };
  const std::pair<std::string, std::string> cases[] = {
      {"", "1: no JSON: a value is missing"},
      {"{\"a\": 1, \"a\": 2}", "1: no JSON: the member \"a\" twice"},
      {"[\n1 2]", "2: no JSON: \",\" is missing"},
      {"\"\\ud800\"", "1: no JSON: half a character"},
      {"\"\\x\"", "1: no JSON: an unknown escape"},
      {"[01]", "1: no JSON: \",\" is missing"},
      {std::string(100, '['), "1: no JSON: too many levels"},
      {"{}", "1: \"kind\" is missing or of another kind"},
      {"[]", "1: \"kind\" is missing or of another kind"},
      {ini("{\"key\": \"a\", \"value\": \"b\", \"color\": 1}"), "2: no member \"color\" here"},
      {ini("{\"key\": \"a=\", \"value\": \"b\"}"), "2: no line can have this key and value"},
      {ini("{\"key\": \"a\", \"value\": \"b\\nc\"}"), "2: no line can have this key and value"},
      {ini("{\"comment\": \"x\"}"), "2: this is no line of such a file"},
      {ini("{\"comment\": \";\", \"end\": \"\"},{\"blank\": \"\"}"), "2: a line before it has no end"},
      {ini("{\"blank\": \"\", \"end\": \"x\"}"), "2: this is no line end"},
      {reg("{\"name\": \"a\", \"type\": \"REG_X\", \"value\": 1}"), "2: an unknown type"},
      {reg("{\"name\": \"a\", \"type\": \"REG_DWORD\", \"value\": 4294967296}"),
       "2: the number needs more bits than the type has"},
      {reg("{\"name\": \"a\", \"type\": \"REG_DWORD\", \"value\": -1}"),
       "2: \"-1\" is no number, such as 26 or 0x1a, of at most 64 bits"},
      {reg("{\"name\": \"a\", \"type\": \"REG_BINARY\", \"bytes\": \"0\"}"),
       "2: \"0\" is not in pairs of hex digits, such as \"01 ff\""},
      {reg("{\"name\": \"a\\nb\", \"type\": \"REG_SZ\", \"value\": \"\"}"), "2: no value can have this name"},
      {reg("{\"other\": \"[HKEY_USERS]\"}"), "2: this is no line of such a file"},
  };
  for (const auto& [json, why] : cases) {
    input_ = json;
    EXPECT_EQ(RunWords("convert - --from json"), 2) << json;
    EXPECT_EQ(errors_, "tmec: standard input:" + why + "\n");
  }
  input_ = ini("{\"key\": \"a\", \"value\": \" b\"},{\"key\": \"c\", \"value\": null}");
  EXPECT_EQ(RunWords("convert - --from json"), 0);
  EXPECT_EQ(output_, "a=\" b\"\nc\n");
  input_ =
      reg("{\"name\": \"\", \"type\": \"REG_QWORD\", \"value\": \"0x10\", \"line\": \"@=1\"},{\"name\": \"d\", "
          "\"deleted\": true}");
  EXPECT_EQ(RunWords("convert - --from json --to utf-8"), 0) << errors_;
  EXPECT_EQ(output_, "REGEDIT4\r\n[HKEY_USERS\\A]\r\n@=hex(b):10,00,00,00,00,00,00,00\r\n\"d\"=-\r\n");
}

TEST_F(ConsoleConvert, WritesScriptsForShells) {
  PutFile("a.reg", EncodedAs(kHostileReg, TextEncoding::Utf16Le));
  EXPECT_EQ(RunWords("convert FILE:a.reg --to powershell"), 0);
  EXPECT_EQ(output_,
            "\xEF\xBB\xBF# c\n$key = [Microsoft.Win32.Registry]::Users.CreateSubKey('A\\%P% \"q\"')\n"
            "$key.SetValue('', 'it''s $x `y` \xE2\x80\x99\xE2\x80\x99 %P%', 'String')\n# d\n"
            "$key.SetValue('a\"&b', [int]-1, 'DWord')\n# in\n"
            "$key.SetValue('m', [string[]]@('a',(''+[char]10+'')), 'MultiString')\n$key.DeleteValue('x', $false)\n"
            "$key.SetValue('q', [long]-9223372036854775807, 'QWord')\n$key.SetValue('e', [byte[]]@(), 'Binary')\n"
            "$key.Close()\n[Microsoft.Win32.Registry]::Users.DeleteSubKeyTree('A\\B', $false)\n");
  EXPECT_EQ(RunWords("convert FILE:a.reg --to reg-add"), 2) << "a line end within a string";
  EXPECT_THAT(errors_,
              HasSubstr("a.reg:7: this cannot be said there: a batch file has no place for a line end in a text\n"));
  EXPECT_THAT(errors_, HasSubstr("a.reg: 1 line cannot be said there; nothing was written\n"));
  EXPECT_EQ(output_, "");
  EXPECT_EQ(RunWords("delete FILE:a.reg HKU\\A\\%P%\\x20\"q\" m"), 1);
  EXPECT_EQ(Run({"delete", "FILE:a.reg", "HKU\\A\\%P% \"q\"", "m"}), 0);
  EXPECT_EQ(RunWords("convert FILE:a.reg --to reg-add"), 0) << errors_;
  EXPECT_THAT(errors_, HasSubstr(" comments left out: "));
  const std::string path = "^\"HKEY_USERS\\A\\^%%P^%% \\^\"q\\^\"^\"";
  EXPECT_THAT(output_, StartsWith("@chcp 65001 >nul\r\nreg add " + path + " /f\r\nreg add " + path +
                                  " /ve /t REG_SZ /d ^\"it's $x `y` \xE2\x80\x99 ^%%P^%%^\" /f\r\nreg add " + path +
                                  " /v ^\"a\\^\"^&b^\" /t REG_DWORD /d 0xffffffff /f\r\n"));
  EXPECT_THAT(output_, HasSubstr("reg delete " + path + " /v \"x\" /f\r\n"));
  PutFile("b.reg", "REGEDIT4\n[HKEY_X]\n[-HKEY_USERS]\n[HKEY_USERS]\n\"o\"=hex(2):1\n?\n");
  EXPECT_EQ(RunWords("convert FILE:b.reg --to powershell"), 2);
  for (const char* line : {":2: ", ":3: ", ":5: ", ":6: "}) EXPECT_THAT(errors_, HasSubstr(line));
  PutFile("d.reg", "REGEDIT4\n[-HKEY_USERS\\A]\n\"z\"=\"1\"\n[HKEY_USERS\\A]\n\"n\"=hex(0):\n\"m\"=hex(7):00\n");
  for (const auto& [form, lines] : {std::pair{"reg-add", ":3: :5: :6: "}, std::pair{"powershell", ":3: "}}) {
    EXPECT_EQ(RunWords(std::string("convert FILE:d.reg --to ") + form), 2);
    std::istringstream each(lines);
    for (std::string line; each >> line;)
      EXPECT_THAT(errors_, HasSubstr("d.reg" + line + " this cannot be said there: "));
  }
  PutFile("e.reg", "REGEDIT4\n;SIG # Begin signature block\n;requires x\n");
  EXPECT_EQ(RunWords("convert FILE:e.reg --to powershell"), 0);
  EXPECT_EQ(output_, "#  SIG # Begin signature block\n# requires x\n") << "neither means anything to the shell";
  EXPECT_EQ(RunWords("convert FILE:e.reg --to 5.00 --to utf-8"), 2) << "not the one of the two that came last";
  PutFile("c.reg", "REGEDIT\nHKEY_CLASSES_ROOT\\.a = b\n");
  EXPECT_EQ(RunWords("convert FILE:c.reg --to reg-add"), 0);
  EXPECT_THAT(output_, HasSubstr("reg add \"HKEY_CLASSES_ROOT\\.a\" /ve /t REG_SZ /d \"b\" /f\r\n"));
}

TEST_F(ConsoleConvert, ChangesVersionEncodingAndLineEnds) {
  const std::string key = "\n[HKEY_USERS\\A]\n\"a\"=\"\xC3\xA4\"\n",
                    v4 = "REGEDIT4" + key + "\"e\"=hex(2):e4,00\n\"m\"=hex(7):61,00,62\n",
                    v5 = "Windows Registry Editor Version 5.00" + key +
                         "\"e\"=hex(2):e4,00,00,00\n\"m\"=hex(7):61,00,00,00,62,00\n";
  PutFile("a.reg", EncodedAs(v4, TextEncoding::CodePage));
  EXPECT_EQ(RunWords("convert FILE:a.reg --to 5.00 -o FILE:b.reg"), 0);
  EXPECT_EQ(FileBytes("b.reg"), EncodedAs(v5, TextEncoding::Utf16Le));
  EXPECT_EQ(RunWords("diff FILE:a.reg FILE:b.reg"), 0) << output_;
  EXPECT_EQ(RunWords("convert FILE:b.reg --to regedit4"), 0);
  EXPECT_EQ(output_, FileBytes("a.reg"));
  EXPECT_EQ(RunWords("set FILE:b.reg HKU\\A e \xE6\x97\xA5"), 0);
  EXPECT_EQ(RunWords("convert FILE:b.reg --to regedit4 -o FILE:c.reg"), 2);
  EXPECT_THAT(errors_, HasSubstr("b.reg:4: value \"e\": "));
  EXPECT_THAT(FileBytes("c.reg"), StartsWith("failed")) << "not made";
  PutFile("b.reg", "Windows Registry Editor Version 5.00\n[HKEY_USERS\\A]\n\"m\"=hex(7):61,00,62\n");
  EXPECT_EQ(RunWords("convert FILE:b.reg --to regedit4"), 2) << "half a character";
  EXPECT_THAT(errors_, HasSubstr("b.reg:3: value \"m\": "));
  PutFile("a.ini", "[\xE4]\r\n");
  EXPECT_EQ(RunWords("convert FILE:a.ini --to utf-16 -o FILE:a.ini"), 0);
  EXPECT_EQ(FileBytes("a.ini"), EncodedAs("[\xC3\xA4]\r\n", TextEncoding::Utf16Le));
  EXPECT_EQ(RunWords("convert FILE:a.ini --to utf-8 -o FILE:a.ini"), 0);
  EXPECT_EQ(RunWords("convert FILE:a.ini --to lf"), 0);
  EXPECT_EQ(output_, "[\xC3\xA4]\n");
  PutFile("b.ini", "[\xC3\xA4\xC3\xA4]\n\xFF\n");
  EXPECT_EQ(RunWords("convert FILE:b.ini --to utf-8"), 2);
  EXPECT_THAT(errors_, HasSubstr("b.ini:2: bytes that are no text"));
  EXPECT_EQ(RunWords("convert FILE:b.ini --to reg-add"), 2);
  EXPECT_EQ(RunWords("convert FILE:b.ini --to xml"), 2);
  EXPECT_EQ(RunWords("convert FILE:b.ini"), 2);
}
