#include "files/CodePageTable_win.h"

#include <windows.h>

#include "base/Utf8.h"

namespace tme {
namespace {

constexpr unsigned kFirstSpecial = 0x80;
constexpr std::size_t kCharacters = 0x10000;
/// Private characters that no page uses: this plus the byte stands for a byte of a two-byte page that is no text.
constexpr char32_t kStrayBytes = 0x100000;

std::size_t PairIndex(unsigned char lead, unsigned char trail) { return std::size_t{lead} << 8 | trail; }

/// The one UTF-16 unit that these bytes mean, and that means these bytes; 0 when there is none.
char16_t CharacterOf(unsigned page, std::string_view bytes) {
  wchar_t unit = 0;
  const int size = static_cast<int>(bytes.size());
  if (::MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), size, &unit, 1) != 1) return 0;
  std::array<char, 4> back{};
  BOOL replaced = FALSE;
  const int back_size = ::WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, &unit, 1, back.data(),
                                              static_cast<int>(back.size()), nullptr, &replaced);
  const bool same = replaced == FALSE && back_size == size && std::string_view(back.data(), bytes.size()) == bytes;
  return same ? static_cast<char16_t>(unit) : u'\0';
}

bool HasShortCharacters(unsigned page) {
  CPINFO info{};
  return ::GetCPInfo(page, &info) != 0 && info.MaxCharSize <= 2;
}

}  // namespace

CodePageTable::CodePageTable(unsigned page) : codes_(kCharacters, u'\0') {
  if (!HasShortCharacters(page)) page = kLatinPage;
  AddBytes(page);
  AddPairs(page);
  if (!pairs_.empty()) return;
  // Bytes that the page leaves open stand for the characters of their own number; for a private one where that is
  // taken.
  for (unsigned byte = kFirstSpecial; byte < single_.size(); ++byte) {
    if (single_[byte] != 0) continue;
    single_[byte] = codes_[byte] == 0 ? byte : kStrayBytes + byte;
    if (codes_[byte] == 0) codes_[byte] = static_cast<char16_t>(byte);
  }
}

void CodePageTable::AddBytes(unsigned page) {
  for (unsigned byte = kFirstSpecial; byte < single_.size(); ++byte) {
    leads_[byte] = ::IsDBCSLeadByteEx(page, static_cast<BYTE>(byte)) != 0;
    if (leads_[byte]) continue;
    const char bytes = static_cast<char>(byte);
    const char16_t character = CharacterOf(page, {&bytes, 1});
    if (character < kFirstSpecial) continue;
    single_[byte] = character;
    codes_[character] = static_cast<char16_t>(byte);
  }
}

void CodePageTable::AddPairs(unsigned page) {
  for (unsigned lead = kFirstSpecial; lead < single_.size(); ++lead) {
    if (!leads_[lead]) continue;
    pairs_.resize(kCharacters);
    for (unsigned trail = 1; trail < single_.size(); ++trail) {
      const std::array<char, 2> bytes{static_cast<char>(lead), static_cast<char>(trail)};
      const char16_t character = CharacterOf(page, {bytes.data(), bytes.size()});
      if (character < kFirstSpecial) continue;
      const std::size_t index = PairIndex(static_cast<unsigned char>(lead), static_cast<unsigned char>(trail));
      pairs_[index] = character;
      codes_[character] = static_cast<char16_t>(index);
    }
  }
}

std::string CodePageTable::ToUtf8(std::string_view bytes) const {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 4);
  std::array<char, utf8::kMaxCharacterBytes> character;
  while (true) {
    const std::size_t run = utf8::AsciiRun(bytes);
    text.append(bytes.substr(0, run));
    bytes.remove_prefix(run);
    if (bytes.empty()) return text;
    const auto first = static_cast<unsigned char>(bytes[0]);
    char32_t meant = single_[first];
    std::size_t used = 1;
    if (leads_[first] && bytes.size() > 1) {
      meant = pairs_[PairIndex(first, static_cast<unsigned char>(bytes[1]))];
      if (meant != 0) used = 2;
    }
    if (meant == 0) meant = kStrayBytes + first;
    text.append(character.data(), utf8::PutCharacter(meant, character.data()));
    bytes.remove_prefix(used);
  }
}

std::optional<std::string> CodePageTable::FromUtf8(std::string_view text) const {
  const std::string_view whole = text;
  std::string bytes;
  bytes.reserve(text.size());
  bool has_stray_bytes = false;
  while (true) {
    const std::size_t run = utf8::AsciiRun(text);
    bytes.append(text.substr(0, run));
    text.remove_prefix(run);
    if (text.empty()) break;
    const auto character = utf8::TakeCharacter(text);
    if (!character) return std::nullopt;
    char16_t code = *character < kCharacters ? codes_[*character] : u'\0';
    if (*character >= kStrayBytes + kFirstSpecial && *character <= kStrayBytes + 0xFF) {
      code = static_cast<char16_t>(*character - kStrayBytes);
      has_stray_bytes = true;
    }
    if (code == 0) return std::nullopt;
    if (code > 0xFF) bytes.push_back(static_cast<char>(code >> 8));
    bytes.push_back(static_cast<char>(code & 0xFF));
  }
  // A stray byte may have come to stand before one that it makes a pair with.
  if (has_stray_bytes && ToUtf8(bytes) != whole) return std::nullopt;
  return bytes;
}

unsigned SystemCodePage() {
  DWORD page = 0;
  constexpr LCTYPE kWhat = LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER;
  const int size = ::GetLocaleInfoEx(LOCALE_NAME_SYSTEM_DEFAULT, kWhat, reinterpret_cast<wchar_t*>(&page),
                                     sizeof page / sizeof(wchar_t));
  return size == 0 ? kLatinPage : page;
}

}  // namespace tme
