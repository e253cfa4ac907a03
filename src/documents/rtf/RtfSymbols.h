#pragma once

#include <cstdint>
#include <string_view>

/// Signs of symbol fonts, as characters that other fonts have. Internal to the reader.
namespace tme::rtf {

enum class SymbolFont : std::uint8_t { Unknown, Symbol, Wingdings };
SymbolFont SymbolFontOf(std::string_view name);

/// Files write the signs as these characters, whose last byte is that of the font.
inline constexpr char32_t kFirstPrivate = 0xF000, kLastPrivate = 0xF0FF;
inline constexpr char32_t kBullet = U'\u2022';

/// What a byte of a font shows as a bullet; of an unknown one as most files mean it. 0 when there is no such character.
char32_t BulletCharacter(SymbolFont font, unsigned char byte);

}  // namespace tme::rtf
