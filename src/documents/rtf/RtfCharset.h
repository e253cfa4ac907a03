#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfReader.h"

/// Bytes of a font to characters. Internal to the reader.
namespace tme::rtf {

inline constexpr int kSymbolPage = 42;         ///< the Symbol font
inline constexpr int kPrivateSymbolPage = 43;  ///< other symbol fonts: U+F000 and the byte
inline constexpr int kUtf8Page = 65001;

/// The page of a \fcharset; -1 for the document's own.
int CodePageOfCharset(int charset);
/// The page of a font that says no other: of its charset, but that the font "Symbol" has a page to itself.
int CodePageOfFont(int charset, std::string_view name);

/// Of the Symbol font; 0 when it has none there.
char32_t SymbolCharacter(unsigned char byte);

/// One code page; each byte of it is decoded once.
class CodePage {
 public:
  CodePage(int number, const DecodeCodePage& decode);

  /// Whether bytes below 80 are the characters of ASCII.
  bool HoldsAscii() const { return holds_ascii_; }

  bool IsSymbol() const { return number_ == kSymbolPage; }

  /// How many bytes the character takes that begins with `lead`.
  std::size_t Bytes(unsigned char lead) const;
  /// Whether `byte` can follow a first byte.
  bool IsTrail(unsigned char byte) const;

  /// UTF-8; U+FFFD when there is no such character. Good until the next call.
  std::string_view Single(unsigned char byte) const;
  std::string_view Several(std::string_view bytes);

 private:
  struct Entry {
    std::uint32_t key = 0;
    std::uint8_t size = 0;
    std::array<char, 11> text{};
  };
  static void Store(Entry& entry, std::string_view text);
  static std::string_view TextOf(const Entry& entry) { return {entry.text.data(), entry.size}; }

  int number_;
  bool holds_ascii_;
  const DecodeCodePage& decode_;
  std::array<Entry, 256> singles_;
  std::vector<Entry> several_;  ///< by a hash of their bytes; the last one of a place stays
};

class CodePages {
 public:
  /// `decode` must live as long as this.
  explicit CodePages(const DecodeCodePage& decode) : decode_(decode) {}

  /// Lives as long as this.
  CodePage& Get(int number);

 private:
  const DecodeCodePage& decode_;
  std::vector<std::pair<int, std::unique_ptr<CodePage>>> pages_;
};

}  // namespace tme::rtf
