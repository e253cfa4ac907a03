#include <gtest/gtest.h>

#include "documents/reg/RegAddLine.h"

using namespace tme;

namespace {

RegData Of(std::string_view assignment) {
  RegCoding coding;
  coding.version = RegVersion::Version5;
  return *DecodeAssignment(assignment, coding);
}

}  // namespace

TEST(RegAddLine, SaysEachTypeForThePrompt) {
  const struct {
    const char* name;
    const char* assignment;
    const char* behind_path;  ///< null: cannot be said
  } cases[] = {
      {"", "\"a b\"", "/ve /t REG_SZ /d \"a b\""},
      {"n", "\"\"", "/v \"n\" /t REG_SZ /d \"\""},
      {"C:\\", "\"a\\\\\"", R"(/v "C:\\" /t REG_SZ /d "a\\")"},
      {"a&b", "\"say \\\"x\\\" & y\"", R"(/v "a&b" /t REG_SZ /d ^"say \^"x\^" ^& y^")"},
      {"n", "\"a\\\\\\\"b\"", R"(/v "n" /t REG_SZ /d ^"a\\\^"b^")"},
      {"n", "dword:0000001a", "/v \"n\" /t REG_DWORD /d 0x0000001a"},
      {"n", "hex(b):ff,00,00,00,00,00,00,80", "/v \"n\" /t REG_QWORD /d 0x80000000000000ff"},
      {"n", "hex:01,ff", "/v \"n\" /t REG_BINARY /d 01ff"},
      {"n", "hex:", "/v \"n\" /t REG_BINARY"},
      {"n", "hex(0):00,00", "/v \"n\" /t REG_NONE"},
      {"n", "hex(0):", nullptr},
      {"n", "hex(2):25,00,41,00,25,00,00,00", R"(/v "n" /t REG_EXPAND_SZ /d ^"^%A^%^")"},
      {"n", "hex(7):61,00,00,00,62,00,00,00,00,00", R"(/v "n" /t REG_MULTI_SZ /d "a\0b")"},
      {"n", "hex(7):5c,00,30,00,00,00,7c,00,00,00,00,00", R"(/v "n" /t REG_MULTI_SZ /s ";" /d "\0;|")"},
      {"n", "hex(7):61,00,5c,00,00,00,62,00,00,00,00,00", R"(/v "n" /t REG_MULTI_SZ /s "|" /d "a\|b")"},
      {"n", "hex(7):00,00", nullptr},
      {"n", "hex(1):61,00,0a,00,00,00", nullptr},
      {"n", "hex(0):01", nullptr},
      {"n", "hex(4):01", nullptr},
      {"n", "hex(5):00,00,00,01", nullptr},
      {"n", "hex(ffff0012):07", nullptr},
      {"n\n", "\"x\"", nullptr},
  };
  for (const auto& [name, assignment, behind_path] : cases) {
    const auto line = RegAddValueLine("HKEY_USERS\\A B", name, Of(assignment));
    EXPECT_EQ(line.value_or("(none)"),
              behind_path ? std::string(R"(reg add "HKEY_USERS\A B" )") + behind_path + " /f" : "(none)");
  }
  EXPECT_EQ(RegAddValueLine("K", "n", {}), "reg delete \"K\" /v \"n\" /f");
  EXPECT_EQ(RegAddKeyLine("HKEY_USERS\\100%"), R"(reg add ^"HKEY_USERS\100^%^" /f)");
  EXPECT_EQ(RegDeleteKeyLine("K"), "reg delete \"K\" /f");
  RegData longest;
  longest.text.assign(kMaxCommandLine, 'x');
  EXPECT_FALSE(RegAddValueLine("K", "n", longest));
}
