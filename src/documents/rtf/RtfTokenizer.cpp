#include "documents/rtf/RtfTokenizer.h"

#include <algorithm>
#include <array>
#include <limits>

namespace tme::rtf {
namespace {

enum class ByteClass : std::uint8_t { Text, High, Control, LineEnd, Syntax };

constexpr std::array<ByteClass, 256> kClasses = [] {
  std::array<ByteClass, 256> classes{};
  for (std::size_t i = 0; i < classes.size(); ++i) {
    classes[i] = i < 0x20 ? ByteClass::Control : i < 0x80 ? ByteClass::Text : ByteClass::High;
  }
  classes['\r'] = classes['\n'] = ByteClass::LineEnd;
  classes['\\'] = classes['{'] = classes['}'] = ByteClass::Syntax;
  return classes;
}();

ByteClass ClassOf(char c) { return kClasses[static_cast<unsigned char>(c)]; }

}  // namespace

int HexDigit(unsigned char character) {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return -1;
}

void Tokenizer::Next(Token& token) {
  Take(token);
  token.end = position_;
}

void Tokenizer::Take(Token& token) {
  const std::size_t size = bytes_.size();
  while (position_ < size && ClassOf(bytes_[position_]) == ByteClass::LineEnd) ++position_;
  token.begin = position_;
  if (position_ == size) {
    token.kind = TokenKind::End;
    return;
  }
  const char first = bytes_[position_];
  const ByteClass kind = ClassOf(first);
  if (kind == ByteClass::Text || kind == ByteClass::High) {
    std::size_t end = position_ + 1;
    while (end < size && ClassOf(bytes_[end]) == kind) ++end;
    token.kind = kind == ByteClass::Text ? TokenKind::Text : TokenKind::HighText;
    token.text = bytes_.substr(position_, end - position_);
    position_ = end;
    return;
  }
  ++position_;
  if (first == '\\') {
    TakeControl(token);
  } else if (kind == ByteClass::Control) {
    token.kind = TokenKind::Control;
    token.byte = static_cast<unsigned char>(first);
  } else {
    token.kind = first == '{' ? TokenKind::GroupStart : TokenKind::GroupEnd;
  }
}

// After the backslash.
void Tokenizer::TakeControl(Token& token) {
  const std::size_t size = bytes_.size();
  if (position_ == size) {
    cut_short_ = true;
    token.kind = TokenKind::End;
    return;
  }
  const char first = bytes_[position_];
  if (IsLetter(first)) {
    std::size_t end = position_ + 1;
    while (end < size && IsLetter(bytes_[end])) ++end;
    token.kind = TokenKind::Word;
    token.text = bytes_.substr(position_, end - position_);
    position_ = end;
    TakeNumber(token);
    if (position_ < size && bytes_[position_] == ' ') ++position_;
    if (token.text != "bin") return;
    token.kind = TokenKind::Binary;
    const auto wanted = static_cast<std::size_t>(std::max(token.value, 0));
    if (wanted > size - position_) cut_short_ = true;
    token.text = bytes_.substr(position_, wanted);
    position_ += token.text.size();
    return;
  }
  ++position_;
  token.byte = static_cast<unsigned char>(first);
  token.kind = TokenKind::Symbol;
  if (first == '\'') {
    if (size - position_ < 2) {
      cut_short_ = true;
      return;
    }
    const int high = HexDigit(static_cast<unsigned char>(bytes_[position_]));
    const int low = HexDigit(static_cast<unsigned char>(bytes_[position_ + 1]));
    if (high < 0 || low < 0) return;
    token.kind = TokenKind::Hex;
    token.byte = static_cast<unsigned char>(high * 16 + low);
    position_ += 2;
  } else if (first == '\r' && position_ < size && bytes_[position_] == '\n') {
    ++position_;
  }
}

void Tokenizer::TakeNumber(Token& token) {
  const std::size_t size = bytes_.size();
  token.has_value = false;
  token.value = 0;
  const bool negative = position_ + 1 < size && bytes_[position_] == '-' && IsDigit(bytes_[position_ + 1]);
  if (negative) ++position_;
  std::int64_t number = 0;
  constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
  for (; position_ < size && IsDigit(bytes_[position_]); ++position_) {
    number = std::min(number * 10 + (bytes_[position_] - '0'), kMax);
    token.has_value = true;
  }
  token.value = static_cast<std::int32_t>(negative ? -number : number);
}

void Tokenizer::TakeGroup(std::size_t begin, std::string* raw) {
  std::size_t depth = 1;
  std::size_t whole = position_;  // up to where no token is cut
  Token token;
  while (depth > 0) {
    const bool was_cut_short = cut_short_;
    Next(token);
    if (token.kind == TokenKind::End || (cut_short_ && !was_cut_short)) break;
    if (token.kind == TokenKind::GroupStart) ++depth;
    if (token.kind == TokenKind::GroupEnd) --depth;
    whole = position_;
  }
  if (depth > 0) {
    cut_short_ = true;
    position_ = bytes_.size();
  }
  if (raw == nullptr) return;
  raw->assign(bytes_.substr(begin, whole - begin));
  raw->append(depth, '}');
}

}  // namespace tme::rtf
