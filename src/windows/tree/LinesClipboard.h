#pragma once

#include <string>

namespace tme {

/// Puts lines on the clipboard: as text for other programs, and as their bytes, since text cannot hold those that are
/// no UTF-8.
void CopyLines(const std::string& lines);
/// Returns the lines that were copied here, byte for byte, or the text of another program.
std::string CopiedLines();

}  // namespace tme
