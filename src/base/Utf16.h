#pragma once

/// Characters above U+FFFF as UTF-16 has them: a high surrogate and a low one behind it.
namespace tme::utf16 {

inline constexpr char32_t kFirstSupplementary = 0x10000;

constexpr bool IsHighSurrogate(char32_t unit) { return (unit & 0xFFFFFC00) == 0xD800; }
constexpr bool IsLowSurrogate(char32_t unit) { return (unit & 0xFFFFFC00) == 0xDC00; }
constexpr bool IsSurrogate(char32_t unit) { return (unit & 0xFFFFF800) == 0xD800; }

/// The character of a high and a low surrogate.
constexpr char32_t Join(char32_t high, char32_t low) {
  return kFirstSupplementary + ((high - 0xD800) << 10) + (low - 0xDC00);
}

/// The halves of a character that is kFirstSupplementary or above.
constexpr char16_t HighSurrogateOf(char32_t character) {
  return static_cast<char16_t>(0xD800 + ((character - kFirstSupplementary) >> 10));
}
constexpr char16_t LowSurrogateOf(char32_t character) { return static_cast<char16_t>(0xDC00 + (character & 0x3FF)); }

/// Calls put(unit) for the one or two units of a character.
template <typename Put>
void PutUnits(char32_t character, Put put) {
  if (character < kFirstSupplementary) return put(character);
  put(char32_t{HighSurrogateOf(character)});
  put(char32_t{LowSurrogateOf(character)});
}

}  // namespace tme::utf16
