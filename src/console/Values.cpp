#include "console/Values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <utility>
#include <vector>

#include "console/Streams.h"
#include "documents/reg/RegHex.h"

namespace tme::console {
namespace {

/// What a double holds exactly.
constexpr std::uint64_t kMaxExact = std::uint64_t{1} << 53;

std::string Joined(const std::vector<std::string>& strings, std::string_view separator) {
  std::string joined;
  for (std::size_t index = 0; index < strings.size(); ++index)
    joined.append(index == 0 ? std::string_view() : separator).append(strings[index]);
  return joined;
}

}  // namespace

RegData DataOf(const RegValueRecord& record, const RegCoding& coding) {
  auto data = DecodeAssignment(record.data, coding);
  if (data) return *std::move(data);
  RegData nothing;
  nothing.type = reg_type::kNone;
  nothing.content = RegContent::Bytes;
  return nothing;
}

std::string HexText(std::string_view bytes) {
  std::string text = HexOfBytes(bytes);
  std::replace(text.begin(), text.end(), ',', ' ');
  return text;
}

std::string TextOf(const RegData& data) {
  switch (data.content) {
    case RegContent::Text:
      return data.text;
    case RegContent::Strings:
      return Joined(data.strings, "\n");
    case RegContent::Number:
      return std::to_string(data.number);
    case RegContent::Bytes:
      return HexText(data.bytes);
  }
  return {};
}

std::string ColumnOf(std::string_view text) {
  std::string column;
  for (const char c : text) {
    constexpr std::string_view kControls{"\0\t\n\r", 4}, kLetters = "0tnr";
    const std::size_t control = kControls.find(c);
    if (control == std::string_view::npos)
      column += c;
    else
      column.append("\\").append(1, kLetters[control]);
  }
  return column;
}

std::string ColumnOf(const RegData& data) {
  return ColumnOf(data.content == RegContent::Strings ? Joined(data.strings, {"\0", 1}) : TextOf(data));
}

std::string NameOfQuoted(std::string_view quoted) {
  return quoted == "@" ? std::string() : UnescapedRegText(quoted.substr(1, quoted.size() - 2));
}

std::uint64_t NumberOf(std::string_view text) {
  const bool is_hex = text.starts_with("0x") || text.starts_with("0X");
  const std::string_view digits = is_hex ? text.substr(2) : text;
  constexpr int kDecimal = 10, kHex = 16;
  std::uint64_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, number, is_hex ? kHex : kDecimal);
  if (result.ec == std::errc() && result.ptr == end && !digits.empty()) return number;
  throw Trouble("\"" + std::string(text) + "\" is no number, such as 26 or 0x1a, of at most 64 bits");
}

std::string BytesOfPairs(std::string_view text) {
  std::string hex;
  std::size_t digits = 0;
  for (const char c : text) {
    const bool is_blank = c == ' ' || c == ',' || c == '\t' || c == '\n' || c == '\r';
    if (is_blank ? digits % 2 != 0 : !IsHexDigit(c)) break;
    if (is_blank) continue;
    if (digits > 0 && digits % 2 == 0) hex += ',';
    hex += c;
    ++digits;
  }
  const auto is_part = [](char c) {
    return IsHexDigit(c) || std::string_view(" ,\t\n\r").find(c) != std::string_view::npos;
  };
  const auto bytes = hex.empty() ? std::string() : BytesOfHex(hex);
  if (digits % 2 == 0 && bytes && std::all_of(text.begin(), text.end(), is_part)) return *bytes;
  throw Trouble("\"" + std::string(text) + "\" is not in pairs of hex digits, such as \"01 ff\"");
}

std::string_view WhyNot(RegFault fault) {
  switch (fault) {
    case RegFault::NotInCodePage:
      return "REGEDIT4 has no place for a character of the value (convert --to 5.00 makes room)";
    case RegFault::NotUnicode:
      return "the value is no Unicode text";
    case RegFault::EmptyString:
      return "an empty string would end the list";
    case RegFault::OutOfRange:
      return "the number needs more bits than the type has";
    case RegFault::OnlyText:
      return "a REGEDIT file has default values of one line of text alone (convert --to regedit4 makes room)";
    default:
      return "the value cannot be written";
  }
}

void PutData(JsonWriter& json, const RegData& data) {
  json.Member("type", RegTypeName(data.type));
  if (data.content == RegContent::Bytes) {
    json.Member("bytes", HexText(data.bytes));
  } else if (data.content == RegContent::Strings) {
    json.Name("value").BeginArray();
    for (const std::string& string : data.strings) json.String(string);
    json.EndArray();
  } else if (data.content == RegContent::Text) {
    json.Member("value", data.text);
  } else if (data.number <= kMaxExact) {
    json.Name("value").Number(data.number);
  } else {
    std::array<char, 20> text{};
    std::snprintf(text.data(), text.size(), "0x%llx", static_cast<unsigned long long>(data.number));
    json.Member("value", text.data());
  }
}

}  // namespace tme::console
