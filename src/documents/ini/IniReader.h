#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tme {

class IniTree;

struct IniQuestions {
  /// Is asked for a section that the tree already has: true overwrites it, false ends the read at once. The tree is
  /// complete up to there meanwhile. Must be set.
  std::function<bool(std::string_view name)> duplicate_section;
};

/// Why a read ended.
enum class IniReadEnd : std::uint8_t {
  EndOfInput,
  /// A line has no place: the first line outside any section, or a line after a comment outside any section.
  LineNotTaken,
  /// The answer to the duplicate question was no.
  DuplicateRefused,
  /// A text without a header was pasted on a section, which takes only its first line.
  OneEntryOnly,
  /// An entry was selected, whose section is selected now, or a comment, where nothing happens.
  NothingAdded,
};

struct IniReadResult {
  IniReadEnd end = IniReadEnd::EndOfInput;
  /// 1-based number of the first line that was not taken; 0 when every line was.
  std::uint64_t ended_at_line = 0;
  /// Lines from there to the end of the input.
  std::uint64_t lines_not_read = 0;
  /// Blank lines that a save does not write back: all but one after each section.
  std::uint64_t blank_lines_dropped = 0;
  /// Nodes that the overwrite answer of the duplicate question removed.
  std::uint64_t nodes_overwritten = 0;
  /// Section headers whose last character was dropped although it was no "]".
  std::uint64_t cut_headers = 0;
  /// The sections stand in the file in another order than in the tree.
  bool sections_reordered = false;
  /// The entries of at least one section stand in another order.
  bool entries_reordered = false;
};

/// Turns lines of INI text into nodes below the selected node of a tree. A file (root selected) and a paste follow the
/// same rules. Lines may end in CR LF, LF or CR; nothing is trimmed; NUL is a character like any other.
/// text: UTF-8, taken over by the tree, so that its nodes need no copy. The cost is linear but for sorting each list of
/// children.
IniReadResult ReadIni(IniTree& tree, std::string text, const IniQuestions& ask);
/// Fills a fresh tree from the text of any tree, in which edits may have made what ReadIni would not take: equal names,
/// several comments at the top. The root is selected afterwards.
void ReadEveryIniLine(IniTree& tree, const std::string& text);

/// Fills a fresh tree in whole holding. Every text is one.
void ReadWholeIni(IniTree& tree, std::string text);

}  // namespace tme
