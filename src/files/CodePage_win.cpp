#include <windows.h>

#include <algorithm>
#include <array>
#include <limits>

#include "base/Utf8.h"
#include "files/CodePage.h"
#include "files/CodePageTable_win.h"
#include "files/TextEncoding.h"

namespace tme {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

const CodePageTable& SystemTable() {
  static const CodePageTable table(SystemCodePage());
  return table;
}

void Put(char32_t character, std::string& text) {
  std::array<char, utf8::kMaxCharacterBytes> bytes;
  text.append(bytes.data(), utf8::PutCharacter(character, bytes.data()));
}

/// In pieces, since a call takes no more than an int says.
void Put(std::wstring_view units, std::string& text) {
  constexpr std::size_t kPiece = std::size_t{1} << 20, kMostBytes = 3;  // of a unit
  while (!units.empty()) {
    std::size_t count = std::min(kPiece, units.size());
    if (count < units.size() && IS_HIGH_SURROGATE(units[count - 1])) --count;
    const std::size_t before = text.size(), room = count * kMostBytes;
    text.resize(before + room);
    const int used = ::WideCharToMultiByte(CP_UTF8, 0, units.data(), static_cast<int>(count), text.data() + before,
                                           static_cast<int>(room), nullptr, nullptr);
    text.resize(before + static_cast<std::size_t>(used));
    units.remove_prefix(count);
  }
}

/// Some pages take no flags (those with states among them) and convert what they can.
DWORD StrictFlags(unsigned page) {
  wchar_t unit = 0;
  const bool strict = ::MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, "a", 1, &unit, 1) != 0 ||
                      ::GetLastError() != ERROR_INVALID_FLAGS;
  return strict ? MB_ERR_INVALID_CHARS : 0;
}

/// At most as many units as bytes. Empty when some bytes are no text of the page.
std::wstring Converted(unsigned page, DWORD flags, std::string_view bytes) {
  if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return {};
  const int size = static_cast<int>(bytes.size());
  std::wstring units(bytes.size(), L'\0');
  const int count = ::MultiByteToWideChar(page, flags, bytes.data(), size, units.data(), size);
  units.resize(static_cast<std::size_t>(count));
  return units;
}

/// Takes one character off `bytes`; false when they begin none.
bool TakeCharacter(unsigned page, const CPINFO& info, std::string_view& bytes, std::string& text) {
  const bool is_lead = info.MaxCharSize == 2 && ::IsDBCSLeadByteEx(page, static_cast<BYTE>(bytes[0])) != 0;
  for (std::size_t size = is_lead ? 2 : 1; size <= info.MaxCharSize && size <= bytes.size(); ++size) {
    const std::wstring units = Converted(page, MB_ERR_INVALID_CHARS, bytes.substr(0, size));
    if (units.empty()) continue;
    Put(units, text);
    bytes.remove_prefix(size);
    return true;
  }
  return false;
}

std::string FromUtf8(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const auto character = utf8::TakeCharacter(bytes);
    if (!character) bytes.remove_prefix(1);
    Put(character.value_or(kReplacement), text);
  }
  return text;
}

}  // namespace

TextEncoding SystemUnicode() { return TextEncoding::Utf16Le; }

std::string BytesToUtf8(int code_page, std::string_view bytes) {
  auto page = static_cast<unsigned>(code_page);
  if (page == CP_UTF8) return FromUtf8(bytes);
  CPINFO info{};
  // Small numbers are no pages but names for the system's own, and one for the letters of symbol fonts.
  if (page <= CP_SYMBOL || ::GetCPInfo(page, &info) == 0) {
    page = kLatinPage;
    ::GetCPInfo(page, &info);
  }
  const DWORD flags = StrictFlags(page);
  std::string text;
  text.reserve(bytes.size() * 2);
  Put(Converted(page, flags, bytes), text);
  if (!text.empty() || bytes.empty() || flags == 0) return text;
  while (!bytes.empty()) {
    if (TakeCharacter(page, info, bytes, text)) continue;
    Put(kReplacement, text);
    bytes.remove_prefix(1);
  }
  return text;
}

bool IsCodePageUsual() { return true; }

std::string CodePageToUtf8(std::string_view bytes) { return SystemTable().ToUtf8(bytes); }

std::optional<std::string> Utf8ToCodePage(std::string_view text) { return SystemTable().FromUtf8(text); }

}  // namespace tme
