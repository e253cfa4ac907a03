#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/Utf8.h"

namespace tme {

/// What a line of INI text is. Its first character alone decides, and nothing is trimmed.
enum class IniLine : std::uint8_t { Blank, Header, Comment, Entry };

constexpr IniLine KindOf(std::string_view line) {
  if (line.empty()) return IniLine::Blank;
  if (line.front() == '[') return IniLine::Header;
  return line.front() == ';' ? IniLine::Comment : IniLine::Entry;
}

/// Takes the first and the last character off, whatever the last one is; they may be the same.
inline std::string_view HeaderName(std::string_view header) {
  header.remove_prefix(1);
  header.remove_suffix(utf8::LastCharacterBytes(header));
  return header;
}

/// Returns the text before the first "=", the whole text when there is none.
constexpr std::string_view EntryKeyOf(std::string_view entry) { return entry.substr(0, entry.find('=')); }
/// Returns the text after the first "=", none when there is none.
constexpr std::string_view EntryValueOf(std::string_view entry) {
  const std::size_t equals = entry.find('=');
  return equals == std::string_view::npos ? std::string_view() : entry.substr(equals + 1);
}

/// Returns the lines of a text, blank ones left out, in an order that depends on the lines alone. Texts are compared
/// so, because a save sorts sections and entries. It is not the order of a tree.
std::string SortedIni(std::string_view text);

}  // namespace tme
