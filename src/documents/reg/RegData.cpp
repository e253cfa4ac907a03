#include "documents/reg/RegData.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "base/Utf16.h"
#include "base/Utf8.h"
#include "documents/reg/RegHex.h"

namespace tme {
namespace {

constexpr std::array<std::string_view, 12> kTypeNames{"REG_NONE",
                                                      "REG_SZ",
                                                      "REG_EXPAND_SZ",
                                                      "REG_BINARY",
                                                      "REG_DWORD",
                                                      "REG_DWORD_BIG_ENDIAN",
                                                      "REG_LINK",
                                                      "REG_MULTI_SZ",
                                                      "REG_RESOURCE_LIST",
                                                      "REG_FULL_RESOURCE_DESCRIPTOR",
                                                      "REG_RESOURCE_REQUIREMENTS_LIST",
                                                      "REG_QWORD"};

constexpr std::string_view kNulCharacter("\0", 1);

std::size_t NumberBytes(std::uint32_t type) { return type == reg_type::kQword ? 8 : 4; }

std::string BytesOfNumber(std::uint64_t number, std::uint32_t type) {
  std::string bytes;
  for (std::size_t i = 0; i < NumberBytes(type); ++i) bytes.push_back(static_cast<char>(number >> 8 * i & 0xFFU));
  if (type == reg_type::kDwordBigEndian) std::ranges::reverse(bytes);
  return bytes;
}

std::uint64_t NumberOfBytes(std::string bytes, std::uint32_t type) {
  if (type == reg_type::kDwordBigEndian) std::ranges::reverse(bytes);
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) number |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << 8 * i;
  return number;
}

/// Null when the text is not UTF-8.
std::optional<std::string> Utf16Bytes(std::string_view text) {
  std::string bytes;
  bytes.reserve(2 * text.size() + 2);
  const auto put = [&bytes](char32_t unit) {
    bytes.push_back(static_cast<char>(unit & 0xFFU));
    bytes.push_back(static_cast<char>(unit >> 8));
  };
  while (!text.empty()) {
    const std::optional<char32_t> character = utf8::TakeCharacter(text);
    if (!character) return std::nullopt;
    utf16::PutUnits(*character, put);
  }
  return bytes;
}

/// Null for a byte too many and for lone surrogates.
std::optional<std::string> TextOfUtf16(std::string_view bytes) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  const auto unit_at = [bytes](std::size_t at) {
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[at]) |
                                 static_cast<unsigned>(static_cast<unsigned char>(bytes[at + 1])) << 8);
  };
  std::string text;
  text.reserve(bytes.size() / 2);
  std::array<char, utf8::kMaxCharacterBytes> character;
  for (std::size_t at = 0; at < bytes.size(); at += 2) {
    char32_t unit = unit_at(at);
    if (utf16::IsSurrogate(unit)) {
      const char32_t next = at + 2 < bytes.size() ? unit_at(at + 2) : 0;
      if (!utf16::IsHighSurrogate(unit) || !utf16::IsLowSurrogate(next)) return std::nullopt;
      unit = utf16::Join(unit, next);
      at += 2;
    }
    text.append(character.data(), utf8::PutCharacter(unit, character.data()));
  }
  return text;
}

/// The system takes the bytes of a link as they stand in files of every version.
bool IsUtf16(std::uint32_t type, const RegCoding& coding) {
  return coding.version == RegVersion::Version5 || type == reg_type::kLink;
}

std::optional<std::string> BytesOfText(std::string_view text, std::uint32_t type, const RegCoding& coding) {
  if (IsUtf16(type, coding)) return Utf16Bytes(text);
  return coding.to_code_page == nullptr ? std::nullopt : coding.to_code_page(text);
}

std::optional<std::string> TextOfBytes(std::string_view bytes, std::uint32_t type, const RegCoding& coding) {
  if (IsUtf16(type, coding)) return TextOfUtf16(bytes);
  if (coding.from_code_page == nullptr) return std::nullopt;
  return coding.from_code_page(bytes);
}

/// The text of a REG_MULTI_SZ with a NUL behind each string and one more.
std::string Joined(const std::vector<std::string>& strings) {
  std::string joined;
  for (const std::string& string : strings) joined.append(string).append(kNulCharacter);
  return joined.append(kNulCharacter);
}

std::vector<std::string> Parted(std::string_view joined) {
  std::vector<std::string> strings;
  while (!joined.empty()) {
    const std::size_t end = std::min(joined.find('\0'), joined.size());
    if (end == 0) break;
    strings.emplace_back(joined.substr(0, end));
    joined.remove_prefix(std::min(end + 1, joined.size()));
  }
  return strings;
}

bool MayBeQuoted(std::string_view text) { return text.find_first_of(std::string_view("\r\n\0", 3)) == text.npos; }

