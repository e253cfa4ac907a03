#include "windows/reg/RegTypeChange.h"

#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

namespace tme {
namespace {

/// Decimal digits, or "0x" and hexadecimal ones, with blanks around. Null for what is neither, or larger.
std::optional<std::uint64_t> NumberOfText(std::string_view text, std::uint64_t largest) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return std::nullopt;
  text = text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
  const bool is_hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (is_hexadecimal) text.remove_prefix(2);
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, is_hexadecimal ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size() || number > largest) return std::nullopt;
  return number;
}

/// The lines of a text, or null when one of them is empty.
std::optional<std::vector<std::string>> LinesOfText(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    if (end == 0) return std::nullopt;
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
    text.remove_prefix(text.starts_with("\r\n") ? 2 : text.empty() ? 0 : 1);
  }
  return lines;
}

std::string JoinedLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(text.empty() ? "" : "\r\n").append(line);
  return text;
}

bool IsEmpty(const RegData& data) {
  return data.text.empty() && data.strings.empty() && data.number == 0 && data.bytes.empty();
}

/// Null when the meaning would be lost.
std::optional<RegData> WithSameMeaning(const RegData& data, std::uint32_t to) {
  const RegContent content = ContentOf(to);
  RegData result = EmptyRegData(to);
  // A number of 0 is one, but where there were no digits yet.
  if (IsEmpty(data) && (data.content != RegContent::Number || content == RegContent::Number)) return result;
  std::string text = data.text;
  if (data.content == RegContent::Strings) text = JoinedLines(data.strings);
  if (data.content == RegContent::Number) text = std::to_string(data.number);
  if (data.content == RegContent::Bytes || content == RegContent::Bytes) return std::nullopt;
  if (content == RegContent::Strings) {
    auto lines = LinesOfText(text);
    if (!lines) return std::nullopt;
    result.strings = std::move(*lines);
  } else if (content == RegContent::Number) {
    const auto number = NumberOfText(text, LargestNumberOf(to));
    if (!number) return std::nullopt;
    result.number = *number;
  } else {
    result.text = std::move(text);
  }
  return result;
}

}  // namespace

RegData EmptyRegData(std::uint32_t type) {
  return {.type = type, .content = ContentOf(type), .text = {}, .strings = {}, .number = 0, .bytes = {}};
}

RegData AsBytes(const RegData& data, const RegCoding& coding) {
  RegData bytes = EmptyRegData(data.type);
  bytes.content = RegContent::Bytes;
  const std::optional<std::string> encoded = RegBytes(data, coding);
  bytes.bytes = encoded ? *encoded : RegBytes(data, {}).value_or(std::string());
  return bytes;
}

RegData ConvertRegData(const RegData& data, std::uint32_t to, const RegCoding& coding) {
  if (data.type == to) return data;
  if (std::optional<RegData> converted = WithSameMeaning(data, to)) return std::move(*converted);
  return DataOfBytes(to, AsBytes(data, coding).bytes, coding);
}

}  // namespace tme
