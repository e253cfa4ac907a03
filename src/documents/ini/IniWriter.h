#pragma once

#include <cstdint>
#include <string>

#include "base/Parts.h"

namespace tme {

class IniNode;
class IniTree;

/// Returns the whole document, held by the rules, as INI text in UTF-8, CR LF: comments of the root first, each on its
/// own line, then each section as its header, its children and one empty line.
std::string WriteIni(const IniTree& tree);
/// Hands over the file in the way that the tree is held. Returns false when the sink stopped.
bool WriteIni(const IniTree& tree, const PartSink& sink);

/// What it has of the sections among some children of the root. row, end: of the first, and behind the last one.
std::string WriteIniSections(const IniTree& tree, int row, int end);

/// What the reader would make of a written file otherwise than the tree has it. Only pasting and editing lead to this,
/// never reading a file.
struct IniReadBack {
  /// The 1-based line that the read would end at: above the sections, a second comment or a line that is none. 0 for
  /// none. What comes after it is not counted below.
  std::uint64_t ends_at_line = 0;
  /// Entries and comments that begin with "[".
  std::uint64_t headers = 0;
  /// Sections with the name of an earlier one.
  std::uint64_t doubles = 0;
  /// Entries that begin with ";" and comments that do not.
  std::uint64_t other_kinds = 0;
  /// Entries without any text.
  std::uint64_t blank_entries = 0;
  bool IsSame() const { return ends_at_line + headers + doubles + other_kinds + blank_entries == 0; }
};
/// Linear in the size of the tree; nothing in whole holding.
IniReadBack ReadBackOf(const IniTree& tree);

/// Returns what the clipboard gets for a node. Root: every section as in WriteIni, comments of the root left out.
/// Section: its header and children, no empty line. Entry: its text, no line end. Comment: nothing.
/// In whole holding the lines of the node as they stand, for a section or an entry with the comments that belong to it.
std::string ClipboardText(const IniTree& tree, const IniNode& node);

}  // namespace tme
