#include "console/Values.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>
#include <vector>

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
