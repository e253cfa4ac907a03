#include "documents/rtf/RtfSymbols.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "documents/rtf/RtfCharset.h"

namespace tme::rtf {
namespace {

using Sign = std::pair<unsigned char, char32_t>;

// clang-format off
// In the order of their bytes.
constexpr auto kWingdings = std::to_array<Sign>({
    {0x22, U'\u2702'}, {0x28, U'\u260E'}, {0x2A, U'\u2709'}, {0x3F, U'\u270D'}, {0x41, U'\u270C'}, {0x45, U'\u261C'},
    {0x46, U'\u261E'}, {0x47, U'\u261D'}, {0x48, U'\u261F'}, {0x4A, U'\u263A'}, {0x4C, U'\u2639'}, {0x4E, U'\u2620'},
    {0x51, U'\u2708'}, {0x52, U'\u263C'}, {0x54, U'\u2744'}, {0x58, U'\u2720'}, {0x6C, U'\u25CF'}, {0x6D, U'\u274D'},
    {0x6E, U'\u25A0'}, {0x6F, U'\u25A1'}, {0x70, U'\u25A1'}, {0x71, U'\u2751'}, {0x72, U'\u2752'}, {0x73, U'\u25C6'},
    {0x74, U'\u25C6'}, {0x75, U'\u25C6'}, {0x76, U'\u2756'}, {0x77, U'\u25C6'}, {0x7B, U'\u2740'}, {0x7C, U'\u273F'},
    {0x81, U'\u2460'}, {0x82, U'\u2461'}, {0x83, U'\u2462'}, {0x84, U'\u2463'}, {0x85, U'\u2464'}, {0x86, U'\u2465'},
    {0x87, U'\u2466'}, {0x88, U'\u2467'}, {0x89, U'\u2468'}, {0x8A, U'\u2469'}, {0x8C, U'\u2776'}, {0x8D, U'\u2777'},
    {0x8E, U'\u2778'}, {0x8F, U'\u2779'}, {0x90, U'\u277A'}, {0x91, U'\u277B'}, {0x92, U'\u277C'}, {0x93, U'\u277D'},
    {0x94, U'\u277E'}, {0x95, U'\u277F'}, {0x9E, U'\u00B7'}, {0x9F, U'\u2022'}, {0xA0, U'\u25AA'}, {0xA1, U'\u25CB'},
    {0xA4, U'\u25C9'}, {0xA5, U'\u25CE'}, {0xA7, U'\u25AA'}, {0xA8, U'\u25FB'}, {0xAA, U'\u2726'}, {0xAB, U'\u2605'},
    {0xAC, U'\u2736'}, {0xAD, U'\u2734'}, {0xAE, U'\u2739'}, {0xAF, U'\u2735'}, {0xD8, U'\u27A2'}, {0xDC, U'\u27B2'},
    {0xDF, U'\u2190'}, {0xE0, U'\u2192'}, {0xE1, U'\u2191'}, {0xE2, U'\u2193'}, {0xE8, U'\u2794'}, {0xF0, U'\u21E8'},
    {0xFB, U'\u2717'}, {0xFC, U'\u2713'}, {0xFD, U'\u2612'}, {0xFE, U'\u2611'},
});
// clang-format on
static_assert(std::ranges::is_sorted(kWingdings, {}, &Sign::first));

}  // namespace

SymbolFont SymbolFontOf(std::string_view name) {
  if (name == "Symbol") return SymbolFont::Symbol;
  return name == "Wingdings" ? SymbolFont::Wingdings : SymbolFont::Unknown;
}

char32_t BulletCharacter(SymbolFont font, unsigned char byte) {
  constexpr unsigned char kBulletOfSymbols = 0xB7, kHyphen = '-';
  if (font == SymbolFont::Symbol) return SymbolCharacter(byte);
  if (font == SymbolFont::Unknown && byte == kBulletOfSymbols) return kBullet;
  if (font == SymbolFont::Unknown && byte == kHyphen) return byte;
  const auto known = std::ranges::lower_bound(kWingdings, byte, {}, &Sign::first);
  return known != kWingdings.end() && known->first == byte ? known->second : 0;
}

}  // namespace tme::rtf
