#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tme {

/// How the bytes of a text file stand for characters.
enum class TextEncoding : std::uint8_t {
  CodePage,  ///< the 8-bit code page of the system (see CodePage.h); pure ASCII counts as this
  Utf8,      ///< without byte order mark; a few bytes may be no UTF-8 (see DecodeText)
  Utf8Bom,   ///< with byte order mark
  Utf16Le,   ///< with byte order mark
  Utf16Be,   ///< with byte order mark
  Utf16LeUnmarked,
  Utf16BeUnmarked,
};
inline constexpr int kTextEncodings = 7;

/// "the 8-bit code page", "UTF-8", "UTF-8 with byte order mark", "UTF-16 LE", "UTF-16 LE without byte order mark".
std::string_view EncodingName(TextEncoding encoding);

struct TextFormat {
  TextEncoding encoding = TextEncoding::CodePage;
  /// UTF-16 only: the last byte of a file with an odd number of bytes; written back at the end.
  std::optional<char> stray_byte;
  /// What a text becomes that the 8-bit code page cannot hold: Utf8, Utf8Bom or Utf16Le.
  TextEncoding fallback = TextEncoding::Utf8;
};
/// The Unicode encoding of a file that other programs of this system must read too: on Windows UTF-16 LE, which the
/// system's profile functions read, elsewhere UTF-8.
TextEncoding SystemUnicode();

struct DecodedText {
  /// UTF-8 without byte order mark; line ends as in the file. Lone UTF-16 surrogates are kept as three bytes each, and
  /// invalid bytes of a UTF-8 file as they are, so that EncodeText gives the same bytes again.
  std::string text;
  TextFormat format;
};

/// Finds out the encoding and decodes. Never fails. Bytes without a mark are
/// - UTF-16 when, read so, none of at least four units is U+0000, a lone surrogate, private or no character, and those
///   that speak for it are a third of all and more than those that speak against it. For it speaks a high byte that no
///   8-bit text has (a control other than tab and line ends), against it two printable ASCII bytes, or such a control
///   as low byte alone. Bytes without NUL are no UTF-16, so that no text of an 8-bit encoding is taken for it;
/// - UTF-8 when all of them are, or when there are at least twice as many characters beyond ASCII as places that are
///   invalid (each what a decoder shows as one U+FFFD). Of 8-bit text, single letters of Latin pages are hardly ever
///   UTF-8, pairs of East Asian ones about one in five;
/// - else text of the 8-bit code page.
/// Takes the bytes over; no copy is made when they are UTF-8 already.
DecodedText DecodeText(std::string bytes);

/// Encodes a text. Where the bytes would not be read as this text again, another encoding is taken, and `format` says
/// so: the 8-bit code page may have no byte for a character, or bytes that look like another encoding, and becomes the
/// format's fallback; UTF-16 takes only what is UTF-8, and gets a mark where it would not be recognised. UTF-8 holds
/// any text: invalid bytes pass through, but may be read as another encoding next time. Takes the text over; no copy is
/// made when it stands for itself.
std::string EncodeText(std::string text, TextFormat& format);

}  // namespace tme
