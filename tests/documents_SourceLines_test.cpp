#include <gtest/gtest.h>

#include <string>

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

TEST_F(SourceLinesTest, UntouchedTextIsNotCopied) {
  const std::string line(1000, 'x'), text = [&] {
    std::string all;
    while (all.size() < 3'000'000) all.append(line).append("\n");
    return all;
  }();
  for (std::size_t at = 0; at < text.size(); at += line.size() + 1)
    lines_.Append(std::string_view(text).substr(at, line.size() + 1), 0);
  std::string written;
  int parts = 0;
  EXPECT_TRUE(lines_.Write([&](std::string_view part) {
    written.append(part);
    return ++parts > 0 && part.data() >= text.data() && part.data() < text.data() + text.size() && part.ends_with('\n');
  }));
  EXPECT_EQ(parts, 3);
  EXPECT_TRUE(written == text && lines_.Size() == text.size());
  lines_.InsertBehind(lines_.Next(lines_.First()), "new", 0);
  EXPECT_EQ(Written(), std::string(text).insert(2 * line.size() + 2, "new\n"));
  EXPECT_FALSE(lines_.Write([](std::string_view) { return false; }));
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

TEST_F(SourceLinesTest, EditsAreTakenBackAndMadeAgain) {
  const auto a = Append("a\n"), b = Append("b\n"), c = Append("c\n"), d = Append("d");
  SourceLines::Changes changes;
  lines_.NoteIn(&changes);
  lines_.Remove(c);
  lines_.InsertBehind(d, "e", 1);
  lines_.Remove(a, b);
  lines_.Replace(d, "D\n");
  lines_.SetKind(d, 3);
  const std::string edited = Written();
  EXPECT_EQ(edited, "D\ne");
  for (int round = 0; round < 2; ++round) {
    lines_.Revert(changes);
    EXPECT_EQ(Written(), "a\nb\nc\nd");
    EXPECT_EQ(lines_.Kind(d), 0);
    lines_.Reapply(changes);
    EXPECT_EQ(Written(), edited);
    EXPECT_EQ(lines_.Kind(d), 3);
  }
}

TEST_F(SourceLinesTest, AllLinesTakeOneEnd) {
  EXPECT_EQ(lines_.UsedLineEnds(), LineEnds::CrLf) << "no lines";
  const std::pair<const char*, LineEnds> pieces[] = {{"a\n", LineEnds::Lf},
                                                     {"\n\n", LineEnds::Lf},
                                                     {"b\\\r\n  c\r\n", LineEnds::Mixed},
                                                     {"d\r", LineEnds::Mixed},
                                                     {"e", LineEnds::Mixed}};
  for (const auto& [lines, ends] : pieces) {
    Append(lines);
    EXPECT_EQ(lines_.UsedLineEnds(), ends) << lines;
  }
  const std::string before = Written();
  lines_.SetLineEnds(LineEnds::Mixed);
  EXPECT_EQ(Written(), before);
  lines_.SetLineEnds(LineEnds::CrLf);
  EXPECT_EQ(Written(), "a\r\n\r\n\r\nb\\\r\n  c\r\nd\r\ne");
  EXPECT_EQ(lines_.UsedLineEnds(), LineEnds::CrLf);
  const char* untouched = lines_.Text(lines_.First()).data();
  lines_.SetLineEnds(LineEnds::CrLf);
  EXPECT_EQ(lines_.Text(lines_.First()).data(), untouched);
  lines_.SetLineEnds(LineEnds::Lf);
  EXPECT_EQ(Written(), "a\n\n\nb\\\n  c\nd\ne");
}

}  // namespace
}  // namespace tme
