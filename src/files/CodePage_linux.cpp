#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "base/Utf8.h"
#include "files/CodePage.h"
#include "files/MacCodePages_linux.h"
#include "files/TextEncoding.h"

namespace tme {
namespace {

constexpr unsigned kFirstSpecial = 0x80;

/// Bytes 80 to 9F; every other byte stands for the character of its own number.
constexpr std::array<char32_t, 32> kSpecial = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                               0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t CharacterOf(unsigned char byte) {
  const unsigned special = byte - kFirstSpecial;
  return byte >= kFirstSpecial && special < kSpecial.size() ? kSpecial[special] : byte;
}

std::optional<char> ByteOf(char32_t character) {
  if (character < kFirstSpecial || (character > 0x9F && character <= 0xFF)) return static_cast<char>(character);
  const auto found = std::find(kSpecial.begin(), kSpecial.end(), character);
  if (found == kSpecial.end()) return std::nullopt;
  return static_cast<char>(kFirstSpecial + static_cast<unsigned>(found - kSpecial.begin()));
}

constexpr int kLatinPage = 1252;

struct CloseConverter {
  using pointer = iconv_t;
  void operator()(iconv_t converter) const { iconv_close(converter); }
};
using Converter = std::unique_ptr<void, CloseConverter>;

/// Null when the system does not know the page.
Converter OpenConverter(int code_page) {
  std::array<std::string, 2> names{"CP" + std::to_string(code_page), "IBM" + std::to_string(code_page)};
  if (code_page == 10000) names[0] = "MACINTOSH";
  if (code_page == 10007) names[0] = "MAC-CYRILLIC";
  if (code_page == 10029) names[0] = "MAC-CENTRALEUROPE";
  if (code_page == 1361) names[0] = "JOHAB";
  if (code_page == 65001) names[0] = "UTF-8";
  for (const std::string& name : names) {
    iconv_t converter = iconv_open("UTF-8", name.c_str());
    if (reinterpret_cast<std::intptr_t>(converter) != -1) return Converter(converter);
  }
  return nullptr;
}

/// Those asked for are kept until the program ends. Null when not even 1252 is there.
iconv_t ConverterOf(int code_page) {
  static std::map<int, Converter> converters;
  auto found = converters.find(code_page);
  if (found == converters.end()) {
    Converter converter = OpenConverter(code_page);
    if (converter == nullptr) return code_page == kLatinPage ? nullptr : ConverterOf(kLatinPage);
    found = converters.emplace(code_page, std::move(converter)).first;
  }
  return found->second.get();
}

std::string DecodeWith(const std::array<char16_t, 128>& high_half, std::string_view bytes) {
  std::string text;
  std::array<char, utf8::kMaxCharacterBytes> character;
  for (const char each : bytes) {
    const auto byte = static_cast<unsigned char>(each);
    const char32_t value = byte < kFirstSpecial ? byte : high_half[byte - kFirstSpecial];
    text.append(character.data(), utf8::PutCharacter(value, character.data()));
  }
  return text;
}

}  // namespace

TextEncoding SystemUnicode() { return TextEncoding::Utf8; }

std::string BytesToUtf8(int code_page, std::string_view bytes) {
  if (const auto* const high_half = MacCodePage(code_page)) return DecodeWith(*high_half, bytes);
  static std::mutex one_at_a_time;  // a converter has a state
  const std::lock_guard lock(one_at_a_time);
  iconv_t converter = ConverterOf(code_page);
  std::string text;
  if (converter == nullptr) return CodePageToUtf8(bytes);
  text.reserve(bytes.size() * 2);
  std::array<char, 4096> part;
  iconv(converter, nullptr, nullptr, nullptr, nullptr);
  char* from = const_cast<char*>(bytes.data());  // iconv does not write to it
  std::size_t left = bytes.size();
  while (true) {
    char* to = part.data();
    std::size_t room = part.size();
    const std::size_t left_before = left;
    // Without more input, what the converter holds back (a letter that a combining mark could follow) is asked for.
    const std::size_t result = iconv(converter, left > 0 ? &from : nullptr, left > 0 ? &left : nullptr, &to, &room);
    const int error = errno;
    text.append(part.data(), part.size() - room);
    if (result != static_cast<std::size_t>(-1)) {
      if (left_before == 0) return text;
    } else if (error != E2BIG || (left == left_before && room == part.size())) {
      if (left == 0) return text;
      text += utf8::kReplacement;
      ++from;
      --left;
    }
  }
}

std::string CodePageToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  std::array<char, utf8::kMaxCharacterBytes> character;
  while (true) {
    const std::size_t run = utf8::AsciiRun(bytes);
    text.append(bytes.substr(0, run));
    bytes.remove_prefix(run);
    if (bytes.empty()) return text;
    const auto byte = static_cast<unsigned char>(bytes.front());
    text.append(character.data(), utf8::PutCharacter(CharacterOf(byte), character.data()));
    bytes.remove_prefix(1);
  }
}

bool IsCodePageUsual() { return false; }

std::optional<std::string> Utf8ToCodePage(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (true) {
    const std::size_t run = utf8::AsciiRun(text);
    bytes.append(text.substr(0, run));
    text.remove_prefix(run);
    if (text.empty()) return bytes;
    const auto character = utf8::TakeCharacter(text);
    const auto byte = character ? ByteOf(*character) : std::nullopt;
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
}

}  // namespace tme
