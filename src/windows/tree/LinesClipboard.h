#pragma once

#include <string>

namespace tme {

/// Puts lines on the clipboard: as text for other programs, and as their bytes, since text cannot hold those that are
/// no UTF-8.
void CopyLines(const std::string& lines);
/// The same for the lines of several rows, which a paste takes all of, whatever it takes of a text.
void CopyManyLines(const std::string& lines);
bool HasManyLines();
/// Returns the lines that were copied here, byte for byte, or the text of another program.
std::string CopiedLines();

}  // namespace tme
