#include <algorithm>
#include <array>
#include <string>

#include "base/Utf16.h"
#include "base/Utf8.h"
#include "documents/search/TextSearch.h"

namespace tme {
namespace {

/// One character of UTF-16 as UTF-8; takes it off `text`.
void TakeInto(std::string& out, std::u16string_view& text) {
  char32_t character = text.front();
  text.remove_prefix(1);
  if (utf16::IsHighSurrogate(character) && !text.empty() && utf16::IsLowSurrogate(text.front())) {
    character = utf16::Join(character, text.front());
    text.remove_prefix(1);
  }
  if (character == 0x2028 || character == 0x2029) character = U'\n';
  std::array<char, utf8::kMaxCharacterBytes> bytes;
  out.append(bytes.data(), utf8::PutCharacter(character, bytes.data()));
}

std::string ToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 8);
  while (!text.empty()) {
    if (text.front() < 0x80) {
      out += static_cast<char>(text.front());
      text.remove_prefix(1);
    } else {
      TakeInto(out, text);
    }
  }
  return out;
}

/// How many UTF-16 units this UTF-8 stands for. Line separators were made one unit, too.
std::size_t Utf16Units(std::string_view text) {
  std::size_t units = 0;
  for (const char byte : text)
    units += static_cast<std::size_t>(!utf8::IsContinuation(byte)) +
             static_cast<std::size_t>(static_cast<unsigned char>(byte) >= 0xF0);
  return units;
}

}  // namespace

std::optional<TextMatch> TextSearch::Find(std::u16string_view text, std::size_t from, std::size_t to) const {
  constexpr std::size_t kNeighbour = 2;  // units of one character, for whole words
  to = std::min(to, text.size());
  if (from >= to) return std::nullopt;
  const std::size_t before = std::min(from, kNeighbour);
  std::string converted = ToUtf8(text.substr(from - before, before));
  const std::size_t start = converted.size();
  converted += ToUtf8(text.substr(from, to - from));
  const std::size_t end = converted.size();
  converted += ToUtf8(text.substr(to, kNeighbour));
  const std::optional<TextMatch> match = Find(std::string_view(converted), start, end);
  if (!match) return std::nullopt;
  const std::string_view bytes = converted;
  const std::size_t match_start = from + Utf16Units(bytes.substr(start, match->start - start));
  return TextMatch{match_start, match_start + Utf16Units(bytes.substr(match->start, match->end - match->start))};
}

}  // namespace tme
