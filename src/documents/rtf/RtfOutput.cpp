#include "documents/rtf/RtfOutput.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <map>
#include <utility>

#include "base/Utf16.h"
#include "base/Utf8.h"
#include "documents/rtf/RtfCharset.h"

namespace tme::rtf {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kDigits = "0123456789abcdef";
constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Bytes that stand for themselves.
constexpr std::array<bool, 256> kPlain = [] {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0x20; byte < 0x7F; ++byte) plain[byte] = byte != '\\' && byte != '{' && byte != '}';
  return plain;
}();

/// Bytes that a control word before them would take in.
constexpr std::array<bool, 256> kRunsIntoWords = [] {
  std::array<bool, 256> bytes{};
  for (const char byte : std::string_view(" -0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"))
    bytes[static_cast<unsigned char>(byte)] = true;
  return bytes;
}();

std::size_t PlainRun(std::string_view text) {
  std::size_t run = 0;
  while (run < text.size() && kPlain[static_cast<unsigned char>(text[run])]) ++run;
  return run;
}

/// The byte of a symbol font that shows the character; 0 when it has none.
unsigned SymbolByte(char32_t character, Alphabet alphabet) {
  if (alphabet == Alphabet::Unicode) return 0;
  const bool is_numbered = character >= 0xF020 && character <= 0xF0FF;
  if (alphabet == Alphabet::Symbols) return is_numbered ? character & 0xFF : 0;
  if (is_numbered) return SymbolCharacter(static_cast<unsigned char>(character & 0xFF)) != 0 ? character & 0xFF : 0;
  static const std::map<char32_t, unsigned char> bytes = [] {
    std::map<char32_t, unsigned char> all;
    for (unsigned byte = 0x20; byte <= 0xFF; ++byte)
      all.emplace(SymbolCharacter(static_cast<unsigned char>(byte)), static_cast<unsigned char>(byte));
    all.erase(0);
    return all;
  }();
  const auto found = bytes.find(character);
  return found != bytes.end() ? found->second : 0;
}

/// Base letters of U+00C0 to U+017F.
constexpr std::string_view kLetters =
    "AAAAAAACEEEEIIIIDNOOOOOxOUUUUYTsaaaaaaaceeeeiiiidnooooo/ouuuuyty"
    "AaAaAaCcCcCcCcDdDdEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIiIiJjKkkLlLlLlLlLlNnNnNnnNnOoOoOoOoRrRrRrSsSsSsSsTtTtTtUuUuUuUuUu"
    "Uu"
    "WwYyYZzZzZzs";
static_assert(kLetters.size() == 0x180 - 0xC0);

/// What a reader without Unicode shows.
char FallbackOf(char32_t character) {
  if (character < 0x80 && kPlain[character]) return static_cast<char>(character);
  if (character >= 0xC0 && character < 0x180) return kLetters[character - 0xC0];
  if (character >= 0x2000 && character <= 0x200A) return ' ';
  if (character >= 0x2010 && character <= 0x2015) return '-';
  if (character == 0x2032) return '\'';
  if (character == 0x2026) return '.';
  return '?';
}

/// Characters that have a control of their own; empty for others.
std::string_view ControlOf(char32_t character) {
  using Control = std::pair<char32_t, std::string_view>;
  static constexpr Control kControls[] = {
      // by character
      {U'\t', "\\tab"},        {U'\n', "\\line"},    {U'\v', "\\line"},    {U'\f', "\\page"},
      {U'\r', "\\line"},       {U'\\', "\\\\"},      {U'{', "\\{"},        {U'}', "\\}"},
      {0xA0, "\\~"},           {0xAD, "\\-"},        {0x2011, "\\_"},      {0x2013, "\\endash"},
      {0x2014, "\\emdash"},    {0x2018, "\\lquote"}, {0x2019, "\\rquote"}, {0x201C, "\\ldblquote"},
      {0x201D, "\\rdblquote"}, {0x2022, "\\bullet"}, {0x2028, "\\line"}};
  const auto found = std::ranges::lower_bound(kControls, character, {}, &Control::first);
  return found != std::end(kControls) && found->first == character ? found->second : std::string_view();
}

}  // namespace

void RtfOutput::Words(std::string_view controls) {
  if (controls.empty()) return;
  out_.Append(controls);
  after_word_ = controls.back() != '}';
}

void RtfOutput::Word(std::string_view control, std::int64_t number) {
  std::array<char, 24> digits;
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
  out_.Append(control).Append({digits.data(), static_cast<std::size_t>(result.ptr - digits.data())});
  after_word_ = true;
}

void RtfOutput::Syntax(char brace) {
  out_.Append({&brace, 1});
  after_word_ = false;
  EndPiece();
}

void RtfOutput::LineEnd() {
  out_.Append(kLineEnd);
  after_word_ = false;
  EndPiece();
}

void RtfOutput::Delimit(char next) {
  if (after_word_ && kRunsIntoWords[static_cast<unsigned char>(next)]) out_.Append(" ");
  after_word_ = false;
}

void RtfOutput::Text(std::string_view text, Alphabet alphabet) {
  while (!text.empty()) {
    const std::size_t run = alphabet == Alphabet::Unicode ? PlainRun(text.substr(0, PartBuffer::kPartBytes)) : 0;
    if (run > 0) {
      Delimit(text.front());
      out_.Append(text.substr(0, run));
      text.remove_prefix(run);
    } else if (const auto character = utf8::TakeCharacter(text)) {
      Character(*character, alphabet);
    } else {
      text.remove_prefix(1);
      Character(kReplacementCharacter, alphabet);
    }
    EndPiece();
  }
}

void RtfOutput::Character(char32_t character, Alphabet alphabet) {
  if (const unsigned byte = SymbolByte(character, alphabet); byte != 0) return Byte(byte);
  // A brace or backslash of its own is one more byte of the font.
  const bool is_escaped = character == U'\\' || character == U'{' || character == U'}';
  if (is_escaped && alphabet != Alphabet::Unicode) return CodeUnit(character, '?');
  if (const std::string_view control = ControlOf(character); !control.empty()) {
    out_.Append(control);
    after_word_ = control.size() > 2;
    return;
  }
  if (character < utf16::kFirstSupplementary) return CodeUnit(character, FallbackOf(character));
  CodeUnit(utf16::HighSurrogateOf(character), '?');
  CodeUnit(utf16::LowSurrogateOf(character), '?');
}

/// As the signed 16-bit number that the format wants.
void RtfOutput::CodeUnit(std::uint32_t unit, char fallback) {
  Word("\\u", unit < 0x8000 ? static_cast<std::int64_t>(unit) : static_cast<std::int64_t>(unit) - 0x10000);
  for (std::size_t i = 0; i < unicode_skip_; ++i) {
    Delimit(fallback);
    out_.Append({&fallback, 1});
    after_word_ = false;
    fallback = '?';
  }
}

void RtfOutput::Byte(unsigned byte) {
  out_.Append("\\'").Append(kDigits.substr(byte / 16, 1)).Append(kDigits.substr(byte % 16, 1));
  after_word_ = false;
}

void RtfOutput::Kept(std::string_view groups) {
  if (groups.empty()) return;
  Delimit(groups.front());
  after_word_ = groups.back() != '}';
  for (; !groups.empty(); groups.remove_prefix(std::min(groups.size(), PartBuffer::kPartBytes))) {
    out_.Append(groups.substr(0, PartBuffer::kPartBytes));
    EndPiece();
  }
}

bool RtfOutput::Finish() {
  stopped_ = stopped_ || !out_.Flush();
  return !stopped_;
}

}  // namespace tme::rtf
