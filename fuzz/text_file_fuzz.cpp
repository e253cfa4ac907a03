// Input: a byte that chooses an encoding, then bytes, which are taken for a file's and for a text.
#include <string>
#include <string_view>

#include "Fuzz.h"
#include "base/Utf16.h"
#include "base/Utf8.h"
#include "files/CodePage.h"
#include "files/TextEncoding.h"

namespace tme::fuzz {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool IsMarkedUtf16(TextEncoding encoding) {
  return encoding == TextEncoding::Utf16Le || encoding == TextEncoding::Utf16Be;
}
bool IsUtf16(TextEncoding encoding) { return IsMarkedUtf16(encoding) || encoding >= TextEncoding::Utf16LeUnmarked; }

/// Lone surrogates that stand side by side are the character they make: a UTF-16 file cannot tell the two apart.
std::string WithPairsJoined(std::string_view text) {
  std::string joined;
  char32_t high = 0;
  char buffer[utf8::kMaxCharacterBytes];
  while (const auto character = utf8::TakeCharacter(text, utf8::Surrogates::Accept)) {
    const bool pair = high != 0 && utf16::IsLowSurrogate(*character);
    if (pair) joined.resize(joined.size() - 3);
    const char32_t whole = pair ? utf16::Join(high, *character) : *character;
    joined.append(buffer, utf8::PutCharacter(whole, buffer));
    high = utf16::IsHighSurrogate(*character) ? *character : 0;
  }
  return joined.append(text);
}

void CheckBytes(std::string_view bytes) {
  DecodedText decoded = DecodeText(std::string(bytes));
  Promise(EncodeText(decoded.text, decoded.format) == bytes, "decode, then encode gives the same bytes");
  const TextEncoding encoding = decoded.format.encoding;
  if (encoding == TextEncoding::CodePage || encoding >= TextEncoding::Utf16LeUnmarked)
    Promise(utf8::IsValid(decoded.text), "a decoded text is UTF-8");
  if (encoding == TextEncoding::CodePage)
    Promise(!utf8::IsValid(bytes) || utf8::AsciiRun(bytes) == bytes.size(), "UTF-8 is taken for nothing else");
  if (bytes.find('\0') == std::string_view::npos && !bytes.starts_with("\xFF\xFE") && !bytes.starts_with("\xFE\xFF"))
    Promise(!IsUtf16(encoding), "without NUL and mark it is no UTF-16");

  const std::string text = CodePageToUtf8(bytes);
  Promise(utf8::IsValid(text), "every byte of the code page is a character");
  Promise(Utf8ToCodePage(text) == bytes, "and every such character the byte again");
}

void CheckText(std::string_view text, unsigned choice) {
  TextFormat format{.encoding = static_cast<TextEncoding>(choice % kTextEncodings)};
  if ((choice & 0x40) != 0) format.fallback = TextEncoding::Utf16Le;
  const TextEncoding fallback = format.fallback;
  if (IsMarkedUtf16(format.encoding) && (choice & 0x80) != 0) format.stray_byte = 'x';
  const bool valid = utf8::IsValid(text);
  const TextEncoding wanted = format.encoding;
  const std::string bytes = EncodeText(std::string(text), format);
  if (format.encoding != wanted) {
    const bool is_utf8 = format.encoding == TextEncoding::Utf8 || format.encoding == TextEncoding::Utf8Bom;
    const bool got_mark = IsMarkedUtf16(format.encoding) && wanted >= TextEncoding::Utf16LeUnmarked;
    Promise(is_utf8 || got_mark || format.encoding == fallback,
            "what an encoding cannot hold is the fallback or UTF-8");
    Promise(wanted != TextEncoding::Utf8Bom, "UTF-8 with a mark takes every text");
    Promise(!IsMarkedUtf16(wanted) || !valid, "UTF-16 takes every text that is UTF-8");
  }
  // Without a mark, a text that is no UTF-8 is written as it is and taken for the code page's by whoever reads it.
  if (format.encoding == TextEncoding::Utf8 && !valid && !text.starts_with(kUtf8Mark)) {
    Promise(bytes == text, "a text that is no UTF-8 passes through");
    return;
  }
  const DecodedText decoded = DecodeText(bytes);
  const std::string expected = IsUtf16(format.encoding) ? WithPairsJoined(text) : std::string(text);
  Promise(decoded.text == expected, "what was encoded reads back");
  Promise(decoded.format.stray_byte == format.stray_byte, "an odd byte stays");
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tme::fuzz;
  std::string_view input = AsText(data, size);
  const unsigned choice = TakeByte(input);
  CheckBytes(input);
  CheckText(input, choice);
  return 0;
}
