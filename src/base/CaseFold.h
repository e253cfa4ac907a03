#pragma once

#include <string>
#include <string_view>

/// Unicode's simple case folding: one character for one character, so that all forms of a letter become the same.
namespace tme {

/// character: 0x80 or above.
char32_t FoldCaseBeyondAscii(char32_t character);

inline char32_t FoldCase(char32_t character) {
  if (character < 0x80) return character >= U'A' && character <= U'Z' ? character + 32 : character;
  return FoldCaseBeyondAscii(character);
}

/// UTF-8 with each character folded; bytes that are no UTF-8 stay.
std::string FoldedCase(std::string_view text);

/// Returns every character that folds as this one does, itself included. They may differ in how many bytes they take:
/// "k" has the Kelvin sign, "s" the long s.
std::u32string CaseForms(char32_t character);

}  // namespace tme
