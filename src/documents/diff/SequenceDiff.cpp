#include "documents/diff/SequenceDiff.h"

#include <algorithm>
#include <span>
#include <unordered_map>

namespace tme {
namespace {

using Elements = std::span<const std::uint32_t>;

/// The furthest place on each diagonal, one generation for each number of changes.
class EditGraph {
 public:
  EditGraph(Elements before, std::size_t before_begin, Elements after, std::size_t after_begin)
      : before_(before.data()),
        after_(after.data()),
        rows_(std::ssize(before)),
        columns_(std::ssize(after)),
        before_begin_(before_begin),
        after_begin_(after_begin) {}

  /// Returns false when more than `limit` changes are needed.
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

  /// Follows the way from end to start, then turns it round.
  void Walk(std::vector<DiffStep>& result) const {
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
      for (; row > start_row; --row, --column) result.push_back(StepAt(DiffChange::Same, row - 1));
      result.push_back(added ? StepAt(DiffChange::Added, column - 1) : StepAt(DiffChange::Removed, row - 1));
      row = from_row;
      column = from_column;
    }
    for (; row > 0; --row) result.push_back(StepAt(DiffChange::Same, row - 1));
    std::reverse(result.begin() + first, result.end());
  }

 private:
  void Remember(const std::vector<std::ptrdiff_t>& furthest, std::ptrdiff_t limit, std::ptrdiff_t changes) {
    const auto middle = furthest.begin() + limit + 1;
    generations_.emplace_back(middle - changes, middle + changes + 1);
  }

  DiffStep StepAt(DiffChange change, std::ptrdiff_t index) const {
    const std::size_t begin = change == DiffChange::Added ? after_begin_ : before_begin_;
    return {change, static_cast<std::uint32_t>(begin + static_cast<std::size_t>(index))};
  }

  const std::uint32_t* before_;
  const std::uint32_t* after_;
  const std::ptrdiff_t rows_;
  const std::ptrdiff_t columns_;
  const std::size_t before_begin_;
  const std::size_t after_begin_;
  /// generations_[d] holds the diagonals -d to d.
  std::vector<std::vector<std::ptrdiff_t>> generations_;
};

/// Compares ranges; one with too many changes is cut at elements that stand once on either side.
class Comparison {
 public:
  Comparison(Elements before, Elements after) : before_(before), after_(after) {
    result_.reserve(std::max(before_.size(), after_.size()));
  }

  std::vector<DiffStep> Run(std::size_t max_changes) && {
    Compare({0, before_.size(), 0, after_.size()}, max_changes, kMostCuts);
    return std::move(result_);
  }

 private:
  static constexpr int kMostCuts = 3;
  /// Within a part, so that the time stays in proportion to the elements.
  static constexpr std::size_t kMaxChangesOfPart = 200;
  struct Range {
    std::size_t before_begin, before_end, after_begin, after_end;
  };
  struct Anchor {
    std::size_t before, after;
  };

  void Add(DiffChange change, std::size_t begin, std::size_t end) {
    for (std::size_t at = begin; at < end; ++at) result_.push_back({change, static_cast<std::uint32_t>(at)});
  }

  void Compare(Range range, std::size_t max_changes, int cuts_left) {
    const std::size_t begin = range.before_begin, end = range.before_end;
    while (range.before_begin < range.before_end && range.after_begin < range.after_end &&
           before_[range.before_begin] == after_[range.after_begin])
      ++range.before_begin, ++range.after_begin;
    while (range.before_begin < range.before_end && range.after_begin < range.after_end &&
           before_[range.before_end - 1] == after_[range.after_end - 1])
      --range.before_end, --range.after_end;
    Add(DiffChange::Same, begin, range.before_begin);
    const std::size_t rows = range.before_end - range.before_begin, columns = range.after_end - range.after_begin;
    EditGraph graph(before_.subspan(range.before_begin, rows), range.before_begin,
                    after_.subspan(range.after_begin, columns), range.after_begin);
    if (graph.Solve(static_cast<std::ptrdiff_t>(std::min(max_changes, rows + columns))))
      graph.Walk(result_);
    else
      Cut(range, cuts_left);
    Add(DiffChange::Same, range.before_end, end);
  }

  void Cut(const Range& range, int cuts_left) {
    const std::vector<Anchor> anchors = cuts_left > 0 ? Anchors(range) : std::vector<Anchor>();
    if (anchors.empty()) {
      Add(DiffChange::Removed, range.before_begin, range.before_end);
      Add(DiffChange::Added, range.after_begin, range.after_end);
      return;
    }
    Range part = range;
    for (const Anchor& anchor : anchors) {
      part.before_end = anchor.before;
      part.after_end = anchor.after;
      Compare(part, kMaxChangesOfPart, cuts_left - 1);
      Add(DiffChange::Same, anchor.before, anchor.before + 1);
      part.before_begin = anchor.before + 1;
      part.after_begin = anchor.after + 1;
    }
    part.before_end = range.before_end;
    part.after_end = range.after_end;
    Compare(part, kMaxChangesOfPart, cuts_left - 1);
  }

  /// Returns the most elements that are unique on both sides and stand in the same order there.
  std::vector<Anchor> Anchors(const Range& range) const {
    struct Seen {
      std::size_t times_before = 0, times_after = 0, after = 0;
    };
    std::unordered_map<std::uint32_t, Seen> seen;
    seen.reserve(range.before_end - range.before_begin);
    for (std::size_t line = range.before_begin; line < range.before_end; ++line) ++seen[before_[line]].times_before;
    for (std::size_t line = range.after_begin; line < range.after_end; ++line)
      if (const auto found = seen.find(after_[line]); found != seen.end()) {
        ++found->second.times_after;
        found->second.after = line;
      }
    // Longest increasing subsequence: `ends[n]` ends the best one of n + 1 anchors.
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<Anchor> candidates;
    std::vector<std::size_t> ends, previous;
    for (std::size_t line = range.before_begin; line < range.before_end; ++line) {
      const Seen& at = seen.find(before_[line])->second;
      if (at.times_before != 1 || at.times_after != 1) continue;
      const auto place = std::lower_bound(ends.begin(), ends.end(), at.after, [&](std::size_t end, std::size_t after) {
        return candidates[end].after < after;
      });
      previous.push_back(place == ends.begin() ? kNone : *std::prev(place));
      if (place == ends.end())
        ends.push_back(candidates.size());
      else
        *place = candidates.size();
      candidates.push_back({line, at.after});
    }
    std::vector<Anchor> anchors;
    for (std::size_t at = ends.empty() ? kNone : ends.back(); at != kNone; at = previous[at])
      anchors.push_back(candidates[at]);
    std::reverse(anchors.begin(), anchors.end());
    return anchors;
  }

  const Elements before_, after_;
  std::vector<DiffStep> result_;
};

}  // namespace

std::vector<DiffStep> DiffSequences(std::span<const std::uint32_t> before, std::span<const std::uint32_t> after,
                                    std::size_t max_changes) {
  return Comparison(before, after).Run(max_changes);
}

}  // namespace tme
