#include "files/TextEncoding.h"

#include <utility>

#include "base/Utf8.h"
#include "files/CodePage.h"
#include "files/EncodingEvidence.h"
#include "files/TextEncoder.h"
#include "files/Utf16Bytes.h"

namespace tme {

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
