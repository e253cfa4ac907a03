#include <gtest/gtest.h>

#include <string>

#include "documents/compare/OutlineDiff.h"
#include "documents/compare/RegPatch.h"

namespace tme {
namespace {

const RegCoding kCoding{.version = RegVersion::Regedit4,
                        .from_code_page = [](std::string_view bytes) { return std::string(bytes); },
                        .to_code_page = [](std::string_view text) { return std::optional(std::string(text)); }};

std::string DiffOf(const Outline& before, const Outline& after, OutlineOrder order = OutlineOrder::PassedOver) {
  return DiffText(before, after, DiffOutlines(before, after, order));
}

std::string DiffIni(const std::string& before, const std::string& after, OutlineOrder order = OutlineOrder::PassedOver,
                    OutlineOptions::Comments comments = OutlineOptions::Comments::PassedOver) {
  return DiffOf(ReadIniOutline(before, {.comments = comments}), ReadIniOutline(after, {.comments = comments}), order);
}

std::string DiffReg(const std::string& before, const std::string& after) {
  return DiffOf(ReadRegOutline(before, kCoding), ReadRegOutline(after, kCoding));
}

TEST(CompareDiff, OfIniFilesTellsWhatTheySay) {
  struct Case {
    const char *before, *after, *diff;
  } const cases[] = {
      {"[A]\na=1\n[B]\nb=1", "; c\r\n[b]\r\n B = 1\r\n\r\n[a]\r\nA=1\r\n", ""},
      {"[A]\na=1\nb=1\nc=1\n", "[A]\na=2\nn=0\nc=1\n", " [A]\n-a=1\n+a=2\n+n=0\n-b=1\n"},
      {"[A]\na=1\n[B]\nb=1\n", "[A]\na=1\n[N]\nn=1\n", "+[N]\n+n=1\n-[B]\n-b=1\n"},
      {"a\nb=\"1\"\n", "a=\nb=1\n", "-a\n+a=\n-b=\"1\"\n+b=1\n"},
      {"[A]\nk=1\nk=2\n[A]\nx=1\n", "[A]\nk=2\n[A]\nx=2\n", " [A]\n-k=1\n+k=2\n-k=2\n [A] (2)\n-x=1\n+x=2\n"},
  };
  for (const auto& it : cases) {
    EXPECT_EQ(DiffIni(it.before, it.after), it.diff) << it.before;
    EXPECT_EQ(DiffIni(it.after, it.after, OutlineOrder::Told), "") << it.before;
  }
  EXPECT_EQ(DiffIni("[A]\na=1\nb=1\nc=1\n[B]\n", "[B]\n[A]\nc=1\na=1\nb=2\n", OutlineOrder::Told),
            " [A]\n-b=1\n+b=2\n>c=1\n>[B]\n");
  EXPECT_EQ(DiffIni("; c\na=1\n", "; d\na=1\n", OutlineOrder::PassedOver, OutlineOptions::Comments::Found),
            "+; d\n-; c\n");
}

TEST(CompareDiff, LinesThatStandDeeperAreMoreOfAValue) {
  struct Case {
    const char *what, *before, *after, *diff;
  } const cases[] = {
      {"a line below another key", "[t]\nd =\n  x\ns =\n  y\n", "[t]\nd =\n  y\ns =\n  x\n",
       " [t]\n-d=\\nx\n+d=\\ny\n-s=\\ny\n+s=\\nx\n"},
      {"another order of lines", "d=1\n x\n y\n", "d=1\n y\n x\n", "-d=1\\nx\\ny\n+d=1\\ny\\nx\n"},
      {"depth, blank lines, comments, line ends", "d=1\n x\n y\nz=1\n", "d = 1\r\n\t\tx\r\n\r\n; c\r\n  y\r\nz=1\r\n",
       ""},
      {"one line more at the end", "d=1\n x\n\n[B]\n", "d=1\n x\n\n y\n[B]\n", "-d=1\\nx\n+d=1\\nx\\ny\n"},
      {"a key without a value", "[A]\nd\n x\n", "[A]\nd\n y\n", " [A]\n-d=\\nx\n+d=\\ny\n"},
      {"as deep as the key: an entry", "[A]\n x\n y\n", "[A]\n y\n x\n", ""},
      {"with a \"=\": an entry", "[A]\na=1\n  b=2\n", "[A]\nb=2\na=1\n", ""},
      {"the first of a section: an entry", "a=1\n[A]\n  x\n[B]\n", "a=1\n[B]\n[A]\nx\n", ""},
  };
  for (const auto& it : cases) {
    EXPECT_EQ(DiffIni(it.before, it.after), it.diff) << it.what;
    EXPECT_EQ(DiffIni(it.after, it.after, OutlineOrder::Told, OutlineOptions::Comments::Found), "") << it.what;
  }
  EXPECT_EQ(DiffIni("d=1\n ; c\n x\n", "d=1\n x\n", OutlineOrder::PassedOver, OutlineOptions::Comments::Found),
            "-d=1\\n; c\\nx\n+d=1\\nx\n");
  // Each line belongs to one item, so that a merge loses none.
  const std::string text = "; a\n\n[t]\nd=1\n\n# c\n x\n# free\n\ne=1\n   \n";
  const Outline outline = ReadIniOutline(text);
  std::string lines;
  for (Outline::Index item = 0; item < outline.Items().size(); ++item) lines += outline.LinesOf(item);
  EXPECT_EQ(lines, text);
  EXPECT_EQ(outline.LinesOf(3), "d=1\n\n# c\n x\n");
}

TEST(CompareDiff, CommentsBesideRegistryValuesCountWhereAskedFor) {
  const OutlineOptions found{.comments = OutlineOptions::Comments::Found};
  const std::string top = "REGEDIT4\n[K]\n";
  struct Case {
    const char *before, *after, *diff;
  } const cases[] = {
      {"\"q\"=\"x\" ; a\n", "\"q\"=\"x\"  ; a\n", ""},
      {"\"q\"=\"x\" ; a\n", "\"q\"=\"x\" ; b\n", " [K]\n-\"q\"=\"x\" ; a\n+\"q\"=\"x\" ; b\n"},
      {"\"q\"=\"x\"\n", "\"q\"=\"x\" ; b\n", " [K]\n-\"q\"=\"x\"\n+\"q\"=\"x\" ; b\n"},
      {"\"q\"=hex:01,\\\n; in\n  02\n", "\"q\"=hex:01,\\\n  02\n", " [K]\n-\"q\"=hex:01,02 ; in\n+\"q\"=hex:01,02\n"},
  };
  for (const auto& it : cases) {
    EXPECT_EQ(DiffOf(ReadRegOutline(top + it.before, kCoding, found), ReadRegOutline(top + it.after, kCoding, found)),
              it.diff);
    EXPECT_EQ(DiffReg(top + it.before, top + it.after), "") << "not asked for";
  }
}

TEST(CompareDiff, OfRegistryFilesTellsWhatTheySay) {
  const std::string v5 = "Windows Registry Editor Version 5.00\n", v4 = "REGEDIT4\n";
  struct Case {
    std::string before, after;
    const char* diff;
  } const cases[] = {
      {v5 + "[HKEY_USERS\\A]\n\"x\"=hex(2):41,00,\\\n  00,00\n\"n\"=dword:1f\n@=\"\\\"\"\n",
       v4 + "[hkey_users\\\\a\\]\n@=hex(1):22,00\n\"N\"=hex(4):1f,00,00,00\n\n[HKEY_USERS\\A]\n\"X\"=hex(2):41,00\n",
       ""},
      {v4 + "[HKEY_USERS\\a]\n@=\"1\"\n", "REGEDIT\nHKEY_USERS\\a = 2\n", " [HKEY_USERS\\a]\n-@=\"1\"\n+@=\"2\"\n"},
      {v5 +
           "[K]\n\"m\"=hex(7):41,00,00,00,42,00,00,00,00,00\n\"q\"=hex(b):01,00,00,00,00,00,00,00\n\"b\"=hex:01\nodd\n",
       v5 + "[K]\n\"a\\\\b\"=-\n",
       " [K]\n+\"a\\\\b\"=-\n-\"m\"=multi:\"A\",\"B\"\n-\"q\"=qword:0000000000000001\n-\"b\"=hex:01\n-odd\n"},
      {v5 + "[-K]\n[K\\S]\n", v5 + "[K\\S]\n[-k]\n", ">[-K]\n"},
  };
  for (const auto& it : cases) {
    EXPECT_EQ(DiffReg(it.before, it.after), it.diff) << it.before;
    EXPECT_EQ(DiffReg(it.after, it.after), "") << it.before;
  }
}

TEST(CompareDiff, AsARegistryFileMakesOneTheOther) {
  const std::string v5 = "Windows Registry Editor Version 5.00\r\n";
  struct Case {
    const char *before, *after, *patch, *undo;
  } const cases[] = {
      {"[K]\n\"a\"=\"1\"\n\"b\"=dword:1\n", "[k]\n\"A\"=\"2\"\n\"c\"=hex(7):00,00\n",
       "\r\n[K]\r\n\"b\"=-\r\n\"A\"=\"2\"\r\n\"c\"=hex(7):00,00\r\n",
       "\r\n[k]\r\n\"c\"=-\r\n\"a\"=\"1\"\r\n\"b\"=dword:00000001\r\n"},
      // A key that others stand in loses its values alone; what goes with another key is not deleted again.
      {"[K]\n@=\"1\"\n[K\\S]\n[X]\n[X\\Y]\n", "[K\\S]\n[-Z]\n", "\r\n[-Z]\r\n\r\n[K]\r\n@=-\r\n\r\n[-X]\r\n",
       "\r\n[K]\r\n@=\"1\"\r\n\r\n[X]\r\n\r\n[X\\Y]\r\n"},
      // What a file deletes again it does not leave, and the last value of a name counts.
      {"[K]\n\"a\"=\"1\"\n[-K]\n[K]\n\"b\"=\"1\"\n\"b\"=\"2\"\n", "[K]\n\"b\"=\"2\"\n\"c\"=-\n",
       "\r\n[K]\r\n\"c\"=-\r\n", "\r\n[-K]\r\n\r\n[K]\r\n\"b\"=\"2\"\r\n"},
      // A key that is new because it is deleted first gets all of its values.
      {"[K]\n\"a\"=\"1\"\n[K\\S]\n", "[-K]\n[K]\n\"a\"=\"1\"\n", "\r\n[-K]\r\n\r\n[K]\r\n\"a\"=\"1\"\r\n",
       "\r\n[K\\S]\r\n"},
      {"[\\-K]\n\"a\"=\"1\"\n", "", "\r\n[--K]\r\n", "\r\n[\\-K]\r\n\"a\"=\"1\"\r\n"},
      {"[K]\n\"a\"=\"1\"\n", "; c\n[K]\n\"a\"=\"1\"\n", "", ""},
      // Values in another order, in several blocks, with comments between them, and names that come again.
      {"[K]\n\"a\"=\"1\"\n\"b\"=\"2\"\n; c\n\"c\"=\"3\"\n[L]\n\"a\"=\"1\"\n[k]\n\"d\"=\"4\"\n",
       "[L]\n\"A\"=\"1\"\n[K]\n\"d\"=\"4\"\n\"c\"=\"3\"\n\n\"b\"=\"2\"\n\"a\"=\"0\"\n\"a\"=\"1\"\n", "", ""},
      {"[K]\n\"a\"=\"1\"\n\"b\"=\"2\"\n[L]\n\"b\"=\"9\"\n", "[L]\n\"b\"=\"2\"\n[K]\n\"b\"=\"2\"\n\"b\"=\"3\"\n",
       "\r\n[L]\r\n\"b\"=\"2\"\r\n\r\n[K]\r\n\"a\"=-\r\n\"b\"=\"3\"\r\n",
       "\r\n[K]\r\n\"a\"=\"1\"\r\n\"b\"=\"2\"\r\n\r\n[L]\r\n\"b\"=\"9\"\r\n"},
  };
  const auto expected = [&v5](const char* blocks) { return *blocks == '\0' ? std::string() : v5 + blocks; };
  for (const auto& it : cases) {
    const Outline before = ReadRegOutline(v5 + it.before, kCoding), after = ReadRegOutline(v5 + it.after, kCoding);
    EXPECT_EQ(RegPatch(before, after), expected(it.patch)) << it.before;
    EXPECT_EQ(RegPatch(after, before), expected(it.undo)) << it.before;
  }
  const Outline none = ReadRegOutline("REGEDIT4\n", kCoding);
  EXPECT_EQ(RegPatch(none, ReadRegOutline("REGEDIT4\n[K]\n\"x\"=hex(2):41,00\n", kCoding)),
            "REGEDIT4\r\n\r\n[K]\r\n\"x\"=hex(2):41,00\r\n");
  EXPECT_EQ(RegPatch(ReadRegOutline(v5, kCoding), ReadRegOutline("REGEDIT4\n[K]\n\"x\"=hex(2):41,00\n", kCoding)),
            v5 + "\r\n[K]\r\n\"x\"=hex(2):41,00,00,00\r\n");
}

}  // namespace
}  // namespace tme
