#include "windows/reg/RegReplacedData.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

#include "documents/reg/RegHex.h"

namespace tme {
namespace {

constexpr std::size_t kAllBytes = SIZE_MAX / 4;

using Outcome = ReplacedData::Outcome;

std::optional<std::uint64_t> NumberIn(std::string_view text) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
    base = 16;
  }
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// "0x0000001a (26)", of which either part may have changed.
std::optional<std::uint64_t> ChangedNumber(std::uint64_t before, std::string_view shown) {
  const std::size_t bracket = shown.find(" (");
  if (bracket == std::string_view::npos || !shown.ends_with(')')) return NumberIn(shown);
  const auto hex = NumberIn(shown.substr(0, bracket));
  const auto decimal = NumberIn(shown.substr(bracket + 2, shown.size() - bracket - 3));
  if (!hex || !decimal) return std::nullopt;
  if (*hex == before || *hex == *decimal) return decimal;
  return *decimal == before ? hex : std::nullopt;
}

std::optional<std::string> BytesShown(std::string shown) {
  std::ranges::replace(shown, ' ', ',');
  return BytesOfHex(shown);
}

/// The strings are shown with a blank between them, over which no change may go.
Outcome ChangeStrings(RegData& data, const std::vector<TextChange>& changes) {
  std::size_t at = 0;
  auto change = changes.begin();
  for (std::string& string : data.strings) {
    const std::size_t end = at + string.size();
    std::string changed;
    std::size_t kept_from = at;
    for (; change != changes.end() && change->match.start < end; ++change) {
      if (change->match.end > end) return Outcome::AcrossStrings;
      changed.append(string, kept_from - at, change->match.start - kept_from).append(change->with);
      kept_from = change->match.end;
    }
    if (change != changes.end() && change->match.start == end) return Outcome::AcrossStrings;
    string = changed.append(string, kept_from - at);
    at = end + 1;
  }
  return Outcome::Changed;
}

}  // namespace

ReplacedData ReplaceInData(const RegData& data, std::string_view before, const ReplaceQuery& query) {
  ReplacedData replaced{Outcome::Same, data, {}};
  const std::optional<std::string> shown = query.matcher.Replaced(before, query.with, query.only);
  if (!shown || *shown == before) return replaced;
  replaced.outcome = Outcome::Changed;
  replaced.shown = *shown;
  switch (data.content) {
    case RegContent::Text:
      if (auto text = query.matcher.Replaced(data.text, query.with, query.only)) replaced.data.text = std::move(*text);
      break;
    case RegContent::Strings:
      replaced.outcome = ChangeStrings(replaced.data, query.matcher.ChangesIn(before, query.with, query.only));
      if (replaced.outcome == Outcome::Changed) replaced.shown = DisplayOf(replaced.data, kAllBytes);
      break;
    case RegContent::Number:
      if (const auto number = ChangedNumber(data.number, *shown)) {
        replaced.data.number = *number;
        replaced.shown = DisplayOf(replaced.data);
        if (*number == data.number) replaced.outcome = Outcome::NoNumber;
      } else {
        replaced.outcome = Outcome::NoNumber;
      }
      break;
    case RegContent::Bytes:
      if (auto bytes = BytesShown(*shown)) {
        replaced.data.bytes = std::move(*bytes);
        replaced.shown = DisplayOf(replaced.data, kAllBytes);
        if (replaced.data.bytes == data.bytes) replaced.outcome = Outcome::Same;
      } else {
        replaced.outcome = Outcome::NoBytes;
      }
      break;
  }
  return replaced;
}

}  // namespace tme
