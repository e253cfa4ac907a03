#include "documents/search/TextMatcher.h"

#include <algorithm>

#include "documents/search/PathText.h"

namespace tme {

std::optional<std::string> TextMatcher::Replaced(std::string_view text, std::string_view with,
                                                 std::optional<std::size_t> only) const {
  const std::vector<TextChange> changes = ChangesIn(text, with, only);
  if (changes.empty()) return std::nullopt;
  std::string replaced;
  std::size_t at = 0;
  for (const TextChange& change : changes) {
    replaced.append(text.substr(at, change.match.start - at)).append(change.with);
    at = change.match.end;
  }
  return replaced.append(text.substr(at));
}

PlainMatcher::PlainMatcher(std::string_view wanted, SearchCase search_case, SearchWords words)
    : wanted_(wanted), search_(wanted, search_case, words) {
  const auto separators = static_cast<std::size_t>(std::ranges::count(wanted, kPathSeparator));
  if (separators > 0) path_parts_ = separators + (wanted.ends_with(kPathSeparator) ? 0 : 1);
}

std::vector<TextChange> PlainMatcher::ChangesIn(std::string_view text, std::string_view with,
                                                std::optional<std::size_t> only) const {
  std::vector<TextMatch> matches;
  search_.FindAll(text, matches);
  std::vector<TextChange> changes;
  for (const TextMatch& match : matches)
    if (!only || match.start == *only) changes.push_back({match, std::string(with)});
  return changes;
}

}  // namespace tme
