#include "documents/diff/LineDiff.h"

#include <unordered_map>

#include "base/LineReader.h"

namespace tme {
namespace {

using TextLines = std::vector<std::string_view>;

/// Lines from one look to the next, whether to stop.
constexpr std::size_t kBetweenLooks = std::size_t{1} << 14;

bool IsToStop(std::size_t line, const std::stop_token& stop) {
  return line % kBetweenLooks == 0 && stop.stop_requested();
}

TextLines Split(std::string_view text, const std::stop_token& stop) {
  TextLines result;
  LineReader lines(text);
  for (std::string_view line; !IsToStop(result.size(), stop) && lines.Next(line);) result.push_back(line);
  return result;
}

}  // namespace

std::vector<DiffLine> DiffLines(std::string_view before, std::string_view after, std::size_t max_changes,
                                const std::stop_token& stop) {
  const TextLines lines_before = Split(before, stop), lines_after = Split(after, stop);
  // Equal lines have one number.
  std::unordered_map<std::string_view, std::uint32_t> numbers;
  const auto numbered = [&](const TextLines& lines) {
    std::vector<std::uint32_t> result;
    result.reserve(lines.size());
    for (const std::string_view line : lines) {
      if (IsToStop(result.size(), stop)) break;
      result.push_back(numbers.try_emplace(line, static_cast<std::uint32_t>(numbers.size())).first->second);
    }
    return result;
  };
  const std::vector<std::uint32_t> numbers_before = numbered(lines_before), numbers_after = numbered(lines_after);
  std::vector<DiffLine> result;
  if (stop.stop_requested()) return result;
  for (const auto& [change, at] : DiffSequences(numbers_before, numbers_after, max_changes))
    result.push_back({change, (change == DiffChange::Added ? lines_after : lines_before)[at]});
  return result;
}

}  // namespace tme
