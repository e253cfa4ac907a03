#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "documents/compare/Merge.h"

namespace tme {
namespace {

constexpr OutlineOptions kApart{.blocks = OutlineOptions::Blocks::Apart};

MergeResult MergeIni(const std::string& base, const std::string& ours, const std::string& theirs) {
  return *MergeOutlines(ReadIniOutline(base, kApart), ReadIniOutline(ours, kApart), ReadIniOutline(theirs, kApart));
}

MergeResult MergeReg(const std::string& base, const std::string& ours, const std::string& theirs) {
  const RegCoding coding{.version = RegVersion::Regedit4,
                         .from_code_page = [](std::string_view bytes) { return std::string(bytes); },
                         .to_code_page = [](std::string_view text) -> std::optional<std::string> {
                           if (text.find('\xC3') != text.npos) return std::nullopt;
                           return std::string(text);
                         }};
  return *MergeOutlines(ReadRegOutline(base, coding, kApart), ReadRegOutline(ours, coding, kApart),
                        ReadRegOutline(theirs, coding, kApart));
}

/// Each conflict as "line group item".
std::string Conflicts(const MergeResult& result) {
  std::string text;
  for (const MergeConflict& conflict : result.conflicts)
    text += std::to_string(conflict.line) + " " + conflict.group + " " + conflict.item + "\n";
  return text;
}

struct MergeCase {
  const char* what;
  const char *base, *ours, *theirs, *merged;
  const char* conflicts = "";
};

TEST(CompareMerge, OfIniFilesKeepsWhatBothSidesDid) {
  const MergeCase cases[] = {
      {"neighbours", "[A]\na=1\nb=2\n", "[A]\na = 9 \nb=2\n", "[A]\na=1\nb=8\n", "[A]\na = 9 \nb=8\n"},
      {"a new value in our writing", "[A]\nkey=1\nx=1\n", "[A]\n  Key = 1\nx=2\n", "[A]\nkey=3\nx=1\n",
       "[A]\n  Key = 3\nx=2\n"},
      {"both add to one section", "[A]\na=1\n\n[B]\nb=1\n", "[A]\na=1\nours=1\n\n[B]\nb=1\n",
       "[A]\na=1\n; why\ntheirs=1\n\n[B]\nb=1\n", "[A]\na=1\nours=1\n; why\ntheirs=1\n\n[B]\nb=1\n"},
      {"both add the same", "[A]\n", "[A]\nn=1\n", "[A]\nN = 1\n", "[A]\nn=1\n"},
      {"they add at the top, in a paragraph", "[A]\n\na=1\n", "[A]\n\na=2\n", "[A]\n\nn=0\na=1\n", "[A]\n\nn=0\na=2\n"},
      {"we sort, they edit and add", "[B]\nb=1\na=1\n[A]\nz=1\n", "[A]\nz=1\n[B]\na=1\nb=1\n",
       "[B]\nb=2\nn=5\na=1\n[A]\nz=1\n", "[A]\nz=1\n[B]\na=1\nb=2\nn=5\n"},
      {"they sort, we edit", "[B]\nb=1\na=1\n\n[A]\nz=1\n", "[B]\nb=3\na=1\n\n[A]\nz=1\n",
       "[A]\nz=1\n\n[B]\na=1\nb=1\n", "[B]\nb=3\na=1\n\n[A]\nz=1\n"},
      {"deletions of entries and sections", "[A]\na=1\n\nb=1\nc=1\n\n[B]\nx=1\n\n[C]\nc=1\n",
       "[A]\na=2\n\nb=1\nc=1\n\n[B]\nx=1\n\n[C]\nc=1\n", "[A]\na=1\n\nc=1\n\n[C]\nc=1\n",
       "[A]\na=2\n\nc=1\n\n[C]\nc=1\n"},
      {"comments that they change come along", "; old\na=1\n\n; free\n\nb=1\n", "; old\na=2\n\n; free\n\nb=1\n",
       "; new\n; lines\na=1\n\n; other\n\nb=1\n", "; new\n; lines\na=2\n\n; other\n\nb=1\n"},
      {"comments that we wrote above what they deleted stay", "[S]\nk=1\nj=1\n[T]\nt=1\n",
       "[S]\n; ours\nk=1\nj=1\n; mine\n[T]\n; in\nt=1\n", "[S]\nj=1\n", "[S]\n; ours\nj=1\n; mine\n; in\n"},
      {"comments that they wrote above what we deleted come", "[S]\nk=1\nj=1\n[T]\nt=1\n", "[S]\nj=1\n",
       "[S]\n; theirs\nk=1\nj=1\n; mine\n[T]\n; in\nt=1\n", "[S]\n; theirs\nj=1\n; mine\n; in\n"},
      {"old comments go with what they stand above", "; of k\nk=1\n\n; free\n\nj=1\n", "j=1\n",
       "; of k\nk=1\n\n; free\n\nj=2\n", "j=2\n"},
      {"comments of their own in a section that goes", "[S]\ns=1\n\n[T]\nt=1\n", "[S]\ns=1\n\n[T]\n; ours\n\nt=1\n",
       "[S]\ns=2\n", "[S]\ns=2\n; ours\n"},
      {"lines that stand deeper", "[t]\nd =\n  a\n  b\ne=1\n", "[t]\nd =\n  a\n  b\ne=2\n", "[t]\nd =\n  a\n  c\ne=1\n",
       "[t]\nd =\n  a\n  c\ne=2\n"},
      {"such lines in our writing", "[t]\nd =\n  a\n\n[u]\nu=1\n", "[t]\r\nD = \r\n\ta\r\n\r\n[u]\r\nu=2\r\n",
       "[t]\nd =\n  a\n  # c\n  b\n\n[u]\nu=1\n", "[t]\r\nD = \r\n  a\r\n  # c\r\n  b\r\n\r\n[u]\r\nu=2\r\n"},
      {"a value of several lines becomes one", "d=\n  a\nx=1\n", "d=\n    a\nx=2\n", "d=1\nx=1\n", "d=1\nx=2\n"},
      {"and is deleted whole", "d=\n  a\n\n  b\nx=1\n", "d=\n  a\n\n  b\nx=2\n", "x=1\n", "x=2\n"},
      {"additions behind what they follow, in our order", "a=1\nb=1\nc=1\n", "c=1\nb=1\na=1\n", "a=1\nn=1\nb=1\nc=1\n",
       "c=1\nb=1\na=1\nn=1\n"},
      {"sections likewise", "[A]\na=1\n[B]\nb=1\n", "[B]\nb=1\n[A]\na=1\n", "[A]\na=1\n[N]\nn=1\n[B]\nb=1\n",
       "[B]\nb=1\n[A]\na=1\n[N]\nn=1\n"},
      {"two files of nothing in common", "", "[A]\na=1\n", "[a]\nb=1\n[B]\n", "[A]\na=1\nb=1\n\n[B]\n"},
      {"a comment that both wrote", "[A]\nk=1\nj=1\n", "[A]\nk=1\n; c\nj=1\n", "[A]\nk=1\n; c\nj=1\n",
       "[A]\nk=1\n; c\nj=1\n"},
      {"a last line without an end", "[A]\nk=1", "[A]\nk=1\nn=2", "[A]\nk=1\nm=3", "[A]\nk=1\nn=2\nm=3"},
      {"all of ours went", "[A]\na=1\n", "", "[A]\na=1\n; c\n", "; c\n"},
      {"comments that we changed stay", "# old\na=1\nx=1\n", "# ours\na=1\nx=1\n", "# theirs\na=3\nx=1\n",
       "# ours\na=3\nx=1\n"},
      {"sections of theirs come behind their neighbours", "[A]\na=1\n\n[B]\nb=1\n",
       "[A]\na=1\n\n[B]\nb=1\n\n[O]\no=1\n", "[A]\na=1\n\n; new\n[N]\nn=1\n\n[B]\nb=1\n\n[T]\nt=1\n",
       "[A]\na=1\n\n; new\n[N]\nn=1\n\n[B]\nb=1\n\n[O]\no=1\n\n[T]\nt=1\n"},
      {"duplicates by their number", "[A]\nk=1\nk=2\n[A]\nk=3\n", "[A]\nk=1\nk=2\n[A]\nk=9\n",
       "[A]\nk=1\nk=7\nk=8\n[A]\nk=3\n", "[A]\nk=1\nk=7\nk=8\n[A]\nk=9\n"},
      {"our line ends, theirs nowhere", "a=1\r\nb=1", "a=2\r\nb=1", "a=1\nb=1\nc=1\n", "a=2\r\nb=1\r\nc=1"},
      {"a file of ours that is as it was", "a=1\n", "a=1\n", "b=1\r\na=1", "b=1\r\na=1"},
      {"entries without a value", "a\nb\n", "a=\nb\n", "a\nb=2\n", "a=\nb=2\n"},
      {"quotes are bytes", "a=1\nb=1\n", "a=2\nb=1\n", "a=1\nb = \"1\"\n", "a=2\nb = \"1\"\n"},
  };
  for (const MergeCase& it : cases) {
    const MergeResult result = MergeIni(it.base, it.ours, it.theirs);
    EXPECT_EQ(result.text, it.merged) << it.what;
    EXPECT_EQ(Conflicts(result), it.conflicts) << it.what;
  }
}

TEST(CompareMerge, ConflictsAreMarkedAndKeepBoth) {
  const MergeCase cases[] = {
      {"two values", "[A]\nk=1\n", "[A]\nK = 2\n", "[A]\nk=3\n", "[A]\n; MERGE CONFLICT theirs: k=3\nK = 2\n",
       "2 [A] K=2\n"},
      {"both added", "# c\n[A]\n", "# c\n[A]\nn=1\n", "# c\n[A]\nn=2\n",
       "# c\n[A]\n# MERGE CONFLICT theirs: n=2\nn=1\n", "3 [A] n=1\n"},
      {"values of several lines", "d=\n  a\nx=1\n", "d=\n  a\n  b\nx=1\n", "d=\n  c\nx=1\n",
       "; MERGE CONFLICT theirs: d=\n; MERGE CONFLICT theirs:   c\nd=\n  a\n  b\nx=1\n", "1  d=\\na\\nb\n"},
      {"they deleted what we changed", "a=1\nb=1\n", "a=2\nb=1\n", "b=1\n",
       "; MERGE CONFLICT theirs: deleted\na=2\nb=1\n", "1  a=2\n"},
      {"we deleted what they changed", "a=1\nb=1\n", "b=1\n", "a=2\nb=1\n",
       "; MERGE CONFLICT ours: deleted\na=2\nb=1\n", "1  a=2\n"},
      {"they deleted a section that we changed", "[A]\na=1\n\n[B]\nb=1\nc=1\n", "[A]\na=1\n\n[B]\nb=2\nc=1\n",
       "[A]\na=1\n", "[A]\na=1\n\n; MERGE CONFLICT theirs: deleted\n[B]\nb=2\nc=1\n", "4 [B] \n"},
      {"they deleted one of two of a name", "[A]\na=1\n[a]\nb=1\n", "[A]\na=1\n[a]\nb=2\n", "[A]\na=2\n",
       "[A]\na=2\n; MERGE CONFLICT theirs: deleted\n[a]\nb=2\n", "3 [a] (2) \n"},
      {"we named a section anew", "[A]\na=1\n\n[B]\nb=1\n", "[A]\na=1\n\n[C]\nb=1\n", "[A]\na=1\n\n[B]\nb=2\n",
       "[A]\na=1\n\n[C]\nb=1\n\n; MERGE CONFLICT ours: deleted\n[B]\nb=2\n", "7 [B] \n"},
      {"we deleted a section that they changed", "[A]\na=1\n\n[B]\nb=1\nc=1\n", "[A]\na=1\n",
       "[A]\na=1\n\n[B]\nb=2\nc=1\n", "[A]\na=1\n\n; MERGE CONFLICT ours: deleted\n[B]\nb=2\nc=1\n", "4 [B] \n"},
  };
  for (const MergeCase& it : cases) {
    const MergeResult result = MergeIni(it.base, it.ours, it.theirs);
    EXPECT_EQ(result.text, it.merged) << it.what;
    EXPECT_EQ(Conflicts(result), it.conflicts) << it.what;
  }
}

TEST(CompareMerge, OfRegistryFiles) {
  const std::string v5 = "Windows Registry Editor Version 5.00\n", v4 = "REGEDIT4\n";
  struct RegCase {
    const char* what;
    std::string base, ours, theirs, merged;
    const char* conflicts = "";
  };
  const std::string k = "[K]\n\"x\"=\"1\"\n", hex2 = "\"x\"=hex(2):41,00,00,00\n";
  const RegCase cases[] = {
      {"letter case and paths", v5 + "[HKEY_USERS\\K]\n\"a\"=\"1\"\n\"b\"=\"1\"\n",
       v5 + "[HKEY_USERS\\\\k]\n\"A\" = \"2\"\n\"b\"=\"1\"\n", v5 + "[HKEY_USERS\\K]\n\"a\"=\"1\"\n\"B\"=\"3\"\n",
       v5 + "[HKEY_USERS\\\\k]\n\"A\" = \"2\"\n\"B\"=\"3\"\n"},
      {"wrapping is no change", v5 + "[K]\n\"h\"=hex:01,02\n\"x\"=\"1\"\n",
       v5 + "[K]\n\"h\"=hex:01,\\\n  02\n\"x\"=\"2\"\n", v5 + "[K]\n\"h\"=hex:01,03\n\"x\"=\"1\"\n",
       v5 + "[K]\n\"h\"=hex:01,03\n\"x\"=\"2\"\n"},
      {"theirs in our version", v4 + "[K]\n\"a\"=\"1\"\n", v4 + "[K]\n\"a\"=\"2\"\n", v5 + "[K]\n\"a\"=\"1\"\n" + hex2,
       v4 + "[K]\n\"a\"=\"2\"\n\"x\"=hex(2):41,00\n"},
      {"what our version cannot say", v4 + "[K]\n", v4 + "[K]\n\"a\"=\"2\"\n", v5 + "[K]\n\"x\"=hex(2):e4,00,00,00\n",
       v4 + "[K]\n\"a\"=\"2\"\n; MERGE CONFLICT theirs: \"x\"=hex(2):e4,00,00,00\n",
       "4 [K] \"x\"=expand:\"\xC3\xA4\"\n"},
      {"deletions, and a value of many lines", v5 + "[-K]\n[K]\n@=hex:01\n", v5 + "[-K]\n[K]\n@=hex:02\n",
       v5 + "[-K]\n[K]\n@=hex:03,\\\n  04\n\"v\"=-\n",
       v5 + "[-K]\n[K]\n; MERGE CONFLICT theirs: @=hex:03,\\\n; MERGE CONFLICT theirs:   04\n@=hex:02\n\"v\"=-\n",
       "4 [K] @=hex:02\n"},
      {"their deletion of a key in which we added", v4 + k + "[K\\S]\n", v4 + k + "\"y\"=\"1\"\n[K\\S]\n",
       v4 + k + "[K\\S]\n\n; why\n[-k]\n\"z\"=\"1\"\n",
       v4 + k + "\"y\"=\"1\"\n[K\\S]\n\n; why\n; MERGE CONFLICT theirs: [-k]\n; MERGE CONFLICT theirs: \"z\"=\"1\"\n",
       "8 [-k] \n"},
      {"our deletion of a key below which they added", v4 + k, v4 + k + "[-K]\n", v4 + k + "[K\\N]\n\"n\"=\"1\"\n",
       v4 + k + "; MERGE CONFLICT ours: [-K]\n[K\\N]\n\"n\"=\"1\"\n", "4 [-K] \n"},
      {"deletions of what the other one left alone", v4 + k + "[L]\n\"l\"=\"1\"\n", v4 + k + "[L]\n\"l\"=\"2\"\n",
       v4 + k + "[L]\n\"l\"=\"1\"\n[-K]\n", v4 + k + "[L]\n\"l\"=\"2\"\n[-K]\n"},
      {"a deletion before its key is a clean start", v4 + k, v4 + k + "\"y\"=\"1\"\n", v4 + "[-K]\n" + k,
       v4 + "[-K]\n" + k + "\"y\"=\"1\"\n"},
      {"lines of pairs", "REGEDIT\nHKEY_USERS\\a = 1\nHKEY_USERS\\b = 1\n",
       "REGEDIT\nHKEY_USERS\\a = 2\nHKEY_USERS\\b = 1\n", "REGEDIT\nHKEY_USERS\\a = 1\nHKEY_USERS\\B = 3\n",
       "REGEDIT\nHKEY_USERS\\a = 2\nHKEY_USERS\\B = 3\n"},
  };
  for (const RegCase& it : cases) {
    const MergeResult result = MergeReg(it.base, it.ours, it.theirs);
    EXPECT_EQ(result.text, it.merged) << it.what;
    EXPECT_EQ(Conflicts(result), it.conflicts) << it.what;
  }
  const OutlineOptions apart = kApart;
  EXPECT_FALSE(MergeOutlines(ReadRegOutline(v4, {}, apart), ReadRegOutline(v4 + ";", {}, apart),
                             ReadRegOutline("REGEDIT\nHKEY_USERS\\a = 1\n", {}, apart)));
}

}  // namespace
}  // namespace tme
