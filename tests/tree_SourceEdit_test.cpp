#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

#include "base/LineReader.h"
#include "windows/tree/SourceEdit.h"

namespace tme {
namespace {

std::string Joined(const SourceLines& pieces, SourceLines::Piece first, SourceLines::Piece end) {
  std::string text;
  for (; first != end; first = pieces.Next(first)) text += pieces.Text(first);
  return text;
}

void Fill(SourceLines& pieces, std::string_view text) {
  LineReader lines(text);
  for (std::string_view line; lines.Next(line);)
    pieces.Append({line.data(), static_cast<std::size_t>(lines.Position() - line.data())}, 0);
}

TEST(SourceEdit, TakesTheLinesThatDifferAndNoMore) {
  const struct {
    const char *before, *after, *taken, *lines;
  } cases[] = {
      {"", "a\n", "", "a\n"},
      {"a\nb\nc\n", "a\nB\nc\n", "b\n", "B\n"},
      {"a\nb\nc\n", "a\nb\nx\nc\n", "b\n", "b\nx\n"},
      {"a\nb\n", "x\na\nb\n", "a\n", "x\na\n"},
      {"a\nb\nc\n", "a\nc\n", "b\n", ""},
      {"a\nb\nc\n", "ab\nc\n", "a\nb\n", "ab\n"},
      {"a\nb", "a\nbc", "b", "bc"},
      {"a\nb", "a\nb\n", "b", "b\n"},
      {"a\r\nb\r\n", "a\r\n", "b\r\n", ""},
      {"a\rb\r", "a\r\nb\r", "a\r", "a\r\n"},
      {"a\na\na\n", "a\na\n", "a\n", ""},
      {"a\nb\n", "", "a\nb\n", ""},
  };
  for (const auto& [before, after, taken, lines] : cases) {
    SCOPED_TRACE(std::string(before) + "->" + after);
    TextStore store;
    SourceLines pieces(store);
    Fill(pieces, before);
    const std::optional<SourceEdit> edit = EditOf(pieces, after);
    ASSERT_TRUE(edit);
    EXPECT_EQ(Joined(pieces, edit->first, pieces.Next(edit->last)), taken);
    EXPECT_EQ(edit->lines, lines);
    EXPECT_FALSE(EditOf(pieces, before));
  }
}

/// Whatever was typed, pieces that stay are whole lines of the new text.
TEST(SourceEdit, WhatStaysAreWholeLines) {
  std::mt19937 random(1);
  const auto text_of = [&random] {
    std::string text;
    for (auto left = random() % 7; left > 0; --left)
      text += std::array{"a", "b", "\n", "\r\n", "\r", "a\n"}[random() % 6];
    return text;
  };
  for (int round = 0; round < 20'000; ++round) {
    const std::string before = text_of(), after = text_of();
    TextStore store;
    SourceLines pieces(store);
    Fill(pieces, before);
    const std::optional<SourceEdit> edit = EditOf(pieces, after);
    ASSERT_EQ(edit.has_value(), before != after);
    if (!edit) continue;
    const std::string start = Joined(pieces, pieces.First(), edit->first == 0 ? pieces.First() : edit->first),
                      end = Joined(pieces, pieces.Next(edit->last), SourceLines::kEnds);
    const std::string now =
        edit->first == 0 ? std::string(edit->lines) : std::string(start).append(edit->lines).append(end);
    ASSERT_EQ(now, after);
    TextStore other;
    SourceLines parts(other), whole(other);
    Fill(parts, start);
    Fill(parts, edit->lines);
    if (edit->first != 0) Fill(parts, end);
    Fill(whole, after);
    ASSERT_EQ(parts.PieceCount(), whole.PieceCount()) << before << "->" << after;
  }
}

}  // namespace
}  // namespace tme
