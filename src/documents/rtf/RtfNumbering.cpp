#include "documents/rtf/RtfNumbering.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {

namespace {

constexpr std::int64_t kLargestLetter = 26 * 20;
constexpr std::int64_t kLargestRoman = 3999;

std::string Roman(std::int64_t number) {
  constexpr std::pair<std::int32_t, std::string_view> kSteps[] = {
      {1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
      {40, "xl"},  {10, "x"},   {9, "ix"},  {5, "v"},    {4, "iv"},  {1, "i"}};
  std::string text;
  for (const auto& [value, letters] : kSteps) {
    for (; number >= value; number -= value) text.append(letters);
  }
  return text;
}

constexpr std::string_view kUnits[] = {"",         "one",     "two",     "three",     "four",     "five",    "six",
                                       "seven",    "eight",   "nine",    "ten",       "eleven",   "twelve",  "thirteen",
                                       "fourteen", "fifteen", "sixteen", "seventeen", "eighteen", "nineteen"};
constexpr std::string_view kTens[] = {"",      "",      "twenty",  "thirty", "forty",
                                      "fifty", "sixty", "seventy", "eighty", "ninety"};
constexpr std::int64_t kLargestWords = 999;

/// "one hundred twenty-one", below kLargestWords.
std::string InWords(std::int64_t number) {
  const auto of = [](const auto& words, std::int64_t index) { return words[static_cast<std::size_t>(index)]; };
  std::string text;
  if (number >= 100) text.append(of(kUnits, number / 100)).append(" hundred").append(number % 100 > 0 ? " " : "");
  number %= 100;
  if (number < 20) return text.append(of(kUnits, number));
  text.append(of(kTens, number / 10));
  return number % 10 > 0 ? text.append("-").append(of(kUnits, number % 10)) : text;
}

/// "twenty-first" of "twenty-one".
std::string OrdinalOf(std::string words) {
  constexpr std::pair<std::string_view, std::string_view> kEnds[] = {
      {"one", "first"},    {"two", "second"}, {"three", "third"},   {"five", "fifth"},
      {"eight", "eighth"}, {"nine", "ninth"}, {"twelve", "twelfth"}};
  for (const auto& [end, ordinal] : kEnds) {
    if (words.ends_with(end)) return words.replace(words.size() - end.size(), end.size(), ordinal);
  }
  if (words.ends_with('y')) return words.replace(words.size() - 1, 1, "ieth");
  return words + "th";
}

std::string OrdinalEnd(std::int64_t number) {
  if (number % 100 / 10 == 1) return "th";
  return number % 10 == 1 ? "st" : number % 10 == 2 ? "nd" : number % 10 == 3 ? "rd" : "th";
}

/// The first letters, of small ones.
std::string InCapitals(std::string text, std::size_t letters) {
  for (std::size_t i = 0; i < std::min(letters, text.size()); ++i)
    if (IsLetter(text[i])) text[i] = static_cast<char>(text[i] & ~0x20);
  return text;
}

/// "7", "g", "VII" and so on; plain digits where the kind has nothing for the number.
std::string ListNumber(ListKind kind, std::int64_t number) {
  const std::string digits = std::to_string(number);
  if (number < 1) return digits;
  switch (kind) {
    case ListKind::LowerLetter:
    case ListKind::UpperLetter: {
      if (number > kLargestLetter) return digits;
      const char first = kind == ListKind::LowerLetter ? 'a' : 'A';
      return std::string(static_cast<std::size_t>((number - 1) / 26 + 1), static_cast<char>(first + (number - 1) % 26));
    }
    case ListKind::LowerRoman:
      return number > kLargestRoman ? digits : Roman(number);
    case ListKind::UpperRoman:
      return number > kLargestRoman ? digits : InCapitals(Roman(number), std::string::npos);
    case ListKind::Padded:
      return digits.size() == 1 ? "0" + digits : digits;
    case ListKind::Ordinal:
      return digits + OrdinalEnd(number);
    case ListKind::Words:
      return number > kLargestWords ? digits : InCapitals(InWords(number), 1);
    case ListKind::OrdinalWords:
      return number > kLargestWords ? digits + OrdinalEnd(number) : InCapitals(OrdinalOf(InWords(number)), 1);
    default:
      return digits;
  }
}

}  // namespace

RtfNumbering::Levels& RtfNumbering::LevelsOf(const ParagraphFormat& format) {
  if (format.list_id == 0) return plain_;
  const std::int32_t counter = tables_ != nullptr ? tables_->CounterOf(format.list_id) : 0;
  return named_[{counter != 0, counter != 0 ? counter : format.list_id}];
}

const ListStyle& RtfNumbering::StyleOf(const ParagraphFormat& format, std::size_t level) const {
  static const ListStyle kPlainStyle;
  return tables_ == nullptr || format.list_id == 0 ? kPlainStyle : tables_->Find(format.list_id, level);
}

std::string RtfNumbering::Next(const ParagraphFormat& format) {
  if (format.list == ListKind::None || format.list_id != 0) plain_ = {};
  if (format.list == ListKind::None) return {};
  Levels& levels = LevelsOf(format);
  const auto level = std::min<std::size_t>(format.list_level, kLevels - 1);
  for (std::size_t lower = level + 1; lower < kLevels; ++lower)
    if (levels[lower].kind != ListKind::None && !StyleOf(format, lower).goes_on) levels[lower] = {};
  const ListStyle& style = StyleOf(format, level);
  Counter& counter = levels[level];
  const bool begins = style.has_own_start && begun_.emplace(format.list_id, level).second;
  // Without the file's tables another beginning is another list.
  const bool is_other = format.list_id == 0 && counter.start != format.list_start;
  if (begins || is_other || counter.kind != format.list)
    counter = {format.list, std::int64_t{format.list_start} - 1, format.list_start};
  ++counter.last;
  if (format.list_text.empty())
    return format.list == ListKind::Bullet ? "\u2022" : ListNumber(format.list, counter.last) + ".";
  std::string label;
  for (const char c : format.list_text) {
    const auto other = static_cast<std::size_t>(static_cast<unsigned char>(c));
    if (other >= kLevels) {
      label += c;
      continue;
    }
    Counter shown = levels[other];
    // One that has not come yet is there with its first number.
    if (shown.kind == ListKind::None && other != level) {
      const ListStyle& above = StyleOf(format, other);
      shown = {above.kind == ListKind::None ? ListKind::Decimal : above.kind, above.start};
    }
    if (shown.kind != ListKind::Bullet)
      label += ListNumber(style.is_legal ? ListKind::Decimal : shown.kind, shown.last);
  }
  return label == "\u200B" ? std::string() : label;
}

}  // namespace tme::rtf
