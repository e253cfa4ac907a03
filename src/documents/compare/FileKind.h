#pragma once

#include <optional>
#include <string_view>

#include "documents/DocumentKind.h"

namespace tme {

/// The kind of a name in any letter case ("ini", "inf", "REG"); nothing for another name.
std::optional<DocumentKind> KindNamed(std::string_view name);
/// The same by a file's ending.
std::optional<DocumentKind> KindOfName(std::string_view file_name);
/// Reg where the first line that is neither blank nor a comment is a version or a key of a hive, else Ini.
DocumentKind KindOfText(std::string_view text);

}  // namespace tme
