#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tme {

/// Stands in for a page that the system does not know.
inline constexpr unsigned kLatinPage = 1252;

/// One of the system's code pages of one or two bytes a character as a bijection: what a page maps twice, or only
/// roughly, counts as no text of it, and each byte that is no text stands for a character of its own, so that any bytes
/// come back as they were.
class CodePageTable {
 public:
  /// page: 1252 when the system does not have it, or when it is not a page of one or two bytes a character.
  explicit CodePageTable(unsigned page);

  std::string ToUtf8(std::string_view bytes) const;
  /// Returns null when a character has no byte, the text is not valid UTF-8 or the bytes would be read as another text.
  std::optional<std::string> FromUtf8(std::string_view text) const;

 private:
  void AddBytes(unsigned page);
  void AddPairs(unsigned page);

  std::array<char32_t, 256> single_{};  ///< 0: no character of its own
  std::array<bool, 256> leads_{};       ///< bytes that begin a pair
  std::vector<char16_t> pairs_;         ///< by lead byte and trail byte, 0 for none; empty in pages of single bytes
  std::vector<char16_t> codes_;         ///< by character: its byte or pair; 0 for none
};

/// Returns the system's page for texts without a mark. The process's is another: the manifest makes it UTF-8, which is
/// no bijection.
unsigned SystemCodePage();

}  // namespace tme
