#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/LineReader.h"
#include "console/ConsoleFile.h"

namespace tme::console {

/// A line that readers take in different ways, or not at all.
struct Finding {
  std::uint64_t line;  ///< from 1
  std::string what;
  std::string why;  ///< it matters
};
using Findings = std::vector<Finding>;

// Each adds what it finds, in no order. Linear, but for sorting.

/// Bytes and line ends, of a file of any kind but rich text.
void CheckLines(const ConsoleFile& file, Findings& findings);
void CheckIni(const ConsoleFile& file, Findings& findings);
void CheckReg(const ConsoleFile& file, Findings& findings);

/// Calls visit(piece, number of its first line, its text) for each piece of an INI or registry file, in order.
template <typename Visit>
void ForEachPiece(const ConsoleFile& file, Visit visit) {
  const SourceLines& lines = file.Lines();
  std::uint64_t number = 1;
  for (SourceLines::Piece at = lines.First(); at != SourceLines::kEnds; at = lines.Next(at)) {
    visit(at, number, lines.Text(at));
    number += LineEndsIn(lines.Text(at));
  }
}

}  // namespace tme::console
