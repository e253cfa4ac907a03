#include "files/Utf16Bytes.h"

#include <array>

#include "base/Utf16.h"
#include "base/Utf8.h"

namespace tme {

std::string DecodeUtf16(std::string_view bytes, std::endian order) {
  const std::size_t low_byte = order == std::endian::little ? 0 : 1;
  const auto unit_at = [bytes, low_byte](std::size_t at) {
    const auto low = static_cast<unsigned char>(bytes[at + low_byte]);
    const auto high = static_cast<unsigned char>(bytes[at + 1 - low_byte]);
    return static_cast<char32_t>(low) | static_cast<char32_t>(high) << 8;
  };

  std::string text;
  text.reserve(bytes.size() / 2);
  std::array<char, 4096> buffer;
  std::size_t used = 0;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t character = unit_at(at);
    if (utf16::IsHighSurrogate(character) && at + 3 < bytes.size()) {
      if (const char32_t next = unit_at(at + 2); utf16::IsLowSurrogate(next)) {
        character = utf16::Join(character, next);
        at += 2;
      }
    }
    if (used + utf8::kMaxCharacterBytes > buffer.size()) {
      text.append(buffer.data(), used);
      used = 0;
    }
    used += utf8::PutCharacter(character, buffer.data() + used);
  }
  return text.append(buffer.data(), used);
}

std::optional<std::string> EncodeUtf16(std::string_view text, std::endian order, std::string_view mark) {
  std::string bytes(mark.size() + 2 * text.size(), '\0');  // no character takes more than twice its bytes
  std::size_t used = mark.copy(bytes.data(), mark.size());
  const auto put = [&bytes, &used, little = order == std::endian::little](char32_t unit) {
    const auto low = static_cast<char>(unit & 0xFF);
    const auto high = static_cast<char>(unit >> 8);
    bytes[used++] = little ? low : high;
    bytes[used++] = little ? high : low;
  };
  while (!text.empty()) {
    const auto character = utf8::TakeCharacter(text, utf8::Surrogates::Accept);
    if (!character) return std::nullopt;
    if (*character < utf16::kFirstSupplementary) {
      put(*character);
    } else {
      put(utf16::HighSurrogateOf(*character));
      put(utf16::LowSurrogateOf(*character));
    }
  }
  bytes.resize(used);
  return bytes;
}

}  // namespace tme
