#pragma once

#include <cstdint>
#include <string_view>

#include "base/Parts.h"

namespace tme::rtf {

/// How the characters of a font are numbered in the file.
enum class Alphabet : std::uint8_t {
  Unicode,
  Symbols,      ///< U+F020 to U+F0FF are the bytes 20 to FF
  GreekSymbol,  ///< the same, and the font is "Symbol", whose characters have Unicode numbers of their own
};

/// The file in the making: joins control words, groups and text, and hands them on in parts of about 64 KB.
class RtfOutput {
 public:
  /// sink: not owned.
  explicit RtfOutput(const PartSink& sink) : out_(sink) {}

  /// Control words with their backslashes.
  void Words(std::string_view controls);
  void Word(std::string_view control, std::int64_t number);
  /// Begins a group with control words.
  void Open(std::string_view controls = {}) {
    Syntax('{');
    Words(controls);
  }
  void Close() { Syntax('}'); }
  void LineEnd();
  /// How many bytes stand behind a \u for readers without it; 1 at first.
  void SetUnicodeSkip(std::size_t bytes) { unicode_skip_ = bytes; }
  /// UTF-8, escaped; invalid bytes as U+FFFD.
  void Text(std::string_view text, Alphabet alphabet = Alphabet::Unicode);
  /// Whole groups and control words as they came.
  void Kept(std::string_view groups);

  bool Stopped() const { return stopped_; }
  /// Hands on what is left. False when the sink stopped, now or before.
  bool Finish();

 private:
  void Syntax(char brace);
  void Delimit(char next);
  void Character(char32_t character, Alphabet alphabet);
  void CodeUnit(std::uint32_t unit, char fallback);
  void Byte(unsigned byte);
  void EndPiece() { stopped_ = stopped_ || !out_.EndPiece(); }

  PartBuffer out_;
  std::size_t unicode_skip_ = 1;
  bool after_word_ = false;  ///< text would run into the control word before it
  bool stopped_ = false;
};

}  // namespace tme::rtf
