#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The bytes of a rich-text file as tokens. Internal to the reader.
namespace tme::rtf {

enum class TokenKind : std::uint8_t {
  End,         ///< of the bytes
  GroupStart,  ///< {
  GroupEnd,    ///< }
  Word,        ///< \letters, with or without a number
  Symbol,      ///< \ and one other character
  Hex,         ///< \'hh
  Text,        ///< a run of printable ASCII
  HighText,    ///< a run of bytes above it
  Control,     ///< one byte below it; line ends are passed over
  Binary,      ///< \binN and its bytes
};

struct Token {
  TokenKind kind = TokenKind::End;
  bool has_value = false;
  unsigned char byte = 0;   ///< of Symbol, Hex and Control
  std::int32_t value = 0;   ///< of Word; what is out of range is the nearest
  std::size_t begin = 0;    ///< where it stands in the bytes
  std::size_t end = 0;      ///< behind the blank that ends a Word
  std::string_view text{};  ///< the bytes of Text, HighText and Binary; the letters of Word

  /// Whether a Word that can be switched off with the number 0 is on.
  bool IsOn() const { return !has_value || value != 0; }
  /// Whether a Symbol is a line end, which stands for \par.
  bool IsLineEnd() const { return byte == '\r' || byte == '\n'; }
};

class Tokenizer {
 public:
  explicit Tokenizer(std::string_view bytes) : bytes_(bytes) {}

  void Next(Token& token);

  std::size_t Position() const { return position_; }
  void Seek(std::size_t position) { position_ = position; }
  std::string_view Bytes() const { return bytes_; }

  /// Whether some token was cut by the end of the bytes.
  bool CutShort() const { return cut_short_; }

  /// Passes the rest of the group that it stands in, its end included; what was passed, from `begin` on, is `*raw` with
  /// the ends that are missing when the bytes end first. Null `raw`: only passes.
  void TakeGroup(std::size_t begin, std::string* raw);

 private:
  void Take(Token& token);
  void TakeControl(Token& token);
  void TakeNumber(Token& token);

  std::string_view bytes_;
  std::size_t position_ = 0;
  bool cut_short_ = false;
};

// Of ASCII.
constexpr bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
/// -1 when it is none.
int HexDigit(unsigned char character);

}  // namespace tme::rtf
