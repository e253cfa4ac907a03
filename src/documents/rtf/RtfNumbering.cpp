#include "documents/rtf/RtfNumbering.h"

#include <algorithm>
#include <string_view>
#include <utility>

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

/// "7", "g", "VII" and so on; plain digits where the kind has nothing for the number.
std::string ListNumber(ListKind kind, std::int64_t number) {
  std::string text;
  const bool is_letter = kind == ListKind::LowerLetter || kind == ListKind::UpperLetter;
  const bool is_roman = kind == ListKind::LowerRoman || kind == ListKind::UpperRoman;
  if (is_letter && number >= 1 && number <= kLargestLetter) {
    text.assign(static_cast<std::size_t>((number - 1) / 26 + 1), static_cast<char>('a' + (number - 1) % 26));
  } else if (is_roman && number >= 1 && number <= kLargestRoman) {
    text = Roman(number);
  } else {
    return std::to_string(number);
  }
  if (kind == ListKind::UpperLetter || kind == ListKind::UpperRoman) {
    for (char& letter : text) letter = static_cast<char>(letter - 'a' + 'A');
  }
  return text;
}

}  // namespace

std::string RtfNumbering::Next(const ParagraphFormat& format) {
  if (format.list == ListKind::None || format.list_id != 0) plain_ = {};
  if (format.list == ListKind::None) return {};
  Levels& levels = format.list_id != 0 ? named_[format.list_id] : plain_;
  const auto level = std::min<std::size_t>(format.list_level, kLevels - 1);
  std::fill(levels.begin() + static_cast<std::ptrdiff_t>(level) + 1, levels.end(), Counter{});
  Counter& counter = levels[level];
  if (counter.kind != format.list) counter = {format.list, std::int64_t{format.list_start} - 1};
  ++counter.last;
  if (format.list_text.empty())
    return format.list == ListKind::Bullet ? "\u2022" : ListNumber(format.list, counter.last) + ".";
  std::string label;
  for (const char c : format.list_text) {
    const auto other = static_cast<std::size_t>(static_cast<unsigned char>(c));
    if (other >= kLevels)
      label += c;
    else if (levels[other].kind == ListKind::None)
      label += "1";
    else if (levels[other].kind != ListKind::Bullet)
      label += ListNumber(levels[other].kind, levels[other].last);
  }
  return label == "\u200B" ? std::string() : label;
}

}  // namespace tme::rtf
