#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "documents/rtf/RtfCharset.h"
#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {

/// How a group writes its text.
struct TextEncoding {
  CodePage* page = nullptr;
  std::uint8_t unicode_skip = 1;  ///< the N of \ucN: how many characters stand behind a \u for readers without it
};

/// Makes UTF-8 of the tokens that are text: bytes of a code page and \u with its fallback. Internal to the reader.
class TextDecoder {
 public:
  class Sink {
   public:
    virtual void Text(std::string_view text) = 0;
    /// Stands for U+FFFD, where the code page or \u has no character.
    virtual void UnknownCharacter() = 0;

   protected:
    ~Sink() = default;
  };

  /// `sink` outlives this.
  explicit TextDecoder(Sink& sink) : sink_(sink) {}

  /// Any token but words and groups. `\*` and the line ends that stand for \par are none of its business.
  void Read(const Token& token, const TextEncoding& encoding);
  /// A word that stands for a character, and \u and \uc; others are passed over.
  void ReadWord(const ControlWord& word, const Token& token, TextEncoding& encoding);
  void Put(char32_t character);

  /// Ends a character of several bytes that is not complete.
  void Flush();
  /// Takes what comes next for a part of a fallback; false when none is left to pass over.
  bool SkipFallback();
  void EndFallback() { fallback_left_ = 0; }

 private:
  void ReadAscii(std::string_view text, CodePage& page);
  void ReadByte(unsigned char byte, CodePage& page);
  void ReadSymbol(unsigned char symbol, CodePage& page);
  void ReadUnicode(std::int32_t value, const TextEncoding& encoding);
  void PutDecoded(std::string_view text);
  void PutText(std::string_view text);
  void PutUnknown();
  void FlushSurrogate();

  Sink& sink_;
  std::string pending_bytes_;       ///< of a character of several bytes
  char32_t pending_surrogate_ = 0;  ///< the high one of a pair; 0: none
  int fallback_left_ = 0;
};

}  // namespace tme::rtf
