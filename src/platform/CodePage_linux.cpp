#include <algorithm>
#include <array>

#include "base/Utf8.h"
#include "platform/CodePage.h"

namespace tme {
namespace {

constexpr unsigned kFirstSpecial = 0x80;

/// Bytes 80 to 9F; every other byte stands for the character of its own number.
constexpr std::array<char32_t, 32> kSpecial = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                               0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t CharacterOf(unsigned char byte) {
  const unsigned special = byte - kFirstSpecial;
  return byte >= kFirstSpecial && special < kSpecial.size() ? kSpecial[special] : byte;
}

std::optional<char> ByteOf(char32_t character) {
  if (character < kFirstSpecial || (character > 0x9F && character <= 0xFF)) return static_cast<char>(character);
  const auto found = std::find(kSpecial.begin(), kSpecial.end(), character);
  if (found == kSpecial.end()) return std::nullopt;
  return static_cast<char>(kFirstSpecial + static_cast<unsigned>(found - kSpecial.begin()));
}

}  // namespace

std::string CodePageToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  std::array<char, utf8::kMaxCharacterBytes> character;
  while (true) {
    const std::size_t run = utf8::AsciiRun(bytes);
    text.append(bytes.substr(0, run));
    bytes.remove_prefix(run);
    if (bytes.empty()) return text;
    const auto byte = static_cast<unsigned char>(bytes.front());
    text.append(character.data(), utf8::PutCharacter(CharacterOf(byte), character.data()));
    bytes.remove_prefix(1);
  }
}

std::optional<std::string> Utf8ToCodePage(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (true) {
    const std::size_t run = utf8::AsciiRun(text);
    bytes.append(text.substr(0, run));
    text.remove_prefix(run);
    if (text.empty()) return bytes;
    const auto character = utf8::TakeCharacter(text);
    const auto byte = character ? ByteOf(*character) : std::nullopt;
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
}

}  // namespace tme
