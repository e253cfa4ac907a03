#include "documents/reg/RegAddLine.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "documents/reg/RegHex.h"

namespace tme {
namespace {

/// Between quotes these mean something to cmd nevertheless, or end its quotes.
constexpr std::string_view kNeedCarets = "%\"";
/// What a caret before it keeps from meaning anything.
constexpr std::string_view kMetacharacters = "()%!^\"<>&|";
/// What the reg command puts between strings unless it is told another separator.
constexpr std::string_view kUsualSeparator = "\\0";
constexpr std::string_view kOtherSeparators = "|;,#~!@$*+=:?_";

bool CannotStandInALine(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

/// Between quotes; backslashes before a quote are doubled, as the run-time library reads them.
std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char c : text) {
    if (c == '"') quoted.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    quoted += c;
  }
  return quoted.append(backslashes, '\\') + '"';
}

std::optional<std::string> Checked(std::string line) {
  // Bytes are at least as many as characters.
  if (CannotStandInALine(line) || line.size() > kMaxCommandLine) return std::nullopt;
  return line;
}

std::string HexNumber(std::uint64_t number, int digits) {
  std::string text = "0x";
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) text += kHexDigits[number >> shift & 0xF];
  return text;
}

/// The arguments behind /t for a list of strings.
std::optional<std::string> StringsArguments(const std::vector<std::string>& strings) {
  const auto stands_in = [&strings](std::string_view separator) {
    return std::ranges::any_of(strings, [separator](const std::string& text) {
      // A backslash at the end would be one with the separator behind it.
      return text.find(separator) != std::string::npos || (separator == kUsualSeparator && text.ends_with('\\'));
    });
  };
  std::string_view separator = kUsualSeparator;
  for (std::size_t next = 0; stands_in(separator); ++next) {
    if (next == kOtherSeparators.size()) return std::nullopt;
    separator = kOtherSeparators.substr(next, 1);
  }
  std::string joined;
  for (const std::string& text : strings) joined.append(joined.empty() ? "" : separator).append(text);
  std::string arguments = separator == kUsualSeparator ? "" : " /s " + CommandArgument(separator);
  return arguments + " /d " + CommandArgument(joined);
}

/// What stands behind the value's name: type and data.
std::optional<std::string> DataArguments(const RegData& data) {
  const std::string type = " /t " + RegTypeName(data.type);
  if (data.content != ContentOf(data.type)) return std::nullopt;
  switch (data.type) {
    case reg_type::kString:
    case reg_type::kExpandString:
      return type + " /d " + CommandArgument(data.text);
    case reg_type::kDword:
      return type + " /d " + HexNumber(data.number, 8);
    case reg_type::kQword:
      return type + " /d " + HexNumber(data.number, 16);
    case reg_type::kBinary: {
      std::string digits = HexOfBytes(data.bytes);
      std::erase(digits, ',');
      return digits.empty() ? type : type + " /d " + digits;
    }
    case reg_type::kNone:
      // Without data the reg command writes an empty text of UTF-16.
      return data.bytes == std::string(2, '\0') ? std::optional(type) : std::nullopt;
    case reg_type::kMultiString: {
      const auto strings = data.strings.empty() ? std::nullopt : StringsArguments(data.strings);
      return strings ? std::optional(type + *strings) : std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

}  // namespace

std::string CommandArgument(std::string_view text) {
  const std::string quoted = Quoted(text);
  if (text.find_first_of(kNeedCarets) == std::string_view::npos) return quoted;
  // With a caret before it a quote begins nothing for cmd, so that all behind it needs carets, too.
  std::string argument;
  for (const char c : quoted) argument.append(kMetacharacters.find(c) == std::string_view::npos ? "" : "^") += c;
  return argument;
}

std::optional<std::string> RegAddKeyLine(std::string_view path) {
  return Checked("reg add " + CommandArgument(path) + " /f");
}

std::optional<std::string> RegDeleteKeyLine(std::string_view path) {
  return Checked("reg delete " + CommandArgument(path) + " /f");
}

std::optional<std::string> RegAddValueLine(std::string_view path, std::string_view name,
                                           const std::optional<RegData>& data) {
  const std::string value = name.empty() ? " /ve" : " /v " + CommandArgument(name);
  if (!data) return Checked("reg delete " + CommandArgument(path) + value + " /f");
  const std::optional<std::string> arguments = DataArguments(*data);
  if (!arguments) return std::nullopt;
  return Checked("reg add " + CommandArgument(path) + value + *arguments + " /f");
}

}  // namespace tme
