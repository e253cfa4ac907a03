#pragma once

#include <string_view>

#include "reg/RegDocument.h"

namespace tme {

/// A value line taken apart; views into the line.
struct RegValueLine {
  RegType type = RegType::None;
  std::string_view name;
  /// Hex: of the first line, with the "\" that announces another one.
  std::string_view data;
  /// A type that is not known here ("hex(2):"), taken for a string.
  bool typed_hex = false;
};

/// line: begins with a double quote. False when it is no value line: no "=" after the second character, or a quote
/// where a text between two quotes should be.
bool ParseValueLine(std::string_view line, RegValueLine& value);

/// line: begins with "@"; it is read as if it began with "[default]" between quotes instead. A name that is more than
/// that, since other text stands before "=", is made in texts.
bool ParseDefaultLine(std::string_view line, TextStore& texts, RegValueLine& value);

}  // namespace tme