RegFault FaultOfText(std::string_view text, std::uint32_t type, const RegCoding& coding) {
  if (text.find('\0') != std::string_view::npos) return RegFault::HoldsNul;
  if (IsUtf16(type, coding)) return utf8::IsValid(text) ? RegFault::None : RegFault::NotUnicode;
  return BytesOfText(text, type, coding) ? RegFault::None : RegFault::NotInCodePage;
}

RegFault FaultOfStrings(const std::vector<std::string>& strings, const RegCoding& coding) {
  for (const std::string& string : strings) {
    if (string.empty()) return RegFault::EmptyString;
    if (const RegFault fault = FaultOfText(string, reg_type::kMultiString, coding); fault != RegFault::None)
      return fault;
  }
  return RegFault::None;
}

bool IsQuotedText(const RegData& data) {
  return data.type == reg_type::kString && data.content == RegContent::Text && MayBeQuoted(data.text);
}

RegData Empty(std::uint32_t type, RegContent content) {
  RegData data;
  data.type = type;
  data.content = content;
  return data;
}

RegData StringOf(std::string text) {
  RegData data = Empty(reg_type::kString, RegContent::Text);
  data.text = std::move(text);
  return data;
}

std::string Digits(std::uint64_t number, std::size_t digits) {
  std::string text(digits, '0');
  for (std::size_t at = digits; at > 0; number >>= 4) text[--at] = kHexDigits[number & 0xFU];
  return text;
}

std::string DisplayOfNumber(const RegData& data) {
  return "0x" + Digits(data.number, 2 * NumberBytes(data.type)) + " (" + std::to_string(data.number) + ")";
}

/// What the system counts columns in.
std::size_t Utf16Units(std::string_view text) {
  std::size_t units = 0;
  for (const char c : text) {
    if (!utf8::IsContinuation(c)) units += static_cast<unsigned char>(c) >= 0xF0 ? 2 : 1;
  }
  return units;
}

/// Cuts between characters.
std::string Bounded(std::string_view text, std::size_t max_bytes) {
  if (text.size() <= max_bytes) return std::string(text);
  return std::string(text.substr(0, utf8::CharacterStart(text, max_bytes))).append("...");
}

}  // namespace

std::string RegTypeName(std::uint32_t type) {
  if (type < kTypeNames.size()) return std::string(kTypeNames[type]);
  return "REG_0x" + Digits(type, type > 0xFFFF ? 8 : type > 0xFF ? 4 : 2);
}

RegContent ContentOf(std::uint32_t type) {
  switch (type) {
    case reg_type::kString:
    case reg_type::kExpandString:
    case reg_type::kLink:
      return RegContent::Text;
    case reg_type::kMultiString:
      return RegContent::Strings;
    case reg_type::kDword:
    case reg_type::kDwordBigEndian:
    case reg_type::kQword:
      return RegContent::Number;
    default:
      return RegContent::Bytes;
  }
}

RegFault FaultOf(const RegData& data, const RegCoding& coding) {
  if (coding.version == RegVersion::Regedit) return IsQuotedText(data) ? RegFault::None : RegFault::OnlyText;
  switch (data.content) {
    case RegContent::Text:
      // What stands in quotes is a matter of the file's encoding alone.
      return IsQuotedText(data) ? RegFault::None : FaultOfText(data.text, data.type, coding);
    case RegContent::Strings:
      return FaultOfStrings(data.strings, coding);
    case RegContent::Number:
      return NumberBytes(data.type) == 4 && data.number > UINT32_MAX ? RegFault::OutOfRange : RegFault::None;
    default:
      return RegFault::None;
  }
}

std::optional<std::string> RegBytes(const RegData& data, const RegCoding& coding) {
  switch (data.content) {
    case RegContent::Text: {
      const std::string_view text = data.text;
      if (text.find('\0') != std::string_view::npos) return std::nullopt;
      return BytesOfText(std::string(text).append(kNulCharacter), data.type, coding);
    }
    case RegContent::Strings:
      if (std::ranges::any_of(data.strings, [](const std::string& s) { return s.empty() || s.find('\0') != s.npos; }))
        return std::nullopt;
      return BytesOfText(Joined(data.strings), data.type, coding);
    case RegContent::Number:
      if (NumberBytes(data.type) == 4 && data.number > UINT32_MAX) return std::nullopt;
      return BytesOfNumber(data.number, data.type);
    default:
      return data.bytes;
  }
}

std::optional<std::string> RecodedRegText(const std::string& bytes, std::uint32_t type, const RegCoding& from,
                                          const RegCoding& to) {
  const std::optional<std::string> text = TextOfBytes(bytes, type, from);
  if (!text || BytesOfText(*text, type, from) != bytes) return std::nullopt;
  return BytesOfText(*text, type, to);
}

