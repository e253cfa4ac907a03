#include "documents/reg/RegHex.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tme {
namespace {

constexpr std::string_view kDwordWord = "dword:";
constexpr std::string_view kHexWord = "hex";
constexpr std::size_t kMostTypeDigits = 8;

constexpr char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

bool StartsWithWord(std::string_view text, std::string_view lower_word) {
  return text.size() >= lower_word.size() &&
         std::equal(lower_word.begin(), lower_word.end(), text.begin(), [](char a, char b) { return a == Lower(b); });
}

/// By byte: the digit's value; kNoDigit.
constexpr std::uint8_t kNoDigit = 16;
constexpr auto kDigitValues = [] {
  std::array<std::uint8_t, 256> values{};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const char c = Lower(static_cast<char>(i));
    const std::size_t digit = i < 128 ? kHexDigits.find(c) : std::string_view::npos;
    values[i] = digit == std::string_view::npos ? kNoDigit : static_cast<std::uint8_t>(digit);
  }
  return values;
}();
std::uint8_t DigitOf(char c) { return kDigitValues[static_cast<unsigned char>(c)]; }

bool IsBlankChar(char c) { return c == ' ' || c == '\t'; }
bool IsLineEndChar(char c) { return c == '\r' || c == '\n'; }

std::size_t BehindBlanks(std::string_view text, std::size_t at) {
  while (at < text.size() && IsBlankChar(text[at])) ++at;
  return at;
}

/// Behind blanks and a comment: at the line's end. Null when something else stands there.
std::optional<std::size_t> AtLineEnd(std::string_view text, std::size_t at) {
  at = BehindBlanks(text, at);
  if (at < text.size() && text[at] == ';') at = std::min(text.find_first_of("\r\n", at), text.size());
  if (at < text.size() && !IsLineEndChar(text[at])) return std::nullopt;
  return at;
}

/// At the start of the first line behind `at`, a line's end, that is neither blank nor a comment.
std::size_t AtNextText(std::string_view text, std::size_t at) {
  while (at < text.size()) {
    const bool two = text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n';
    const std::size_t start = at + (two ? 2 : 1);
    const std::optional<std::size_t> end = AtLineEnd(text, start);
    if (!end) return BehindBlanks(text, start);
    at = *end;
  }
  return at;
}

/// Behind the last of the bytes of one line and its comma. What no byte can be there is left standing.
std::size_t BehindBytes(std::string_view text, std::size_t at) {
  std::size_t end = at;
  for (bool may_begin = true; may_begin;) {
    // Exports write all bytes so.
    const auto is_digit = [&](std::size_t place) { return DigitOf(text[place]) != kNoDigit; };
    while (at + 2 < text.size() && is_digit(at) && is_digit(at + 1) && text[at + 2] == ',') end = at += 3;
    at = BehindBlanks(text, at);
    if (at >= text.size() || DigitOf(text[at]) == kNoDigit) break;
    ++at;
    if (at < text.size() && DigitOf(text[at]) != kNoDigit) ++at;
    end = at;
    at = BehindBlanks(text, at);
    may_begin = at < text.size() && text[at] == ',';
    if (may_begin) end = ++at;
  }
  return end;
}

}  // namespace

bool IsHexDigit(char c) { return DigitOf(c) != kNoDigit; }

RegMark RegMarkOf(std::string_view assignment) {
  if (StartsWithWord(assignment, kDwordWord)) return {RegForm::Dword, 4, kDwordWord.size()};
  if (!StartsWithWord(assignment, kHexWord)) return {};
  std::size_t at = kHexWord.size();
  if (assignment.substr(at).starts_with(':')) return {RegForm::Hex, 3, at + 1};
  if (!assignment.substr(at).starts_with('(')) return {};
  std::uint32_t type = 0;
  const char* first = assignment.data() + at + 1;
  const char* last = first + std::min(assignment.size() - at - 1, kMostTypeDigits);
  const auto [end, error] = std::from_chars(first, last, type, 16);
  at = static_cast<std::size_t>(end - assignment.data());
  if (error != std::errc() || !assignment.substr(at).starts_with("):")) return {};
  return {RegForm::Hex, type, at + 2};
}

std::string HexMark(std::uint32_t type) {
  if (type == 3) return "hex:";
  std::array<char, kMostTypeDigits> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), type, 16);
  return "hex(" + std::string(digits.data(), end) + "):";
}

std::optional<std::string> BytesOfHex(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() / 3 + 1);
  bool may_begin = true;
  for (std::size_t at = BehindBlanks(text, 0); at < text.size(); at = BehindBlanks(text, at)) {
    if (text[at] == '\\') {
      const std::optional<std::size_t> end = AtLineEnd(text, at + 1);
      if (!end) return std::nullopt;
      at = AtNextText(text, *end);
      may_begin = true;
      continue;
    }
    unsigned byte = DigitOf(text[at]);
    if (byte == kNoDigit || !may_begin) return std::nullopt;
    ++at;
    if (at < text.size() && DigitOf(text[at]) != kNoDigit) byte = byte << 4 | DigitOf(text[at++]);
    bytes.push_back(static_cast<char>(byte));
    at = BehindBlanks(text, at);
    may_begin = at < text.size() && text[at] == ',';
    if (may_begin) ++at;
  }
  return bytes;
}

std::vector<std::string_view> CommentsInHex(std::string_view text) {
  std::vector<std::string_view> comments;
  std::size_t end = 0;
  for (std::size_t at = text.find(';'); at != text.npos; at = text.find(';', end)) {
    end = std::min(text.find_first_of("\r\n", at), text.size());
    std::size_t start = at;
    while (start > 0 && IsBlankChar(text[start - 1])) --start;
    if (start == 0 || !IsLineEndChar(text[start - 1])) start = at;
    comments.push_back(text.substr(start, end - start));
  }
  return comments;
}

std::string HexOfBytes(std::string_view bytes) {
  std::string text;
  text.reserve(3 * bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (!text.empty()) text.push_back(',');
    text.push_back(kHexDigits[byte >> 4]);
    text.push_back(kHexDigits[byte & 0xFU]);
  }
  return text;
}

std::optional<std::size_t> EndOfHex(std::string_view text, std::size_t at) {
  std::size_t last_end = std::string_view::npos;
  while (true) {
    std::size_t end = BehindBytes(text, at);
    const std::size_t behind = BehindBlanks(text, end);
    const bool goes_on = behind < text.size() && text[behind] == '\\';
    if (goes_on) end = behind + 1;
    const std::optional<std::size_t> line_end = AtLineEnd(text, end);
    // A line that is no hex goes its own way; the value ends before it.
    if (!line_end) return last_end == std::string_view::npos ? std::nullopt : std::optional(last_end);
    last_end = end;
    if (!goes_on) return end;
    at = AtNextText(text, *line_end);
    if (at >= text.size() || DigitOf(text[at]) == kNoDigit) return end;
  }
}

}  // namespace tme
