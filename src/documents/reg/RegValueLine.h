#pragma once

#include <cstdint>
#include <string_view>

#include "documents/reg/RegDocument.h"

namespace tme {

/// Whether a save writes a value line as it stood.
enum class RegLineForm : std::uint8_t {
  Same,
  /// A type that is not known here ("hex(2):"), taken for a string and written between quotes.
  TypedHex,
  /// The deletion of a value ("name"=-), taken for the string "-".
  Deletion,
  /// Anything else: data without quotes, something behind the closing one, a name with "=".
  Other,
};

/// A value line taken apart; views into the line.
struct RegValueLine {
  RegType type = RegType::None;
  std::string_view name;
  /// Hex: of the first line, with the "\" that announces another one.
  std::string_view data;
  /// But for the name of a default value.
  RegLineForm form = RegLineForm::Same;
};

/// Takes a line apart that begins with a double quote. Returns false when it is no value line: no "=" after the second
/// character, or a quote where a text between two quotes should be.
bool ParseValueLine(std::string_view line, RegValueLine& value);

/// Takes a line apart that begins with "@", as if it began with "[default]" between quotes instead. A name that is more
/// than that, since other text stands before "=", is made in texts. Returns false when there is no "=".
bool ParseDefaultLine(std::string_view line, TextStore& texts, RegValueLine& value);

}  // namespace tme
