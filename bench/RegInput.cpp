#include "RegInput.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Shuffle.h"

namespace tme {

namespace {

constexpr std::array<std::string_view, 3> kHives = {"HKEY_LOCAL_MACHINE\\Software", "HKEY_CURRENT_USER\\Control Panel",
                                                    "HKEY_USERS\\.Default\\Software"};
constexpr std::array<std::string_view, 12> kKeys = {"Setup", "shell", "Settings", "CLSID", "Fonts",    "Drivers",
                                                    "Enum",  "Media", "command",  "Tips",  "Explorer", "Net"};
constexpr std::array<std::string_view, 12> kNames = {"Install", "Default", "Path",    "Window", "Display", "Last",
                                                     "Driver",  "Show",    "Version", "Cache",  "Auto",    "Font"};
constexpr std::array<std::string_view, 8> kStrings = {"C:\\\\WINDOWS\\\\SYSTEM\\\\vga.drv,-",
                                                      "1",
                                                      "no",
                                                      "{00021401-0000-0000-C000-000000000046}",
                                                      "MS Sans Serif,8,0,400",
                                                      "\\\"C:\\\\Program Files\\\\edit.exe\\\" /p \\\"%1\\\"",
                                                      "4.0.950",
                                                      "Generic / Text Only on LPT"};
constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::uint32_t kDeepest = 8;

void AppendHex(std::string& text, Shuffle& shuffle, std::uint32_t bytes) {
  for (std::uint32_t i = 0; i < bytes; ++i) {
    if (i > 0) text.push_back(',');
    const std::uint32_t byte = shuffle.Below(256);
    text.push_back(kDigits[byte / 16]);
    text.push_back(kDigits[byte % 16]);
  }
}

void AppendValue(std::string& text, Shuffle& shuffle, std::size_t number) {
  if (number == 0) {
    text.append("@=\"").append(shuffle.Pick(kStrings)).append("\"\r\n");
    return;
  }
  text.append("\"").append(shuffle.Pick(kNames)).append(std::to_string(number)).append("\"=");
  const std::uint32_t kind = shuffle.Below(10);
  if (kind < 6) {
    text.append("\"").append(shuffle.Pick(kStrings)).append(shuffle.Number(1000)).append("\"\r\n");
  } else if (kind < 8) {
    text.append("dword:");
    for (int digit = 0; digit < 8; ++digit) text.push_back(kDigits[shuffle.Below(16)]);
    text.append("\r\n");
  } else {
    text.append("hex:");
    AppendHex(text, shuffle, 12);
    if (kind == 9) {
      for (int line = 0; line < 2; ++line) {
        text.append(",\\\r\n  ");
        AppendHex(text, shuffle, line == 0 ? 20 : 6);
      }
    }
    text.append("\r\n");
  }
}

}  // namespace

std::string MakeRegInput(std::size_t keys, std::size_t values_per_key) {
  Shuffle shuffle;
  std::string text = "REGEDIT4\r\n\r\n";
  text.reserve(keys * (70 + values_per_key * 46));
  std::vector<std::string> path;
  std::string_view hive;
  for (std::size_t key = 0; key < keys; ++key) {
    if (hive != kHives[key * kHives.size() / keys]) path.clear();
    hive = kHives[key * kHives.size() / keys];
    // At most one level below the key before.
    path.resize(std::min<std::size_t>(path.size(), shuffle.Below(kDeepest)));
    path.push_back(std::string(shuffle.Pick(kKeys)).append(" ").append(std::to_string(key)));
    text.append("[").append(hive);
    for (const std::string& component : path) text.append("\\").append(component);
    text.append("]\r\n");
    for (std::size_t value = 0; value < values_per_key; ++value) AppendValue(text, shuffle, value);
    text.append("\r\n");
  }
  return text;
}

std::string WithTypedValues(std::string text) {
  constexpr std::string_view kPlain = "=hex:";
  std::string typed;
  typed.reserve(text.size() + text.size() / 32);
  std::size_t from = 0;
  for (std::size_t at = text.find(kPlain), count = 0; at != std::string::npos;
       at = text.find(kPlain, at + 1), ++count) {
    typed.append(text, from, at - from).append(count % 2 == 0 ? "=hex(2):" : kPlain);
    from = at + kPlain.size();
  }
  return typed.append(text, from);
}

}  // namespace tme
