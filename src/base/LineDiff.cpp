#include "base/LineDiff.h"

#include <algorithm>

#include "base/Lines.h"

namespace tme {
namespace {

using TextLines = std::vector<std::string_view>;

TextLines Split(std::string_view text) {
  TextLines result;
  Lines lines(text);
  for (std::string_view line; lines.Next(line);) result.push_back(line);
  return result;
}

/// The furthest place on each diagonal, one generation for each number of changes.
class EditGraph {
 public:
  EditGraph(const std::string_view* before, std::size_t before_count, const std::string_view* after,
            std::size_t after_count)
      : before_(before),
        after_(after),
        rows_(static_cast<std::ptrdiff_t>(before_count)),
        columns_(static_cast<std::ptrdiff_t>(after_count)) {}

  /// False when more than `limit` changes are needed.
  bool Solve(std::ptrdiff_t limit) {
    std::vector<std::ptrdiff_t> furthest(static_cast<std::size_t>(2 * limit + 3), 0);
    const auto at = [&](std::ptrdiff_t diagonal) -> std::ptrdiff_t& {
      return furthest[static_cast<std::size_t>(diagonal + limit + 1)];
    };
    for (std::ptrdiff_t changes = 0; changes <= limit; ++changes) {
      for (std::ptrdiff_t diagonal = -changes; diagonal <= changes; diagonal += 2) {
        const bool added = diagonal == -changes || (diagonal != changes && at(diagonal - 1) < at(diagonal + 1));
        std::ptrdiff_t row = added ? at(diagonal + 1) : at(diagonal - 1) + 1;
        while (row < rows_ && row - diagonal < columns_ && before_[row] == after_[row - diagonal]) ++row;
        at(diagonal) = row;
        if (row >= rows_ && row - diagonal >= columns_) {
          Remember(furthest, limit, changes);
          return true;
        }
      }
      Remember(furthest, limit, changes);
    }
    return false;
  }

  /// The way from end to start, then turned round.
  void Walk(std::vector<DiffLine>& result) const {
    const auto first = static_cast<std::ptrdiff_t>(result.size());
    std::ptrdiff_t row = rows_, column = columns_;
    for (auto changes = static_cast<std::ptrdiff_t>(generations_.size()) - 1; changes > 0; --changes) {
      const std::vector<std::ptrdiff_t>& earlier = generations_[static_cast<std::size_t>(changes - 1)];
      const auto at = [&](std::ptrdiff_t diagonal) {
        const std::ptrdiff_t index = diagonal + changes - 1;
        return index < 0 || index >= static_cast<std::ptrdiff_t>(earlier.size())
                   ? std::ptrdiff_t{-1}
                   : earlier[static_cast<std::size_t>(index)];
      };
      const std::ptrdiff_t diagonal = row - column;
      const bool added = diagonal == -changes || (diagonal != changes && at(diagonal - 1) < at(diagonal + 1));
      const std::ptrdiff_t from_row = at(added ? diagonal + 1 : diagonal - 1);
      const std::ptrdiff_t from_column = from_row - (added ? diagonal + 1 : diagonal - 1);
      const std::ptrdiff_t start_row = added ? from_row : from_row + 1;
      for (; row > start_row; --row, --column) result.push_back({LineChange::Same, before_[row - 1]});
      result.push_back(added ? DiffLine{LineChange::Added, after_[column - 1]}
                             : DiffLine{LineChange::Removed, before_[row - 1]});
      row = from_row;
      column = from_column;
    }
    for (; row > 0; --row) result.push_back({LineChange::Same, before_[row - 1]});
    std::reverse(result.begin() + first, result.end());
  }

 private:
  void Remember(const std::vector<std::ptrdiff_t>& furthest, std::ptrdiff_t limit, std::ptrdiff_t changes) {
    const auto middle = furthest.begin() + limit + 1;
    generations_.emplace_back(middle - changes, middle + changes + 1);
  }

  const std::string_view* before_;
  const std::string_view* after_;
  const std::ptrdiff_t rows_;
  const std::ptrdiff_t columns_;
  /// generations_[d] holds the diagonals -d to d.
  std::vector<std::vector<std::ptrdiff_t>> generations_;
};

}  // namespace

std::vector<DiffLine> DiffLines(std::string_view before, std::string_view after, std::size_t max_changes) {
  const TextLines old_lines = Split(before), new_lines = Split(after);
  const std::size_t shorter = std::min(old_lines.size(), new_lines.size());
  std::size_t head = 0, tail = 0;
  while (head < shorter && old_lines[head] == new_lines[head]) ++head;
  while (tail < shorter - head && old_lines[old_lines.size() - 1 - tail] == new_lines[new_lines.size() - 1 - tail])
    ++tail;

  std::vector<DiffLine> result;
  result.reserve(old_lines.size() + new_lines.size() - head - tail);
  for (std::size_t line = 0; line < head; ++line) result.push_back({LineChange::Same, old_lines[line]});
  const std::size_t old_end = old_lines.size() - tail, new_end = new_lines.size() - tail;
  EditGraph graph(old_lines.data() + head, old_end - head, new_lines.data() + head, new_end - head);
  const std::size_t limit = std::min(max_changes, old_end - head + new_end - head);
  if (graph.Solve(static_cast<std::ptrdiff_t>(limit))) {
    graph.Walk(result);
  } else {
    for (std::size_t line = head; line < old_end; ++line) result.push_back({LineChange::Removed, old_lines[line]});
    for (std::size_t line = head; line < new_end; ++line) result.push_back({LineChange::Added, new_lines[line]});
  }
  for (std::size_t line = old_end; line < old_lines.size(); ++line)
    result.push_back({LineChange::Same, old_lines[line]});
  return result;
}

}  // namespace tme
