#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "documents/reg/RegData.h"

namespace tme {

/// The longest line that cmd takes, in characters.
inline constexpr std::size_t kMaxCommandLine = 8191;

/// An argument as cmd hands it to a program, which takes it apart as the C run-time library does. For the prompt: in a
/// batch file a percent sign would have to stand twice.
std::string CommandArgument(std::string_view text);

/// The line for cmd that makes a key: reg add "HKEY_USERS\A" /f. Null for a path with a line end or a NUL in it.
std::optional<std::string> RegAddKeyLine(std::string_view path);
/// The line that deletes a key and all below it.
std::optional<std::string> RegDeleteKeyLine(std::string_view path);
/// The line that sets a value, or deletes it where data is null. name: empty for the default value. Null for what the
/// reg command cannot say: line ends, types of other names, bytes that are no proper form of their type, empty lists,
/// strings that end in a separator, lines that are too long.
std::optional<std::string> RegAddValueLine(std::string_view path, std::string_view name,
                                           const std::optional<RegData>& data);

}  // namespace tme
