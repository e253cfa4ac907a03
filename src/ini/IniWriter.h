#pragma once

#include <string>

namespace tme {

class IniNode;
class IniTree;

/// The whole document as INI text in UTF-8, CR LF: comments of the root first, each on its own line, then each section
/// as its header, its children and one empty line.
std::string WriteIni(const IniTree& tree);

/// What the clipboard gets for a node. Root: every section as in WriteIni, comments of the root left out. Section: its
/// header and children, no empty line. Entry: its text, no line end. Comment: empty.
std::string ClipboardText(const IniNode& node);

}  // namespace tme
