#include "documents/search/WordCharacter.h"

#include <algorithm>
#include <array>

#include "base/CaseFold.h"

namespace tme {

bool IsWordCharacter(char32_t character) {
  struct Range {
    char32_t first, last;
  };
  // Punctuation, symbols and spaces; a combining mark belongs to its letter.
  static constexpr std::array kOthers{
      Range{0x80, 0xA9},       Range{0xAB, 0xB1},        Range{0xB4, 0xB4},     Range{0xB6, 0xB8},
      Range{0xBB, 0xBB},       Range{0xBF, 0xBF},        Range{0xD7, 0xD7},     Range{0xF7, 0xF7},
      Range{0x37E, 0x37E},     Range{0x387, 0x387},      Range{0x55A, 0x55F},   Range{0x589, 0x58F},
      Range{0x5BE, 0x5BE},     Range{0x5C0, 0x5C0},      Range{0x5C3, 0x5C3},   Range{0x5F3, 0x5F4},
      Range{0x600, 0x60F},     Range{0x61B, 0x61F},      Range{0x66A, 0x66D},   Range{0x6D4, 0x6D4},
      Range{0x964, 0x965},     Range{0xE3F, 0xE3F},      Range{0x1680, 0x1680}, Range{0x2000, 0x206F},
      Range{0x20A0, 0x20CF},   Range{0x2190, 0x245F},    Range{0x2500, 0x2BFF}, Range{0x2E00, 0x2E7F},
      Range{0x3000, 0x3004},   Range{0x3008, 0x3020},    Range{0x3030, 0x3030}, Range{0x30FB, 0x30FB},
      Range{0xE000, 0xF8FF},   Range{0xFE10, 0xFE1F},    Range{0xFE30, 0xFE32}, Range{0xFE35, 0xFE4C},
      Range{0xFE50, 0xFE6F},   Range{0xFEFF, 0xFEFF},    Range{0xFF00, 0xFF0F}, Range{0xFF1A, 0xFF20},
      Range{0xFF3B, 0xFF3E},   Range{0xFF40, 0xFF40},    Range{0xFF5B, 0xFF65}, Range{0xFFE0, 0xFFFF},
      Range{0x1F000, 0x1FAFF}, Range{0xE0000, 0x10FFFF},
  };
  if (character < 0x80) {
    return (character >= U'0' && character <= U'9') || (FoldCase(character) >= U'a' && FoldCase(character) <= U'z') ||
           character == U'_';
  }
  const auto range = std::ranges::lower_bound(kOthers, character, {}, &Range::last);
  return range == kOthers.end() || character < range->first;
}

}  // namespace tme
