#include "base/CaseFold.h"

#include <algorithm>
#include <iterator>

#include "base/CaseFoldTable.h"

namespace tme {
namespace {

bool Covers(const CaseFoldRange& range, char32_t character) {
  return character >= range.first && character <= range.last && (character - range.first) % range.step == 0;
}

}  // namespace

char32_t FoldCaseBeyondAscii(char32_t character) {
  const auto after = std::upper_bound(std::begin(kCaseFoldRanges), std::end(kCaseFoldRanges), character,
                                      [](char32_t value, const CaseFoldRange& range) { return value < range.first; });
  if (after == std::begin(kCaseFoldRanges)) return character;
  const CaseFoldRange& range = *std::prev(after);
  return Covers(range, character) ? character + static_cast<char32_t>(range.delta) : character;
}

std::u32string CaseForms(char32_t character) {
  const char32_t folded = FoldCase(character);
  std::u32string forms(1, folded);
  if (folded >= U'a' && folded <= U'z') forms.push_back(folded - 32);
  for (const CaseFoldRange& range : kCaseFoldRanges) {
    const char32_t form = folded - static_cast<char32_t>(range.delta);
    if (Covers(range, form)) forms += form;
  }
  return forms;
}

}  // namespace tme
