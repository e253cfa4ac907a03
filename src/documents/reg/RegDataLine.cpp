#include "documents/reg/RegDataLine.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "documents/reg/RegHex.h"

namespace tme {
namespace {

std::string_view DataLineMark(std::uint32_t type) {
  switch (type) {
    case reg_type::kExpandString:
      return "expand:";
    case reg_type::kMultiString:
      return "multi:";
    case reg_type::kLink:
      return "link:";
    case reg_type::kDword:
      return "dword:";
    case reg_type::kDwordBigEndian:
      return "dword-be:";
    case reg_type::kQword:
      return "qword:";
    default:
      return {};
  }
}

std::string DataLineQuoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : EscapedRegText(text)) {
    if (c == '\n')
      quoted += "\\n";
    else if (c == '\r')
      quoted += "\\r";
    else
      quoted += c;
  }
  return quoted += '"';
}

std::string DataLineDigits(std::uint64_t number, std::size_t digits) {
  constexpr unsigned kBits = 4, kMask = 0xF;
  std::string text(digits, '0');
  for (std::size_t at = digits; at > 0; number >>= kBits) text[--at] = kHexDigits[number & kMask];
  return text;
}

}  // namespace

std::string RegDataLine(const RegData& data) {
  constexpr std::size_t kDwordDigits = 8, kQwordDigits = 16;
  std::string line(data.content == RegContent::Bytes ? HexMark(data.type) : DataLineMark(data.type));
  switch (data.content) {
    case RegContent::Text:
      return line + DataLineQuoted(data.text);
    case RegContent::Strings:
      for (const std::string& string : data.strings)
        line.append(&string == data.strings.data() ? "" : ",").append(DataLineQuoted(string));
      return line;
    case RegContent::Number:
      return line + DataLineDigits(data.number, data.type == reg_type::kQword ? kQwordDigits : kDwordDigits);
    case RegContent::Bytes:
      return line + HexOfBytes(data.bytes);
  }
  return line;
}

}  // namespace tme
