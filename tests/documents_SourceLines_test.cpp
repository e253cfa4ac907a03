#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "documents/SourceLines.h"

namespace tme {
namespace {

class SourceLinesTest : public testing::Test {
 protected:
  SourceLines::Piece Append(std::string_view lines) { return lines_.Append(texts_.Copy(lines), 0); }
  std::string Written() const {
    std::string all;
    lines_.Write([&all](std::string_view part) {
      all.append(part);
      return true;
    });
    return all;
  }

  TextStore texts_;
  SourceLines lines_{texts_};
};

TEST_F(SourceLinesTest, UntouchedTextIsOnePart) {
  const std::string text = "a\r\n\nb\rlast";
  for (const auto& [from, size] : std::vector<std::pair<std::size_t, std::size_t>>{{0, 3}, {3, 1}, {4, 2}, {6, 4}})
    lines_.Append(std::string_view(text).substr(from, size), 0);
  int parts = 0;
  EXPECT_TRUE(lines_.Write([&](std::string_view part) { return ++parts == 1 && part == text; }));
  EXPECT_EQ(parts, 1);
  EXPECT_FALSE(lines_.Write([](std::string_view) { return false; }));
  EXPECT_EQ(lines_.Size(), text.size());
}

TEST_F(SourceLinesTest, ANewLineTakesTheEndOfItsNeighbourAndALastOneStaysWithout) {
  EXPECT_EQ(lines_.LineEndBehind(SourceLines::kEnds), "\r\n");
  const auto first = Append("a\n"), last = Append("b");
  EXPECT_EQ(lines_.LineEndBehind(SourceLines::kEnds), "\n");
  lines_.InsertBehind(SourceLines::kEnds, "0", 0);
  lines_.InsertBehind(first, "x", 0);
  const auto end = lines_.InsertBehind(last, "c\r\n", 0);
  EXPECT_EQ(Written(), "0\na\nx\nb\nc");
  lines_.Remove(end);
  EXPECT_EQ(Written(), "0\na\nx\nb\n");
  lines_.InsertBehind(lines_.Last(), "d", 0);
  EXPECT_EQ(Written(), "0\na\nx\nb\nd\n");
}

TEST_F(SourceLinesTest, RemovalsAreTakenBackAndPiecesMove) {
  const auto a = Append("a\n"), b = Append("b\n"), c = Append("c");
  lines_.Remove(b);
  lines_.Remove(a);
  EXPECT_EQ(Written(), "c");
  lines_.Restore(a);
  lines_.Restore(b);
  EXPECT_EQ(Written(), "a\nb\nc");
  lines_.MoveBehind(c, a);
  EXPECT_EQ(Written(), "b\nc\na");
  lines_.MoveBehind(SourceLines::kEnds, a);
  EXPECT_EQ(Written(), "a\nb\nc\n");
  lines_.Replace(c, "C\n");
  EXPECT_EQ(Written(), "a\nb\nC\n");
}

}  // namespace
}  // namespace tme
