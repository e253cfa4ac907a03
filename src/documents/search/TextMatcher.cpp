#include "documents/search/TextMatcher.h"

namespace tme {

std::optional<std::string> PlainMatcher::Replaced(std::string_view text, std::string_view with,
                                                  std::optional<std::size_t> only) const {
  std::vector<TextMatch> matches;
  search_.FindAll(text, matches);
  if (only) std::erase_if(matches, [only](const TextMatch& match) { return match.start != *only; });
  if (matches.empty()) return std::nullopt;
  std::string replaced;
  std::size_t at = 0;
  for (const TextMatch& match : matches) {
    replaced.append(text.substr(at, match.start - at)).append(with);
    at = match.end;
  }
  return replaced.append(text.substr(at));
}

}  // namespace tme
