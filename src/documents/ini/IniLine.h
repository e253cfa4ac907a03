#pragma once

#include <cstdint>
#include <string_view>

#include "base/Utf8.h"

namespace tme {

/// What a line of INI text is, by its first character alone: nothing is trimmed, and nothing after it matters.
enum class IniLine : std::uint8_t { Blank, Header, Comment, Entry };

constexpr IniLine KindOf(std::string_view line) {
  if (line.empty()) return IniLine::Blank;
  if (line.front() == '[') return IniLine::Header;
  return line.front() == ';' ? IniLine::Comment : IniLine::Entry;
}

/// header: without its first and last character, whatever the last one is; they may be the same.
inline std::string_view HeaderName(std::string_view header) {
  header.remove_prefix(1);
  header.remove_suffix(utf8::LastCharacterBytes(header));
  return header;
}

/// Text before the first "=" (the whole text when there is none).
constexpr std::string_view EntryKeyOf(std::string_view entry) { return entry.substr(0, entry.find('=')); }
/// Text after the first "=" (empty when there is none).
constexpr std::string_view EntryValueOf(std::string_view entry) {
  const std::size_t equals = entry.find('=');
  return equals == std::string_view::npos ? std::string_view() : entry.substr(equals + 1);
}

}  // namespace tme
