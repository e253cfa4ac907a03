#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "documents/ini/IniSourceLine.h"

namespace tme::fuzz {

/// A text with some of its lines edited, by three bytes each: how, which line, and a number.
inline std::string EditedLines(std::string_view text, std::string_view script) {
  constexpr std::array<std::string_view, 8> kLines = {
      "k=1\n", "\"v\"=\"2\"\n", "[HKEY_USERS\\a]\n", "[-HKEY_USERS\\a]\n", "[HKEY_USERS]\n", "; c\n",
      "\n",    "\"v\"=-\n"};
  std::vector<std::string> lines;
  SourceLineReader reader(text);
  for (std::string_view line; reader.Next(line);) lines.emplace_back(line);
  for (; script.size() >= 3 && !lines.empty(); script.remove_prefix(3)) {
    const auto byte = [&script](std::size_t at) { return std::size_t{static_cast<unsigned char>(script[at])}; };
    const std::size_t at = byte(1) % lines.size(), number = byte(2);
    const auto other = lines.begin() + static_cast<std::ptrdiff_t>(number % lines.size());
    const auto line = lines.begin() + static_cast<std::ptrdiff_t>(at);
    switch (byte(0) % 6) {
      case 0:
        lines.erase(line);
        break;
      case 1:
        lines.insert(other, std::string(lines[at]));
        break;
      case 2:
        std::swap(*line, *other);
        break;
      case 3:
        (*line)[number % line->size()] = static_cast<char>(number);
        break;
      case 4:
        lines.insert(line, std::string(kLines[number % kLines.size()]));
        break;
      default:
        std::sort(std::min(line, other), std::max(line, other));
        break;
    }
  }
  std::string edited;
  for (const std::string& line : lines) edited += line;
  return edited;
}

}  // namespace tme::fuzz
