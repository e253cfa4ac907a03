#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tme {

/// The 8-bit code page of files without a mark: the system's on Windows; elsewhere Windows-1252 as a bijection on all
/// 256 values (the five unassigned bytes 81, 8D, 8F, 90, 9D stand for U+0081 and so on, as in the WHATWG encoding
/// table).
std::string CodePageToUtf8(std::string_view bytes);

/// Whether programs of this system take 8-bit text for this code page, and not for UTF-8.
bool IsCodePageUsual();

/// Returns null when a character has no byte, or the text is not valid UTF-8.
std::optional<std::string> Utf8ToCodePage(std::string_view text);

/// Reads text of any page, numbered as Windows does (10000 is Mac Roman, 65001 UTF-8), with U+FFFD for each byte that
/// no character begins with. A page that is not known is read as 1252.
std::string BytesToUtf8(int code_page, std::string_view bytes);

}  // namespace tme
