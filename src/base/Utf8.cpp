#include "base/Utf8.h"

#include <array>
#include <bit>
#include <cstring>

#include "base/Utf16.h"

namespace tme::utf8 {
namespace {

constexpr std::uint64_t kHighBits = 0x8080808080808080u;

}  // namespace

std::size_t AsciiRun(std::string_view text) {
  std::size_t run = 0;
  std::array<std::uint64_t, 4> words;
  while (text.size() - run >= sizeof words) {
    std::memcpy(words.data(), text.data() + run, sizeof words);
    if (((words[0] | words[1] | words[2] | words[3]) & kHighBits) != 0) break;
    run += sizeof words;
  }
  while (run < text.size() && static_cast<unsigned char>(text[run]) < 0x80) ++run;
  return run;
}

std::size_t CountCharacters(std::string_view text) {
  std::size_t continuations = 0, at = 0;
  for (std::uint64_t word = 0; text.size() - at >= sizeof word; at += sizeof word) {
    std::memcpy(&word, text.data() + at, sizeof word);
    continuations += static_cast<std::size_t>(std::popcount(word & ~(word << 1U) & kHighBits));
  }
  for (; at < text.size(); ++at) continuations += IsContinuation(text[at]) ? 1 : 0;
  return text.size() - continuations;
}

bool IsValid(std::string_view text) {
  while (true) {
    text.remove_prefix(AsciiRun(text));
    if (text.empty()) return true;
    while (!text.empty() && static_cast<unsigned char>(text.front()) >= 0x80) {
      if (!TakeCharacter(text)) return false;
    }
  }
}

std::optional<char32_t> TakeCharacter(std::string_view& text, Surrogates surrogates) {
  if (text.empty()) return std::nullopt;
  const auto lead = static_cast<unsigned char>(text.front());
  std::size_t size = 1;
  char32_t lowest = 0;  // of this length: anything below is an over-long form
  char32_t character = lead;
  if (lead >= 0x80) {
    if (lead >= 0xC2 && lead <= 0xDF) {
      size = 2, lowest = 0x80, character = lead & 0x1Fu;
    } else if ((lead & 0xF0) == 0xE0) {
      size = 3, lowest = 0x800, character = lead & 0x0Fu;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      size = 4, lowest = 0x10000, character = lead & 0x07u;
    } else {
      return std::nullopt;
    }
    if (text.size() < size) return std::nullopt;
    for (std::size_t i = 1; i < size; ++i) {
      const auto byte = static_cast<unsigned char>(text[i]);
      if (!IsContinuation(text[i])) return std::nullopt;
      character = (character << 6) | (byte & 0x3Fu);
    }
    const bool is_refused = surrogates == Surrogates::Refuse && utf16::IsSurrogate(character);
    if (character < lowest || character > 0x10FFFF || is_refused) {
      return std::nullopt;
    }
  }
  text.remove_prefix(size);
  return character;
}

std::size_t InvalidBytes(std::string_view text) {
  if (text.size() < 2) return text.size();
  const auto lead = static_cast<unsigned char>(text[0]), second = static_cast<unsigned char>(text[1]);
  // The second bytes of over-long forms, surrogates and what is above U+10FFFF are none of these.
  const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (lead < 0xE0 || lead > 0xF4 || second < lowest || second > highest) return 1;
  return lead >= 0xF0 && text.size() > 2 && IsContinuation(text[2]) ? 3 : 2;
}

std::size_t LastCharacterBytes(std::string_view text) {
  if (text.empty()) return 0;
  if (static_cast<unsigned char>(text.back()) < 0x80) return 1;
  for (std::size_t size = 2; size <= kMaxCharacterBytes && size <= text.size(); ++size) {
    std::string_view last = text.substr(text.size() - size);
    if (TakeCharacter(last, Surrogates::Accept) && last.empty()) return size;
  }
  return 1;
}

std::size_t PutCharacter(char32_t character, char* out) {
  if (character < 0x80) {
    out[0] = static_cast<char>(character);
    return 1;
  }
  const std::size_t size = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
  for (std::size_t at = size - 1; at > 0; --at, character >>= 6) out[at] = static_cast<char>(0x80 | (character & 0x3F));
  // The first byte has as many high bits set as there are bytes.
  out[0] = static_cast<char>((0xF00U >> size & 0xFF) | character);
  return size;
}

}  // namespace tme::utf8
