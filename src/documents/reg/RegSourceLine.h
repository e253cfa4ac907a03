#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "documents/reg/RegData.h"

namespace tme {

/// What a piece of a registry file is (SourceLines::Kind).
enum class RegPiece : std::uint8_t {
  Blank,        ///< one or more blank lines
  FileHeader,   ///< the line that says the version
  Key,          ///< [path], or a path alone in a REGEDIT file
  KeyDeletion,  ///< [-path]
  Value,        ///< with the lines that it goes on in
  Pair,         ///< path = text, in a REGEDIT file
  Comment,
  Other,  ///< not understood
};

/// A part of a text, in bytes.
struct RegSpan {
  std::size_t at = 0;
  std::size_t size = 0;

  std::string_view Of(std::string_view text) const { return text.substr(at, size); }
  std::size_t End() const { return at + size; }
};

/// Where name and assignment of a value stand.
struct RegValuePlace {
  /// With its quotes; "@" for the default value. For a Pair the path.
  RegSpan name;
  RegSpan assignment;
};

/// Returns the place of the first character that is no blank; the text's size without any.
std::size_t FirstText(std::string_view line);

/// Finds the path in a header line. Null when there is no "]" or no path.
struct RegHeaderPlace {
  RegPiece kind = RegPiece::Key;
  RegSpan path;
};
std::optional<RegHeaderPlace> FindRegHeader(std::string_view line);

/// Finds name and assignment in a text that begins with a value line without its line end at line_size; a hex value may
/// go on behind it. Null for what is no value: no closing quote, no "=", another mark, something behind it that is
/// neither blank nor a comment.
std::optional<RegValuePlace> FindRegValue(std::string_view text, std::size_t line_size);

/// The same for a line of a REGEDIT file: the path up to a blank or "=", "=" between blanks, and the text behind one
/// blank at most. The assignment begins behind the line where no text stands. Null when the path begins with no hive.
struct RegPairPlace {
  RegPiece kind = RegPiece::Pair;
  RegValuePlace place;
};
std::optional<RegPairPlace> FindRegPair(std::string_view line);

/// The version that a first line names; null for any other line.
std::optional<RegVersion> VersionOfLine(std::string_view line);
/// The first line of a file of this version.
std::string_view HeaderOf(RegVersion version);

}  // namespace tme
