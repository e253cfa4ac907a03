#include "windows/tree/SourceEdit.h"

namespace tme {
namespace {

/// Whether a line begins there.
bool IsLineStart(std::string_view text, std::size_t at) {
  if (at == 0 || text[at - 1] == '\n') return true;
  return text[at - 1] == '\r' && !text.substr(at).starts_with('\n');
}

}  // namespace

std::optional<SourceEdit> EditOf(const SourceLines& pieces, std::string_view text) {
  using Piece = SourceLines::Piece;
  constexpr Piece kEnds = SourceLines::kEnds;
  std::size_t start = 0;
  Piece first = pieces.First();
  for (; first != kEnds && text.substr(start).starts_with(pieces.Text(first)); first = pieces.Next(first))
    start += pieces.Text(first).size();
  if (first == kEnds && start == text.size()) return std::nullopt;
  // The line before goes on, or what is new has no piece to stand for.
  const auto take_one_before = [&] {
    const Piece before = first == kEnds ? pieces.Last() : pieces.Previous(first);
    if (before == kEnds) return;
    first = before;
    start -= pieces.Text(before).size();
  };
  if (!IsLineStart(text, start)) take_one_before();

  std::size_t end = text.size();
  Piece last = pieces.Last();
  // All round, since the pieces form a ring.
  const auto is_empty = [&] { return last == pieces.Previous(first); };
  while (!is_empty() && end - start >= pieces.Text(last).size() && text.substr(0, end).ends_with(pieces.Text(last))) {
    end -= pieces.Text(last).size();
    last = pieces.Previous(last);
  }
  for (; !IsLineStart(text, end) && pieces.Next(last) != kEnds; end += pieces.Text(last).size())
    last = pieces.Next(last);
  if (is_empty()) take_one_before();
  if (is_empty() && first != kEnds) {
    last = first;
    end += pieces.Text(first).size();
  }
  return SourceEdit{first, last, text.substr(start, end - start)};
}

}  // namespace tme
