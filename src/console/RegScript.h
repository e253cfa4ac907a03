#pragma once

#include <cstdint>
#include <string>

#include "console/ConsoleFile.h"

namespace tme::console {

/// Who runs a script that does what the import of a registry file would.
enum class Shell : std::uint8_t {
  Cmd,         ///< a batch file of "reg add" and "reg delete" lines, CR LF
  PowerShell,  ///< of the .NET registry classes
};

/// The script in UTF-8; where it has more than ASCII, it says so to its shell. What it cannot say is told to streams, a
/// line each, and then Trouble is thrown; comments, which cmd has no safe place for, are counted there and left out.
std::string ScriptOf(const ConsoleFile& file, Shell shell, Streams& streams);

}  // namespace tme::console
