#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// UTF-8, byte by byte, as RFC 3629 defines it; made for large, mostly ASCII texts.
namespace tme::utf8 {

/// U+FFFD, which stands for bytes that are no character.
inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// Counts the bytes at the start that are ASCII.
std::size_t AsciiRun(std::string_view text);

bool IsValid(std::string_view text);

/// Surrogates as three bytes each are no UTF-8; they stand for the lone ones of a UTF-16 file.
enum class Surrogates : std::uint8_t { Refuse, Accept };

/// Takes the first character off `text`. Returns null, with `text` as it was, when it is empty or begins with an
/// invalid byte.
std::optional<char32_t> TakeCharacter(std::string_view& text, Surrogates surrogates = Surrogates::Refuse);

/// Counts the bytes at the start of `text`, where no character begins, that are shown as one U+FFFD: those that a
/// longer character could begin with (the maximal subpart of the Unicode standard), else one. Returns 0 for an empty
/// text.
std::size_t InvalidBytes(std::string_view text);

constexpr bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

/// Counts the bytes that are no continuation: the characters of valid UTF-8.
std::size_t CountCharacters(std::string_view text);

/// Returns where the character begins that the byte at `at` belongs to; `at` itself at the end of the text and beyond.
constexpr std::size_t CharacterStart(std::string_view text, std::size_t at) {
  while (at > 0 && at < text.size() && IsContinuation(text[at])) --at;
  return at;
}

/// Returns the length of the last character: 0 for an empty text, 1 for an invalid byte.
std::size_t LastCharacterBytes(std::string_view text);

inline constexpr std::size_t kMaxCharacterBytes = 4;

/// Writes 1 to kMaxCharacterBytes bytes, surrogates as three. Returns how many.
std::size_t PutCharacter(char32_t character, char* out);

}  // namespace tme::utf8
