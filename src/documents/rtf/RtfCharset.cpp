#include "documents/rtf/RtfCharset.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/Utf8.h"
#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kSeveralPlaces = 4096;
constexpr std::size_t kMaxPages = 64;
constexpr int kLatinPage = 1252;

/// Bytes 20 to 7E, then A0 to FE.
constexpr std::array<char16_t, 95 * 2> kSymbol = {
    0x0020, 0x0021, 0x2200, 0x0023, 0x2203, 0x0025, 0x0026, 0x220B, 0x0028, 0x0029, 0x2217, 0x002B, 0x002C, 0x2212,
    0x002E, 0x002F, 0x0030, 0x0031, 0x0032, 0x0033, 0x0034, 0x0035, 0x0036, 0x0037, 0x0038, 0x0039, 0x003A, 0x003B,
    0x003C, 0x003D, 0x003E, 0x003F, 0x2245, 0x0391, 0x0392, 0x03A7, 0x0394, 0x0395, 0x03A6, 0x0393, 0x0397, 0x0399,
    0x03D1, 0x039A, 0x039B, 0x039C, 0x039D, 0x039F, 0x03A0, 0x0398, 0x03A1, 0x03A3, 0x03A4, 0x03A5, 0x03C2, 0x03A9,
    0x039E, 0x03A8, 0x0396, 0x005B, 0x2234, 0x005D, 0x22A5, 0x005F, 0x203E, 0x03B1, 0x03B2, 0x03C7, 0x03B4, 0x03B5,
    0x03C6, 0x03B3, 0x03B7, 0x03B9, 0x03D5, 0x03BA, 0x03BB, 0x03BC, 0x03BD, 0x03BF, 0x03C0, 0x03B8, 0x03C1, 0x03C3,
    0x03C4, 0x03C5, 0x03D6, 0x03C9, 0x03BE, 0x03C8, 0x03B6, 0x007B, 0x007C, 0x007D, 0x223C, 0x20AC, 0x03D2, 0x2032,
    0x2264, 0x2044, 0x221E, 0x0192, 0x2663, 0x2666, 0x2665, 0x2660, 0x2194, 0x2190, 0x2191, 0x2192, 0x2193, 0x00B0,
    0x00B1, 0x2033, 0x2265, 0x00D7, 0x221D, 0x2202, 0x2022, 0x00F7, 0x2260, 0x2261, 0x2248, 0x2026, 0x23D0, 0x23AF,
    0x21B5, 0x2135, 0x2111, 0x211C, 0x2118, 0x2297, 0x2295, 0x2205, 0x2229, 0x222A, 0x2283, 0x2287, 0x2284, 0x2282,
    0x2286, 0x2208, 0x2209, 0x2220, 0x2207, 0x00AE, 0x00A9, 0x2122, 0x220F, 0x221A, 0x22C5, 0x00AC, 0x2227, 0x2228,
    0x21D4, 0x21D0, 0x21D1, 0x21D2, 0x21D3, 0x25CA, 0x2329, 0x00AE, 0x00A9, 0x2122, 0x2211, 0x239B, 0x239C, 0x239D,
    0x23A1, 0x23A2, 0x23A3, 0x23A7, 0x23A8, 0x23A9, 0x23AA, 0xF8FF, 0x232A, 0x222B, 0x2320, 0x23AE, 0x2321, 0x239E,
    0x239F, 0x23A0, 0x23A4, 0x23A5, 0x23A6, 0x23AB, 0x23AC, 0x23AD,
};

struct CharsetPage {
  int charset;
  int page;
};
// The double-byte ones of the Macintosh are those of Windows but for a few signs.
constexpr CharsetPage kCharsetPages[] = {{0, 1252},   {77, 10000}, {78, 932},   {79, 949},   {80, 936},   {81, 950},
                                         {83, 10005}, {84, 10004}, {85, 10006}, {86, 10081}, {87, 874},   {88, 10029},
                                         {89, 10007}, {128, 932},  {129, 949},  {130, 1361}, {134, 936},  {136, 950},
                                         {161, 1253}, {162, 1254}, {163, 1258}, {177, 1255}, {178, 1256}, {186, 1257},
                                         {204, 1251}, {222, 874},  {238, 1250}, {254, 437},  {255, 850}};

/// Of a page of several bytes, or the Thai one, of the Macintosh.
int WindowsPageOf(int page) {
  constexpr std::pair<int, int> kPages[] = {{10001, 932}, {10002, 950}, {10003, 949}, {10008, 936}, {10021, 874}};
  const auto known = std::ranges::find(kPages, page, &std::pair<int, int>::first);
  return known != std::end(kPages) ? known->second : page;
}

