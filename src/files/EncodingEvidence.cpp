#include "files/EncodingEvidence.h"

#include <array>

#include "base/Utf16.h"
#include "base/Utf8.h"

namespace tme {
namespace {

constexpr std::string_view kUtf16LeMark = "\xFF\xFE";
constexpr std::string_view kUtf16BeMark = "\xFE\xFF";

/// By TextEncoding.
constexpr std::array<EncodingTraits, kTextEncodings> kTraits{{
    {"the 8-bit code page", {}, {}},
    {"UTF-8", {}, {}},
    {"UTF-8 with byte order mark", kUtf8Mark, {}},
    {"UTF-16 LE", kUtf16LeMark, std::endian::little},
    {"UTF-16 BE", kUtf16BeMark, std::endian::big},
    {"UTF-16 LE without byte order mark", {}, std::endian::little},
    {"UTF-16 BE without byte order mark", {}, std::endian::big},
}};

bool IsPrintable(unsigned byte) { return byte >= 0x20 && byte <= 0x7E; }
bool IsNoTextByte(unsigned byte) { return byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r'; }

}  // namespace

const EncodingTraits& TraitsOf(TextEncoding encoding) { return kTraits[static_cast<std::size_t>(encoding)]; }

std::optional<TextEncoding> MarkedEncoding(std::string_view bytes) {
  for (const TextEncoding encoding : {TextEncoding::Utf8Bom, TextEncoding::Utf16Le, TextEncoding::Utf16Be})
    if (bytes.starts_with(TraitsOf(encoding).mark)) return encoding;
  return std::nullopt;
}

std::optional<TextEncoding> UnmarkedUtf16(std::string_view bytes) {
  if (bytes.size() % 2 != 0 || bytes.find('\0') == std::string_view::npos) return std::nullopt;
  for (const TextEncoding encoding : {TextEncoding::Utf16LeUnmarked, TextEncoding::Utf16BeUnmarked}) {
    Utf16Evidence evidence(*TraitsOf(encoding).utf16_order);
    evidence.Add(bytes);
    if (evidence.IsUtf16()) return encoding;
  }
  return std::nullopt;
}

void Utf8Evidence::Add(std::string_view part) {
  while (true) {
    part.remove_prefix(utf8::AsciiRun(part));
    if (part.empty()) return;
    if (utf8::TakeCharacter(part)) {
      ++characters_;
    } else {
      ++invalid_;
      part.remove_prefix(utf8::InvalidBytes(part));
    }
  }
}

void Utf16Evidence::Add(std::string_view part) {
  const bool is_little = order_ == std::endian::little;
  for (const char character : part) {
    const auto byte = static_cast<unsigned char>(character);
    if (has_first_ = !has_first_; has_first_)
      first_ = byte;
    else
      AddUnit(is_little ? byte : first_, is_little ? first_ : byte);
    if (refuted_) return;
  }
}

void Utf16Evidence::AddUnit(unsigned high, unsigned low) {
  const char32_t unit = high << 8 | low;
  const bool is_private = unit >= 0xE000 && unit <= 0xF8FF;
  refuted_ = unit == 0 || unit >= 0xFFFE || is_private || utf16::IsLowSurrogate(unit) != after_high_;
  after_high_ = utf16::IsHighSurrogate(unit);
  ++units_;
  if (IsNoTextByte(high))
    ++for_;
  else if (IsNoTextByte(low) || (IsPrintable(high) && IsPrintable(low)))
    ++against_;
}

}  // namespace tme
