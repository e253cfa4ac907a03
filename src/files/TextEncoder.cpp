#include "files/TextEncoder.h"

#include <utility>

#include "base/Utf16.h"
#include "base/Utf8.h"
#include "files/CodePage.h"

namespace tme {
namespace {

/// Gives the mark, then the text. Three bytes of a lone surrogate are taken. Returns null when the text is not UTF-8.
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
    // Most text is ASCII: a run of it takes no decoding.
    const std::size_t run = utf8::AsciiRun(text);
    for (const char ascii : text.substr(0, run)) put(static_cast<unsigned char>(ascii));
    text.remove_prefix(run);
    if (text.empty()) break;
    const auto character = utf8::TakeCharacter(text, utf8::Surrogates::Accept);
    if (!character) return std::nullopt;
    utf16::PutUnits(*character, put);
  }
  bytes.resize(used);
  return bytes;
}

}  // namespace

std::optional<std::string> TextEncoder::Encode(std::string_view part) {
  const bool is_first = std::exchange(at_start_, false);
  has_nul_ = has_nul_ || part.find('\0') != std::string_view::npos;
  if (format_.encoding == TextEncoding::CodePage) return ToCodePage(part, is_first);
  std::string_view mark = is_first ? traits_.mark : std::string_view();
  if (traits_.utf16_order) return EncodeUtf16(part, *traits_.utf16_order, mark);
  // A U+FEFF that is text would be taken for the mark by the next reader; after a mark it stays text.
  if (is_first && part.starts_with(kUtf8Mark)) mark = kUtf8Mark;
  return std::string(mark).append(part);
}

bool TextEncoder::ReadsBack(const PartProducer& all_bytes) const {
  const TextEncoding encoding = format_.encoding;
  const bool is_unmarked_utf16 = traits_.utf16_order && traits_.mark.empty();
  const bool may_look_like_utf16 = has_nul_ && (encoding == TextEncoding::CodePage || encoding == TextEncoding::Utf8);
  if (encoding == TextEncoding::CodePage && evidence_.IsUtf8()) return false;
  if (!is_unmarked_utf16 && !may_look_like_utf16) return true;
  Utf16Evidence little(std::endian::little), big(std::endian::big);
  bool starts = true, is_marked = false, has_nul = false;
  all_bytes([&](std::string_view part) {
    if (std::exchange(starts, part.empty() && starts)) is_marked = MarkedEncoding(part).has_value();
    has_nul = has_nul || part.find('\0') != std::string_view::npos;
    little.Add(part);
    big.Add(part);
    return true;
  });
  const bool is_little = little.IsUtf16(), is_any = is_little || big.IsUtf16();
  if (!is_unmarked_utf16) return !is_any;
  return !is_marked && has_nul && is_any && is_little == (traits_.utf16_order == std::endian::little);
}

std::optional<std::string> TextEncoder::ToCodePage(std::string_view part, bool is_first) {
  if (utf8::AsciiRun(part) == part.size()) return std::string(part);
  auto bytes = Utf8ToCodePage(part);
  if (!bytes || (is_first && MarkedEncoding(*bytes))) return std::nullopt;
  evidence_.Add(*bytes);
  return bytes;
}

TextFormat NextFormat(const TextFormat& format) {
  const auto next = [&format] {
    switch (format.encoding) {
      case TextEncoding::CodePage:
        return format.fallback;
      case TextEncoding::Utf16LeUnmarked:
        return TextEncoding::Utf16Le;
      case TextEncoding::Utf16BeUnmarked:
        return TextEncoding::Utf16Be;
      case TextEncoding::Utf16Le:
      case TextEncoding::Utf16Be:
        return TextEncoding::Utf8;
      case TextEncoding::Utf8:
      case TextEncoding::Utf8Bom:
        break;
    }
    return TextEncoding::Utf8Bom;
  };
  return {next(), {}, TextEncoding::Utf8};
}

}  // namespace tme
