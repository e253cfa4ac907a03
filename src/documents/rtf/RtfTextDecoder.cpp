#include "documents/rtf/RtfTextDecoder.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Utf16.h"
#include "base/Utf8.h"

namespace tme::rtf {

void TextDecoder::Read(const Token& token, const TextEncoding& encoding) {
  end_ = token.begin;
  switch (token.kind) {
    case TokenKind::Text:
      return ReadAscii(token.text, *encoding.page);
    case TokenKind::HighText:
      for (const char byte : token.text) {
        Advance(end_ + 1);
        if (!SkipFallback(end_)) ReadByte(static_cast<unsigned char>(byte), *encoding.page);
      }
      return;
    case TokenKind::Hex:
      Advance(token.end);
      if (!SkipFallback(token.end)) ReadByte(token.byte, *encoding.page);
      return;
    case TokenKind::Symbol:
      Advance(token.end);
      if (!SkipFallback(token.end)) ReadSymbol(token.byte, *encoding.page);
      return;
    case TokenKind::Control:
      Advance(token.end);
      if (token.byte == '\t' && !SkipFallback(token.end)) Put('\t');
      return;
    case TokenKind::Binary:
      SkipFallback(token.end);
      return;
    default:
      return;
  }
}

void TextDecoder::ReadWord(const ControlWord& word, const Token& token, TextEncoding& encoding) {
  constexpr int kMaxUnicodeSkip = 255;
  end_ = token.begin;
  Advance(token.end);
  switch (word.control) {
    case Control::Character:
    case Control::Break:
      return Put(static_cast<char32_t>(word.value));
    case Control::Unicode:
      if (token.has_value) ReadUnicode(token.value, encoding);
      return;
    case Control::UnicodeSkip:
      encoding.unicode_skip =
          static_cast<std::uint8_t>(token.has_value ? std::clamp(token.value, 0, kMaxUnicodeSkip) : 1);
      return;
    default:
      return;
  }
}

/// What is read next is a part of a character that is not complete, or the whole of one.
void TextDecoder::Advance(std::size_t end) {
  if (pending_bytes_.empty() && pending_surrogate_ == 0) begin_ = end_;
  end_ = end;
}

bool TextDecoder::SkipFallback(std::size_t end) {
  if (fallback_left_ == 0) return false;
  --fallback_left_;
  surrogate_end_ = end;
  if (pending_surrogate_ == 0) sink_.FallbackPassed(end, fallback_left_ > 0);
  return true;
}

void TextDecoder::ReadAscii(std::string_view text, CodePage& page) {
  if (fallback_left_ > 0) {
    const std::size_t passed = std::min(text.size(), static_cast<std::size_t>(fallback_left_));
    text.remove_prefix(passed);
    fallback_left_ -= static_cast<int>(passed);
    end_ += passed;
    surrogate_end_ = end_;
    if (pending_surrogate_ == 0) sink_.FallbackPassed(end_, fallback_left_ > 0);
  }
  while (!pending_bytes_.empty() && !text.empty()) {
    Advance(end_ + 1);
    ReadByte(static_cast<unsigned char>(text.front()), page);
    text.remove_prefix(1);
  }
  if (text.empty()) return;
  if (page.HoldsAscii()) {
    FlushSurrogate();
    Advance(end_ + text.size());
    PutText(text, true);
    return;
  }
  for (const char byte : text) {
    Advance(end_ + 1);
    ReadByte(static_cast<unsigned char>(byte), page);
  }
}

void TextDecoder::ReadByte(unsigned char byte, CodePage& page) {
  if (!pending_bytes_.empty()) {
    if (page.IsTrail(byte)) {
      pending_bytes_.push_back(static_cast<char>(byte));
      pending_end_ = end_;
      if (pending_bytes_.size() < page.Bytes(static_cast<unsigned char>(pending_bytes_.front()))) return;
      const std::string bytes = std::exchange(pending_bytes_, {});
      PutDecoded(page.Several(bytes));
      return;
    }
    Flush();
  }
  if (page.Bytes(byte) > 1) {
    pending_bytes_.push_back(static_cast<char>(byte));
    pending_end_ = end_;
  } else {
    PutDecoded(page.Single(byte));
  }
}

void TextDecoder::ReadSymbol(unsigned char symbol, CodePage& page) {
  if (symbol == '\\' || symbol == '{' || symbol == '}') return ReadByte(symbol, page);
  Flush();
  if (symbol == '~') Put(0xA0);
  if (symbol == '-') Put(0xAD);
  if (symbol == '_') Put(0x2011);
  if (symbol == '\t') Put('\t');
}

void TextDecoder::ReadUnicode(std::int32_t value, const TextEncoding& encoding) {
  fallback_left_ = encoding.unicode_skip;
  auto character = static_cast<char32_t>(value < 0 ? value + 0x10000 : value);
  if (character > 0x10FFFF) character = 0xFFFD;
  // A symbol font's characters, as some write them.
  if (encoding.page->IsSymbol() && character >= 0xF020 && character <= 0xF0FF) {
    const char32_t symbol = SymbolCharacter(static_cast<unsigned char>(character & 0xFF));
    if (symbol != 0) character = symbol;
  }
  if (utf16::IsHighSurrogate(character)) {
    FlushSurrogate();
    pending_surrogate_ = character;
    surrogate_begin_ = begin_;
    surrogate_end_ = end_;
    return;
  }
  if (utf16::IsLowSurrogate(character)) {
    if (pending_surrogate_ == 0) return PutUnknown();
    character = utf16::Join(std::exchange(pending_surrogate_, 0), character);
  }
  // Line ends and page breaks have control words of their own; other controls are kept, as the text of a log has them.
  if (character < '\n' || character > '\r') Put(character);
}

void TextDecoder::Put(char32_t character) {
  std::array<char, utf8::kMaxCharacterBytes> bytes;
  PutText({bytes.data(), utf8::PutCharacter(character, bytes.data())});
}

void TextDecoder::Flush() {
  if (pending_bytes_.empty()) return;
  pending_bytes_.clear();
  FlushSurrogate();
  sink_.UnknownCharacter({begin_, pending_end_, false, true});
  begin_ = pending_end_;
}

void TextDecoder::PutDecoded(std::string_view text) {
  if (text == utf8::kReplacement) {
    PutUnknown();
  } else {
    PutText(text);
  }
}

void TextDecoder::PutText(std::string_view text, bool is_plain) {
  FlushSurrogate();
  sink_.Text(text, {begin_, end_, is_plain, fallback_left_ > 0});
}

void TextDecoder::PutUnknown() {
  FlushSurrogate();
  sink_.UnknownCharacter({begin_, end_, false, fallback_left_ > 0});
}

/// The other half did not come.
void TextDecoder::FlushSurrogate() {
  if (pending_surrogate_ == 0) return;
  pending_surrogate_ = 0;
  sink_.UnknownCharacter({surrogate_begin_, surrogate_end_});
  begin_ = std::max(begin_, surrogate_end_);
}

}  // namespace tme::rtf
