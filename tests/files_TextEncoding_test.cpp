#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "files/CodePage.h"
#include "files/TextEncoding.h"

namespace tme {
namespace {

using std::string_literals::operator""s;

/// Calls `use` with every sequence of up to `length` pieces.
template <typename Use>
void ForEachSequence(const std::vector<std::string>& pieces, int length, const std::string& start, const Use& use) {
  use(start);
  if (length == 0) return;
  for (const std::string& piece : pieces) ForEachSequence(pieces, length - 1, start + piece, use);
}

TEST(TextEncoding, Utf16IsReadAtAnyPlace) {
  for (std::size_t before = 0; before < 70; ++before) {
    const std::string text = std::string(before, 'a') + "\U0001F600\u00E9" + std::string(70, 'b');
    for (const TextEncoding encoding : {TextEncoding::Utf16Le, TextEncoding::Utf16Be}) {
      TextFormat format{encoding, {}};
      const DecodedText decoded = DecodeText(EncodeText(text, format));
      ASSERT_TRUE(decoded.text == text && decoded.format.encoding == encoding) << before;
    }
  }
}

TEST(TextEncoding, Decodes) {
  using enum TextEncoding;
  const struct {
    std::string bytes, text;
    TextEncoding encoding;
    std::optional<char> stray;
  } cases[] = {
      {"", "", CodePage, {}},
      {"a\0b\r\n\n\r"s, "a\0b\r\n\n\r"s, CodePage, {}},
      {"\x80\x81\x9F\xFF\xFF", "\u20AC\u0081\u0178\u00FF\u00FF", CodePage, {}},
      {"ok \xC3\xA9 \xC3", "ok \u00C3\u00A9 \u00C3", CodePage, {}},    // cut off
      {"\xC0\xAF", "\u00C0\u00AF", CodePage, {}},                      // over-long
      {"\xED\xA0\x80", "\u00ED\u00A0\u20AC", CodePage, {}},            // surrogate
      {"\xF4\x90\x80\x80", "\u00F4\u0090\u20AC\u20AC", CodePage, {}},  // above U+10FFFF
      {std::string(40, 'x') + "\xC3\xA9", std::string(40, 'x') + "\u00E9", Utf8, {}},
      {"\xF4\x8F\xBF\xBF\xEE\x80\x80", "\U0010FFFF\uE000", Utf8, {}},
      {"\xEF\xBB\xBF\xEF\xBB\xBF\xC3(", "\uFEFF\xC3(", Utf8Bom, {}},
      {"\xEF\xBB", "\u00EF\u00BB", CodePage, {}},
      {"\xFF\xFE", "", Utf16Le, {}},
      {"\xFF\xFE\x41\0\x3D\xD8\x00\xDE\r\0"s, "A\U0001F600\r", Utf16Le, {}},
      {"\xFE\xFF\xD8\x3D\xDE\x00\0\x41"s, "\U0001F600A", Utf16Be, {}},
      {"\xFF\xFE\x41\0\x42"s, "A", Utf16Le, 'B'},
      {"\xFE\xFF\xD8\x3D\xD8\x3D\xDE\x00\xDE\x00"s, "\xED\xA0\xBD\U0001F600\xED\xB8\x80", Utf16Be, {}},
      {"\xFF\xFE\x3D\xD8\x01"s, "\xED\xA0\xBD", Utf16Le, '\x01'},
      {"Gr\xC3\xBC\xC3\x9F"
       "e\xFF",
       "Gr\xC3\xBC\xC3\x9F"
       "e\xFF",
       Utf8,
       {}},
      {"\xE4\xB8\xAD\xE6\x96\x87\xE5\xAD", "\u4E2D\u6587\xE5\xAD", Utf8, {}},  // cut off: one place
      {"\x84Spa\xDF\x93", "\u201ESpa\u00DF\u201C", CodePage, {}},
      {"\xE9\xA0\xBB \xE9t\xE9", "\u00E9\u00A0\u00BB \u00E9t\u00E9", CodePage, {}},
      {"\xC4\xE3\xBA\xC3\xCA\xC0\xBD\xE7", CodePageToUtf8("\xC4\xE3\xBA\xC3\xCA\xC0\xBD\xE7"), CodePage, {}},  // GBK
      {"[\0A\0]\0\n\0"s, "[A]\n", Utf16LeUnmarked, {}},
      {"\0[\0A\0]\0\n"s, "[A]\n", Utf16BeUnmarked, {}},
      {"[\0-N\x87\x65=\0\0N\n\0"s, "[\u4E2D\u6587=\u4E00\n", Utf16LeUnmarked, {}},
      {"\x1A\x04;\x04N\x04G\x04=\0"s, "\u041A\u043B\u044E\u0447=", Utf16LeUnmarked, {}},
      {"abc\0def\0ghi\0"s, "abc\0def\0ghi\0"s, CodePage, {}},                          // a list
      {"one line\n\0"s, "one line\n\0"s, CodePage, {}},                                // with a NUL at its end
      {"a\0\0\0b\0c\0d\0e\0"s, "a\0\0\0b\0c\0d\0e\0"s, CodePage, {}},                  // records
      {"[\0A\0]\0\n\0\0\xD8"s, CodePageToUtf8("[\0A\0]\0\n\0\0\xD8"s), CodePage, {}},  // half a character
  };
  for (const auto& [bytes, text, encoding, stray] : cases) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    const DecodedText decoded = DecodeText(bytes);
    EXPECT_EQ(decoded.text, text);
    EXPECT_EQ(EncodingName(decoded.format.encoding), EncodingName(encoding));
    EXPECT_EQ(decoded.format.stray_byte, stray);
  }
}

TEST(TextEncoding, UntouchedTextGivesTheSameBytes) {
  const std::vector<std::string> pieces = {"A",    "\r",   "\n",   "\0"s,  "\xC3", "\xA9", "\xED",
                                           "\xA0", "\x80", "\xF0", "\x9F", "\xD8", "\xDC", "\xEF",
                                           "\xBB", "\xBF", "\xFE", "\xFF", "\x81"};
  for (const std::string& start : {""s, "\xEF\xBB\xBF"s, "\xFF\xFE"s, "\xFE\xFF"s, std::string(31, 'x')}) {
    ForEachSequence(pieces, start.size() == 2 ? 4 : 3, start, [](const std::string& bytes) {
      DecodedText decoded = DecodeText(bytes);
      ASSERT_EQ(EncodeText(decoded.text, decoded.format), bytes) << testing::PrintToString(bytes);
    });
  }
}

TEST(TextEncoding, WhatIsWrittenIsReadAsTheSameText) {
  const std::vector<std::string> pieces = {"A",      "\r\n",   "\0"s,    "\u00E9", "\u00C3",     "\u00A9",
                                           "\u00EF", "\u00BB", "\u00BF", "\u00FE", "\u00FF",     "\u20AC",
                                           "\u0081", "\u0416", "\uFEFF", "\uFFFE", "\U0001F600", "\U0010FFFF"};
  for (int number = 0; number < kTextEncodings; ++number) {
    const auto encoding = static_cast<TextEncoding>(number);
    const bool may_change = encoding == TextEncoding::CodePage || encoding >= TextEncoding::Utf16LeUnmarked;
    ForEachSequence(pieces, 3, "", [&](const std::string& text) {
      TextFormat format{encoding, {}};
      const std::string bytes = EncodeText(text, format);
      ASSERT_TRUE(format.encoding == encoding || may_change);
      ASSERT_EQ(DecodeText(bytes).text, text) << EncodingName(encoding) << testing::PrintToString(text);
    });
  }
}

TEST(CodePage, LongTextsOfAPageAreWhole) {
  constexpr int kCharacters = 2'100'000;
  std::string letters;
  for (int i = 0; i < kCharacters; ++i) letters += "\u00E9";
  EXPECT_EQ(BytesToUtf8(1252, std::string(kCharacters, '\xE9')), letters);
}

TEST(CodePage, IsABijection) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  EXPECT_EQ(Utf8ToCodePage(CodePageToUtf8(bytes)), bytes);
  EXPECT_EQ(CodePageToUtf8("\x80\x8D\x99\xE4"), "\u20AC\u008D\u2122\u00E4");
  EXPECT_EQ(Utf8ToCodePage("\u0080"), std::nullopt) << "its byte is taken by another character";
}

}  // namespace
}  // namespace tme
