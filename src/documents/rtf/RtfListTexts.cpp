#include "documents/rtf/RtfListTexts.h"

#include <algorithm>
#include <charconv>
#include <tuple>
#include <utility>

#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kMaxText = 32;
constexpr std::int32_t kAlphabetSize = 26;

/// A roman number of small letters; 0 for what is none.
std::int32_t RomanValue(std::string_view text) {
  constexpr std::string_view kSigns = "ivxlcdm";
  constexpr std::array<std::int32_t, 7> kValues = {1, 5, 10, 50, 100, 500, 1000};
  std::int32_t value = 0, last = 0;
  for (std::size_t i = text.size(); i > 0; --i) {
    const std::size_t sign = kSigns.find(text[i - 1]);
    if (sign == std::string_view::npos) return 0;
    value += kValues[sign] < last ? -kValues[sign] : kValues[sign];
    last = std::max(last, kValues[sign]);
  }
  return value;
}

/// "c" is 3, "cc" is 29; 0 for what is none.
std::int32_t LetterValue(std::string_view text) {
  const bool is_one = text.find_first_not_of(text.front()) == std::string_view::npos;
  return is_one ? static_cast<std::int32_t>(text.size() - 1) * kAlphabetSize + (text.front() - 'a' + 1) : 0;
}

/// Where the last stretch of signs begins and ends; both 0 where there are none.
template <typename Is>
std::pair<std::size_t, std::size_t> LastOf(std::string_view text, Is is) {
  std::size_t end = text.size();
  while (end > 0 && !is(text[end - 1])) --end;
  std::size_t begin = end;
  while (begin > 0 && is(text[begin - 1])) --begin;
  return {begin, end};
}

bool IsPlainBullet(std::string_view text) {
  const bool is_private = text.size() == 3 && (text[0] == '\xEE' || text[0] == '\xEF');  // a symbol font's own
  return text == "\u2022" || text == "\u00B7" || is_private;
}

}  // namespace

/// last: the item before it in its level, which tells letters from roman numbers.
ListTexts::Item ListTexts::Read(std::string_view text, const Item& last) {
  const auto is_odd = [](char c) { return static_cast<unsigned char>(c) < ' '; };
  Item item{.kind = ListKind::Bullet};
  if (text.size() > kMaxText || std::ranges::any_of(text, is_odd)) return item;
  auto [begin, end] = LastOf(text, IsDigit);
  if (begin < end) {
    item.kind = ListKind::Decimal;
    std::from_chars(text.data() + begin, text.data() + end, item.number);
  } else {
    std::tie(begin, end) = LastOf(text, IsLetter);
    std::string letters(text.substr(begin, end - begin));
    const bool is_number = begin < end && end < text.size() && (text[end] == '.' || text[end] == ')');
    const bool is_upper = is_number && letters.front() <= 'Z';
    for (char& letter : letters) letter = static_cast<char>(letter | ('a' ^ 'A'));
    const ListKind letter_kind = is_upper ? ListKind::UpperLetter : ListKind::LowerLetter;
    const ListKind roman_kind = is_upper ? ListKind::UpperRoman : ListKind::LowerRoman;
    const std::int32_t roman = is_number ? RomanValue(letters) : 0, letter = is_number ? LetterValue(letters) : 0;
    const bool is_next_letter = letter > 0 && last.kind == letter_kind && last.number + 1 == letter;
    const bool is_next_roman = last.kind == roman_kind && last.number + 1 == roman;
    const bool is_roman = roman > 0 && !is_next_letter && (is_next_roman || letters.size() > 1 || letters == "i");
    if (is_roman || letter > 0) {
      item.kind = is_roman ? roman_kind : letter_kind;
      item.number = is_roman ? roman : letter;
    }
  }
  if (item.kind == ListKind::Bullet) {
    if (!IsPlainBullet(text)) item.before = text;
    return item;
  }
  item.before = text.substr(0, begin);
  item.after = text.substr(end);
  return item;
}

void ListTexts::Join(std::string_view text, ParagraphFormat& format) {
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  const std::size_t level = std::min<std::size_t>(format.list_level, kLevels - 1);
  std::fill(levels_.begin() + static_cast<std::ptrdiff_t>(level) + 1, levels_.end(), Item{});
  has_begun_ = true;
  Item& last = levels_[level];
  Item item = Read(text, last);
  const bool goes_on = item.kind == last.kind && item.before == last.before && item.after == last.after &&
                       item.number == last.number + (item.kind == ListKind::Bullet ? 0 : 1);
  item.start = goes_on ? last.start : item.kind == ListKind::Bullet ? 1 : item.number;
  format.list = item.kind;
  format.list_start = item.start;
  const bool is_usual = item.before.empty() && item.after == (item.kind == ListKind::Bullet ? "" : ".");
  format.list_text.clear();
  if (!is_usual) {
    format.list_text = item.before;
    if (item.kind != ListKind::Bullet) format.list_text += static_cast<char>(level);
    format.list_text += item.after;
  }
  last = std::move(item);
}

}  // namespace tme::rtf
