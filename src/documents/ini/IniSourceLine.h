#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/LineReader.h"
#include "documents/ini/IniLine.h"

namespace tme {

// How a line of an INI file is read that is held whole. Lines come without their line end; a blank is a space or a tab.
// Parts are views of the line, so that one can be exchanged and the rest stays.

/// Splits a text into lines with their ends.
class SourceLineReader {
 public:
  explicit SourceLineReader(std::string_view text) : lines_(text) {}
  /// Returns false at the end of the text.
  bool Next(std::string_view& line_with_end) {
    std::string_view line;
    if (!lines_.Next(line)) return false;
    line_with_end = {line.data(), static_cast<std::size_t>(lines_.Position() - line.data())};
    return true;
  }

 private:
  LineReader lines_;
};

/// One line with its end, or blank ones that follow one another.
struct IniSourceRun {
  std::string_view lines;
  IniLine kind;
};

std::string_view TrimIniBlanks(std::string_view text);

/// Its first character that is no blank decides; "#" begins a comment, too. A line end does not matter.
IniLine SourceKindOf(std::string_view line);

/// Calls visit for each run of a text.
template <typename Visit>
void ForEachSourceRun(std::string_view text, Visit visit) {
  SourceLineReader lines(text);
  std::string_view blank;
  for (std::string_view line; lines.Next(line);) {
    const IniLine kind = SourceKindOf(line);
    if (kind == IniLine::Blank) {
      blank = blank.empty() ? line : std::string_view(blank.data(), blank.size() + line.size());
      continue;
    }
    if (!blank.empty()) visit(IniSourceRun{blank, IniLine::Blank});
    blank = {};
    visit(IniSourceRun{line, kind});
  }
  if (!blank.empty()) visit(IniSourceRun{blank, IniLine::Blank});
}

/// The text up to the first "]" behind which stand only blanks, or a comment; else up to the first "]"; without any all
/// of the rest.
std::string_view SourceHeaderName(std::string_view header);

/// The comment that stands behind the "]" of a header; an empty part where there is none.
std::string_view SourceHeaderComment(std::string_view header);

struct IniEntryParts {
  /// Without blanks around; the whole line where there is no "=".
  std::string_view key = {};
  /// Without blanks around, and without the quotes where one pair of them stands around it and none within. A comment
  /// behind it is part of it. Where there is none, the place for it.
  std::string_view value = {};
  bool has_equals = false;
  /// The quotes around the value; 0 for none.
  char quote = 0;
};
IniEntryParts EntryPartsOf(std::string_view entry);

/// Whether a line is one without "=" that stands deeper than an entry above it. Many readers take it for more of that
/// entry's value; those of Windows do not.
bool ContinuesEntry(std::string_view line, std::string_view entry);
/// How many blanks a line begins with.
std::size_t IniDepthOf(std::string_view line);

/// Returns the line with one of its parts exchanged.
std::string WithPart(std::string_view line, std::string_view part, std::string_view now);

/// What a new line takes from one of its neighbours: the blanks before it and around its "=".
struct IniLineStyle {
  std::string_view indent = {};
  std::string_view before_equals = {};
  std::string_view after_equals = {};
};
IniLineStyle StyleOf(std::string_view entry);
/// Returns the line of a new entry. A key that begins a comment needs no value.
std::string EntryLine(const IniLineStyle& style, std::string_view key, std::string_view value);

/// The line with another key and value, whose bytes alone change: quotes around the value stay unless the new one holds
/// such a quote. style: for an "=" where there is none.
std::string WithEntry(std::string_view line, std::string_view key, std::string_view value, const IniLineStyle& style);

}  // namespace tme
