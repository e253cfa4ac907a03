#include "files/TextEncoding.h"

#include <array>
#include <utility>

#include "base/Utf16.h"
#include "base/Utf8.h"
#include "files/CodePage.h"
#include "files/EncodingEvidence.h"
#include "files/TextEncoder.h"

namespace tme {
namespace {

/// Units that are looked at together: most text is ASCII, and compilers make a few instructions of a block of it.
constexpr std::size_t kBlockUnits = 32;

/// Narrows a block of units, two bytes each, to `out`. Returns false when it is not all ASCII; what is there then does
/// not count.
bool NarrowAscii(const char* units, std::size_t low_byte, char* out) {
  unsigned beyond = 0;
  for (std::size_t i = 0; i < kBlockUnits; ++i) {
    const auto low = static_cast<unsigned char>(units[2 * i + low_byte]);
    const auto high = static_cast<unsigned char>(units[2 * i + 1 - low_byte]);
    beyond |= (low & 0x80U) | high;
    out[i] = static_cast<char>(low);
  }
  return beyond == 0;
}

/// Gives UTF-8 for UTF-16 bytes without a mark. Lone surrogates become three bytes each; an odd byte at the end is left
/// out.
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
  std::size_t no_block_before = 0;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    if (at >= no_block_before && at + 2 * kBlockUnits <= bytes.size()) {
      if (used + kBlockUnits > buffer.size()) {
        text.append(buffer.data(), used);
        used = 0;
      }
      if (NarrowAscii(bytes.data() + at, low_byte, buffer.data() + used)) {
        used += kBlockUnits;
        at += 2 * kBlockUnits - 2;
        continue;
      }
      no_block_before = at + 2 * kBlockUnits;
    }
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

}  // namespace

std::string_view EncodingName(TextEncoding encoding) { return TraitsOf(encoding).name; }

DecodedText DecodeText(std::string bytes) {
  DecodedText decoded;
  const auto marked = MarkedEncoding(bytes);
  if (const auto known = marked ? marked : UnmarkedUtf16(bytes)) {
    const EncodingTraits& traits = TraitsOf(*known);
    decoded.format.encoding = *known;
    if (!traits.utf16_order) {
      bytes.erase(0, traits.mark.size());
      decoded.text = std::move(bytes);
      return decoded;
    }
    if (bytes.size() % 2 != 0) decoded.format.stray_byte = bytes.back();
    decoded.text = DecodeUtf16(std::string_view(bytes).substr(traits.mark.size()), *traits.utf16_order);
    return decoded;
  }

  Utf8Evidence evidence;
  evidence.Add(bytes);
  if (evidence.IsUtf8()) decoded.format.encoding = TextEncoding::Utf8;
  decoded.text = evidence.IsAscii() || evidence.IsUtf8() ? std::move(bytes) : CodePageToUtf8(bytes);
  return decoded;
}

std::string EncodeText(std::string text, TextFormat& format) {
  while (true) {
    const bool may_stand = format.encoding == TextEncoding::Utf8
                               ? !text.starts_with(kUtf8Mark)
                               : format.encoding == TextEncoding::CodePage && utf8::AsciiRun(text) == text.size();
    if (may_stand && !UnmarkedUtf16(text)) return text;
    TextEncoder encoder(format);
    std::optional<std::string> bytes = encoder.Encode(text);
    if (bytes && encoder.ReadsBack([&bytes](const PartSink& put) { return put(*bytes); }))
      return std::move(*bytes) + encoder.Rest();
    format = NextFormat(format);
  }
}

}  // namespace tme
