#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tme {

inline constexpr std::string_view kHexDigits = "0123456789abcdef";

bool IsHexDigit(char c);

/// What an assignment begins with.
enum class RegForm : std::uint8_t { None, Dword, Hex };
struct RegMark {
  RegForm form = RegForm::None;
  /// REG_BINARY for "hex:".
  std::uint32_t type = 0;
  /// Bytes, the colon included; 0 for none.
  std::size_t size = 0;
};
/// Finds "dword:", "hex:" or "hex(2):" at the start, in any letter case. The number has 1 to 8 digits.
RegMark RegMarkOf(std::string_view assignment);

/// "hex:", "hex(2):".
std::string HexMark(std::uint32_t type);

/// Reads bytes of one or two digits with commas between them, and after the last one, too. Blanks, line ends, "\"
/// before a line end, and between lines blank ones and comments are passed over. Null for anything else.
std::optional<std::string> BytesOfHex(std::string_view text);
/// The comments between the lines of hex data and behind their "\", each without its line end; those on lines of their
/// own with the blanks before them.
std::vector<std::string_view> CommentsInHex(std::string_view text);
/// "01,02,0a".
std::string HexOfBytes(std::string_view bytes);

/// Returns where hex data over several lines end that begin at `at`: before blanks, a comment or the line end of their
/// last line. BytesOfHex reads all of it. Null when something stands there that is no hex.
std::optional<std::size_t> EndOfHex(std::string_view text, std::size_t at);

}  // namespace tme
