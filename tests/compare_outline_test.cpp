// What INI and registry files say: which names are the same, what a deletion takes, which kind a text is.
#include <gtest/gtest.h>

#include <string>

#include "documents/compare/FileKind.h"
#include "documents/compare/Outline.h"
#include "documents/compare/OutlineDiff.h"
#include "documents/compare/RegPatch.h"

namespace tme {
namespace {

constexpr const char* kTop = "REGEDIT4\n";

/// "sort path number: names", a line for each group, with "deleted" and "behind" for what is so.
std::string GroupsOf(const Outline& outline) {
  std::string text;
  for (Outline::Index at = 0; at < outline.Groups().size(); ++at) {
    const Outline::Group& group = outline.Groups()[at];
    text += GroupLabel(outline, at);
    if (group.joined != at) text += " as " + std::to_string(group.joined);
    if (group.is_deleted) text += " deleted";
    if (group.follows_keys) text += " behind";
    text += ":";
    for (Outline::Index item = group.begin; item < group.end; ++item)
      if (const Outline::Item& it = outline.Items()[item]; outline.IsContent(it))
        text += " " + outline.NameOf(it) + (it.number > 0 ? "#" + std::to_string(it.number) : "") +
                (it.has_next ? "+" : "");
    text += "\n";
  }
  return text;
}

TEST(CompareOutline, NumbersNamesThatComeAgain) {
  EXPECT_EQ(GroupsOf(ReadIniOutline("k=1\n[A]\nk=1\nl=1\nK=2\n k=3\n[\xC3\x84]\n[a]\nk=4\n[\xC3\xA4]\n[A]\n")),
            ": k\n[A]: k+ l K#1+ k#2\n[\xC3\x84]:\n[a] (2): k\n[\xC3\xA4] (2):\n[A] (3):\n");
  const std::string blocks =
      std::string(kTop) +
      "[K]\n\"a\"=\"1\"\n\"a\\\\b\"=\"1\"\n[L]\n\"a\"=\"1\"\n[\\k\\]\n\"A\"=\"2\"\n\"\\a\"=\"3\"\n@=-\n";
  EXPECT_EQ(GroupsOf(ReadRegOutline(blocks, {})), ":\n[K]: a+ a\\b\n[L]: a\n[k] as 1: A#1 \\a \n");
  EXPECT_EQ(GroupsOf(ReadRegOutline(blocks, {}, {.blocks = OutlineOptions::Blocks::Apart})),
            ":\n[K]: a a\\b\n[L]: a\n[k] (2): A \\a \n");
}

TEST(CompareOutline, KnowsWhatDeletionsTake) {
  struct Case {
    const char *text, *groups;
  } const cases[] = {
      {"[K]\n[K\\S]\n[KX]\n[-k]\n", ":\n[K] deleted:\n[K\\S] deleted:\n[KX]:\n[-k] behind:\n"},
      {"[-K]\n[K]\n", ":\n[-K]:\n[K]:\n"},
      {"[K]\n[-K\\S]\n[K\\S\\T]\n", ":\n[K]:\n[-K\\S]:\n[K\\S\\T]:\n"},
      // Between two deletions; a block of the same key behind both.
      {"[-K]\n[K\\S]\n[-K]\n[K\\S]\n", ":\n[-K]:\n[K\\S] deleted:\n[-K] as 1 behind:\n[K\\S] as 2:\n"},
      {"[A\\B\\C]\n[-A\\\\B]\n[-A]\n", ":\n[A\\B\\C] deleted:\n[-A\\B] behind:\n[-A] behind:\n"},
      {"[\xC3\x84\\b]\n[-\xC3\xA4]\n", ":\n[\xC3\x84\\b] deleted:\n[-\xC3\xA4] behind:\n"},
  };
  for (const Case& each : cases) EXPECT_EQ(GroupsOf(ReadRegOutline(kTop + std::string(each.text), {})), each.groups);
}

TEST(CompareOutline, FindsTheSameWhateverIsGuessed) {
  const Outline one = ReadIniOutline("[A]\na=1\n; c\nb=1\na=2\n[B]\na=1\n"),
                other = ReadIniOutline("[b]\nA=1\n[a]\nA=2\nA=1\nB=1\nn=1\n");
  for (const Outline::Item& item : other.Items()) {
    if (!other.IsContent(item)) continue;
    const Outline::Index group = one.FindGroup(other.Groups()[item.group]), found = one.FindItem(group, other, item);
    EXPECT_EQ(found == Outline::kNone, other.NameOf(item) == "n");
    for (Outline::Index guess = 0; guess <= one.Items().size(); ++guess)
      EXPECT_EQ(one.FindItem(group, other, item, guess), found) << other.NameOf(item) << guess;
  }
}

TEST(CompareOutline, PatchesWhatDeletionsLeave) {
  struct Case {
    const char *before, *after, *patch;
  } const cases[] = {
      // A key that begins like the name of another one is not below it.
      {"[K]\n[KX]\n\"a\"=\"1\"\n", "[KX]\n\"a\"=\"1\"\n", "\r\n[-K]\r\n"},
      {"[K]\n[K\\S]\n[K\\S\\T]\n", "", "\r\n[-K]\r\n"},
      {"[K]\n\"a\"=\"1\"\n", "[K]\n\"a\"=\"1\"\n[-K]\n", "\r\n[-K]\r\n"},
      {"[K]\n\"a\"=\"1\"\n[-K]\n[K]\n\"a\"=\"2\"\n", "[-K]\n[K]\n\"a\"=\"3\"\n\"b\"=-\n",
       "\r\n[K]\r\n\"a\"=\"3\"\r\n\"b\"=-\r\n"},
      {"[K]\n\"a\"=\"1\"\n\"a\"=-\n", "[K]\n\"a\"=-\n", ""},
      {"[K]\n\"a\"=-\n\"b\"=\"1\"\n", "[K]\n", "\r\n[K]\r\n\"b\"=-\r\n"},
  };
  for (const Case& each : cases) {
    const std::string patch = RegPatch(ReadRegOutline(kTop + std::string(each.before), {}),
                                       ReadRegOutline(kTop + std::string(each.after), {}));
    EXPECT_EQ(patch, *each.patch == '\0' ? "" : std::string("REGEDIT4\r\n") + each.patch) << each.before;
  }
}

TEST(CompareOutline, TellsTheKindOfAText) {
  const std::pair<const char*, DocumentKind> cases[] = {
      {"", DocumentKind::Ini},
      {"REGEDIT4\n", DocumentKind::Reg},
      {"\n; c\n  Windows Registry Editor Version 5.00\r\n", DocumentKind::Reg},
      {"; c\n[-hkey_users\\A]\n", DocumentKind::Reg},
      {"[HKEY_CURRENT_USER\\A]\n", DocumentKind::Reg},
      {"[HKEY]\n", DocumentKind::Ini},
      {"# c\nREGEDIT4\n", DocumentKind::Ini},
      {"[A]\nREGEDIT4\n[HKEY_USERS]\n", DocumentKind::Ini},
      {"REGEDIT5\n", DocumentKind::Ini},
  };
  for (const auto& [text, kind] : cases) EXPECT_EQ(KindOfText(text), kind) << text;
  EXPECT_EQ(KindOfName("a.b.ReG"), DocumentKind::Reg);
  EXPECT_EQ(KindOfName("x.inf"), DocumentKind::Ini);
  for (const char* name : {"reg", "a.", "a.reg~", "a.ini/b"}) EXPECT_EQ(KindOfName(name), std::nullopt) << name;
}

}  // namespace
}  // namespace tme