bool IsDoubleByte(int page) { return page == 932 || page == 936 || page == 949 || page == 950 || page == 1361; }

std::uint32_t KeyOf(std::string_view bytes) {
  std::uint32_t key = 0;
  for (const char c : bytes) key = (key << 8) | static_cast<unsigned char>(c);
  return key;
}

}  // namespace

int CodePageOfCharset(int charset) {
  if (charset == kSymbolCharset) return kPrivateSymbolPage;
  const auto known = std::ranges::find(kCharsetPages, charset, &CharsetPage::charset);
  return known != std::end(kCharsetPages) ? known->page : -1;
}

int CodePageOfFont(int charset, std::string_view name) {
  const int page = CodePageOfCharset(charset);
  return name == "Symbol" && (page == -1 || page == kPrivateSymbolPage) ? kSymbolPage : page;
}

char32_t SymbolCharacter(unsigned char byte) {
  if (byte >= 0x20 && byte <= 0x7E) return kSymbol[byte - 0x20u];
  if (byte >= 0xA0 && byte <= 0xFE) return kSymbol[95 + byte - 0xA0u];
  return 0;
}

CodePage::CodePage(int number, const DecodeCodePage& decode)
    : number_(number), holds_ascii_(number != kSymbolPage && number != kPrivateSymbolPage), decode_(decode) {
  for (unsigned i = 0; i < singles_.size(); ++i) {
    const char byte = static_cast<char>(i);
    char32_t character = i == '\n' || i == '\v' || i == '\r' ? 0x2028 : i;
    if (number == kSymbolPage) {
      character = SymbolCharacter(static_cast<unsigned char>(i));
    } else if (number == kPrivateSymbolPage) {
      character = i < 0x20 ? 0 : 0xF000 + i;
    } else if (i >= 0x80) {
      const std::string text = number == kUtf8Page ? std::string() : decode(number, {&byte, 1});
      Store(singles_[i], Bytes(static_cast<unsigned char>(i)) == 1 && !text.empty() ? text : utf8::kReplacement);
      continue;
    }
    std::array<char, utf8::kMaxCharacterBytes> out;
    Store(singles_[i], character == 0 ? utf8::kReplacement
                                      : std::string_view(out.data(), utf8::PutCharacter(character, out.data())));
  }
  if (IsDoubleByte(number)) several_.resize(kSeveralPlaces);
}

std::size_t CodePage::Bytes(unsigned char lead) const {
  if (lead < 0x80) return 1;
  if (number_ == kUtf8Page) return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
  if (!IsDoubleByte(number_) || lead == 0x80 || lead == 0xFF) return 1;
  return number_ == 932 && ((lead >= 0xA0 && lead <= 0xDF) || lead > 0xFC) ? 1 : 2;
}

bool CodePage::IsTrail(unsigned char byte) const {
  if (number_ == kUtf8Page) return (byte & 0xC0) == 0x80;
  return byte >= (number_ == 1361 ? 0x31 : 0x40) && byte != 0x7F && byte != 0xFF;
}

std::string_view CodePage::Single(unsigned char byte) const { return TextOf(singles_[byte]); }

std::string_view CodePage::Several(std::string_view bytes) {
  if (number_ == kUtf8Page || several_.empty()) {
    return number_ == kUtf8Page && utf8::IsValid(bytes) ? bytes : utf8::kReplacement;
  }
  const std::uint32_t key = KeyOf(bytes);
  Entry& entry = several_[(key ^ (key >> 12)) % kSeveralPlaces];
  if (entry.key != key) {
    const std::string text = decode_(number_, bytes);
    // A pair that is none comes back as a replacement and whatever its second byte is.
    Store(entry, text.find(utf8::kReplacement) != std::string::npos ? utf8::kReplacement : std::string_view(text));
    entry.key = key;
  }
  return TextOf(entry);
}

void CodePage::Store(Entry& entry, std::string_view text) {
  if (text.size() > entry.text.size()) text = utf8::kReplacement;
  entry.size = static_cast<std::uint8_t>(text.size());
  std::copy(text.begin(), text.end(), entry.text.begin());
}

CodePage& CodePages::Get(int number) {
  number = WindowsPageOf(number);
  for (const auto& [known, page] : pages_) {
    if (known == number) return *page;
  }
  if (pages_.size() >= kMaxPages && number != kLatinPage) return Get(kLatinPage);
  return *pages_.emplace_back(number, std::make_unique<CodePage>(number, decode_)).second;
}

}  // namespace tme::rtf