RegData DataOfBytes(std::uint32_t type, std::string bytes, const RegCoding& coding) {
  RegData data = Empty(type, ContentOf(type));
  if (data.content == RegContent::Number && bytes.size() == NumberBytes(type)) {
    data.number = NumberOfBytes(std::move(bytes), type);
    return data;
  }
  if (data.content == RegContent::Text || data.content == RegContent::Strings) {
    if (std::optional<std::string> text = TextOfBytes(bytes, type, coding)) {
      if (data.content == RegContent::Strings)
        data.strings = Parted(*text);
      else
        data.text = text->substr(0, text->empty() ? 0 : text->size() - 1);
      if (RegBytes(data, coding) == bytes) return data;
    }
  }
  data = Empty(type, RegContent::Bytes);
  data.bytes = std::move(bytes);
  return data;
}

std::optional<RegData> DecodeAssignment(std::string_view assignment, const RegCoding& coding) {
  if (coding.version == RegVersion::Regedit) return StringOf(std::string(assignment));
  if (assignment.size() >= 2 && assignment.starts_with('"') && assignment.ends_with('"'))
    return StringOf(UnescapedRegText(assignment.substr(1, assignment.size() - 2)));
  const RegMark mark = RegMarkOf(assignment);
  const std::string_view data = assignment.substr(mark.size);
  if (mark.form == RegForm::Dword) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(data.data(), data.data() + data.size(), number, 16);
    if (error != std::errc() || end != data.data() + data.size() || data.size() > 8) return std::nullopt;
    RegData dword = Empty(reg_type::kDword, RegContent::Number);
    dword.number = number;
    return dword;
  }
  if (mark.form != RegForm::Hex) return std::nullopt;
  std::optional<std::string> bytes = BytesOfHex(data);
  if (!bytes) return std::nullopt;
  return DataOfBytes(mark.type, std::move(*bytes), coding);
}

std::optional<std::string> EncodeAssignment(const RegData& data, const RegCoding& coding) {
  if (FaultOf(data, coding) != RegFault::None) return std::nullopt;
  if (coding.version == RegVersion::Regedit) return data.text;
  if (IsQuotedText(data)) return '"' + EscapedRegText(data.text) + '"';
  if (data.type == reg_type::kDword && data.content == RegContent::Number) return "dword:" + Digits(data.number, 8);
  const std::optional<std::string> bytes = RegBytes(data, coding);
  if (!bytes) return std::nullopt;
  return HexMark(data.type) + HexOfBytes(*bytes);
}

std::string DisplayOf(const RegData& data, std::size_t max_bytes) {
  if (data.content == RegContent::Number) return DisplayOfNumber(data);
  if (data.content == RegContent::Text) return Bounded(data.text, max_bytes);
  std::string line;
  if (data.content == RegContent::Strings) {
    for (const std::string& string : data.strings) {
      if (line.size() > max_bytes) break;
      line.append(line.empty() ? "" : " ").append(string, 0, max_bytes + 1);
    }
    return Bounded(line, max_bytes);
  }
  const std::string_view bytes = data.bytes;
  line = HexOfBytes(bytes.substr(0, max_bytes / 3));
  std::ranges::replace(line, ',', ' ');
  return bytes.size() > max_bytes / 3 ? line.append(" ...") : line;
}

std::string WrapAssignment(std::string_view before, std::string_view assignment, std::string_view line_end) {
  const RegMark mark = RegMarkOf(assignment);
  if (mark.form != RegForm::Hex) return std::string(assignment);
  constexpr std::size_t kLastColumn = 77;
  constexpr std::string_view kIndentation = "  ";
  std::string wrapped(assignment.substr(0, mark.size));
  std::size_t column = Utf16Units(before) + mark.size;
  for (std::size_t at = mark.size; at < assignment.size(); at += 3) {
    const std::string_view byte = assignment.substr(at, 3);
    wrapped.append(byte);
    column += byte.size();
    if (column < kLastColumn || at + 3 >= assignment.size()) continue;
    wrapped.append("\\").append(line_end).append(kIndentation);
    column = kIndentation.size();
  }
  return wrapped;
}

std::string QuotedRegName(std::string_view name) { return name.empty() ? "@" : '"' + EscapedRegText(name) + '"'; }

std::string EscapedRegText(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size() + 8);
  for (const char c : text) {
    if (c == '"' || c == '\\') escaped.push_back('\\');
    escaped.push_back(c);
  }
  return escaped;
}

std::string UnescapedRegText(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool escapes = text[at] == '\\' && at + 1 < text.size() && (text[at + 1] == '"' || text[at + 1] == '\\');
    plain.push_back(text[escapes ? ++at : at]);
  }
  return plain;
}

}  // namespace tme
