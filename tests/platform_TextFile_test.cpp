#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/TextFile.h"

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

TEST(TextFile, Decodes) {
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
  };
  for (const auto& [bytes, text, encoding, stray] : cases) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    const DecodedText decoded = DecodeText(bytes);
    EXPECT_EQ(decoded.text, text);
    EXPECT_EQ(EncodingName(decoded.format.encoding), EncodingName(encoding));
    EXPECT_EQ(decoded.format.stray_byte, stray);
  }
}

TEST(TextFile, UntouchedTextGivesTheSameBytes) {
  const std::vector<std::string> pieces = {"A",    "\r",   "\n",   "\0"s,  "\xC3", "\xA9", "\xED",
                                           "\xA0", "\x80", "\xF0", "\x9F", "\xD8", "\xDC", "\xEF",
                                           "\xBB", "\xBF", "\xFE", "\xFF", "\x81"};
  for (const std::string& start : {""s, "\xEF\xBB\xBF"s, "\xFF\xFE"s, "\xFE\xFF"s, std::string(31, 'x')}) {
    ForEachSequence(pieces, start.size() == 2 ? 4 : 3, start, [](const std::string& bytes) {
      const DecodedText decoded = DecodeText(bytes);
      ASSERT_EQ(EncodeText(decoded.text, decoded.format), bytes) << testing::PrintToString(bytes);
    });
  }
}

TEST(TextFile, WhatIsWrittenIsReadAsTheSameText) {
  const std::vector<std::string> pieces = {"A",      "\r\n",   "\0"s,    "\u00E9", "\u00C3",     "\u00A9",
                                           "\u00EF", "\u00BB", "\u00BF", "\u00FE", "\u00FF",     "\u20AC",
                                           "\u0081", "\u0416", "\uFEFF", "\uFFFE", "\U0001F600", "\U0010FFFF"};
  for (const TextEncoding encoding : {TextEncoding::CodePage, TextEncoding::Utf8, TextEncoding::Utf8Bom,
                                      TextEncoding::Utf16Le, TextEncoding::Utf16Be}) {
    ForEachSequence(pieces, 3, "", [encoding](const std::string& text) {
      const auto bytes = EncodeText(text, {encoding, {}});
      ASSERT_TRUE(bytes || encoding == TextEncoding::CodePage);
      ASSERT_EQ(bytes ? DecodeText(*bytes).text : text, text) << EncodingName(encoding) << testing::PrintToString(text);
    });
  }
}

}  // namespace
}  // namespace tme
