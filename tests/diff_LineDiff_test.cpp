#include <gtest/gtest.h>

#include <random>
#include <string>

#include "documents/diff/LineDiff.h"

namespace {

using tme::DiffChange;
using tme::DiffLines;

std::string Shown(const std::vector<tme::DiffLine>& lines) {
  std::string shown;
  for (const tme::DiffLine& line : lines)
    shown.append(1, " -+"[static_cast<int>(line.change)]).append(line.text).append(1, ' ');
  return shown;
}

TEST(LineDiff, TellsWhatChanged) {
  EXPECT_EQ(Shown(DiffLines("", "")), "");
  EXPECT_EQ(Shown(DiffLines("a\nb\n", "a\r\nb")), " a  b ") << "line ends do not count";
  EXPECT_EQ(Shown(DiffLines("a\nb\nc\n", "a\nx\nc\n")), " a -b +x  c ");
  EXPECT_EQ(Shown(DiffLines("a\nb\nc\na\nb\nb\na\n", "c\nb\na\nb\na\nc\n")), "-a -b  c +b  a  b -b  a +c ");
  EXPECT_EQ(Shown(DiffLines("h\n1\n2\nt\n", "h\n3\n4\nt\n", 1)), " h -1 -2 +3 +4  t ") << "over the limit";
  EXPECT_EQ(Shown(DiffLines("1\nu\n2\nv\n3\n", "4\nu\n5\nv\n6\n", 1)), "-1 +4  u -2 +5  v -3 +6 ") << "cut at u and v";
}

TEST(LineDiff, GivesBackBothTexts) {
  std::mt19937 random(7);
  for (int round = 0; round < 500; ++round) {
    std::string texts[2];
    for (std::string& text : texts)
      for (auto lines = random() % 12; lines > 0; --lines) text.append(1, "abc"[random() % 3]).append("\n");
    std::string before, after;
    for (const tme::DiffLine& line : DiffLines(texts[0], texts[1])) {
      if (line.change != DiffChange::Added) before.append(line.text).append("\n");
      if (line.change != DiffChange::Removed) after.append(line.text).append("\n");
    }
    ASSERT_EQ(before, texts[0]);
    ASSERT_EQ(after, texts[1]);
  }
}

}  // namespace
