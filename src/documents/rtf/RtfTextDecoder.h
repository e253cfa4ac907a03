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
  /// Where text stands in the file's bytes.
  struct Place {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool is_plain = false;    ///< the bytes are the text
    bool takes_next = false;  ///< it ends before its last byte or its fallback
  };
  class Sink {
   public:
    virtual void Text(std::string_view text, const Place& place) = 0;
    /// Stands for U+FFFD, where the code page or \u has no character.
    virtual void UnknownCharacter(const Place& place) = 0;
    /// What was passed over up to here belongs to the last character; more of it may come.
    virtual void FallbackPassed(std::size_t /*end*/, bool /*takes_next*/) {}

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
  /// Takes what comes next, up to here, for a part of a fallback; false when none is left to pass over.
  bool SkipFallback(std::size_t end);
  void EndFallback() { fallback_left_ = 0; }

 private:
  void Advance(std::size_t end);
  void ReadAscii(std::string_view text, CodePage& page);
  void ReadByte(unsigned char byte, CodePage& page);
  void ReadSymbol(unsigned char symbol, CodePage& page);
  void ReadUnicode(std::int32_t value, const TextEncoding& encoding);
  void PutDecoded(std::string_view text);
  void PutText(std::string_view text, bool is_plain = false);
  void PutUnknown();
  void FlushSurrogate();

  Sink& sink_;
  std::string pending_bytes_;       ///< of a character of several bytes
  std::size_t pending_end_ = 0;     ///< where these end
  char32_t pending_surrogate_ = 0;  ///< the high one of a pair; 0: none
  std::size_t surrogate_begin_ = 0;
  std::size_t surrogate_end_ = 0;
  int fallback_left_ = 0;
  std::size_t begin_ = 0;  ///< of the character, in the file
  std::size_t end_ = 0;    ///< of what was read of it
};

}  // namespace tme::rtf
