#include "base/CaseFold.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include "base/CaseFoldTable.h"
#include "base/Utf8.h"

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

std::string FoldedCase(std::string_view text) {
  std::string folded;
  while (!text.empty()) {
    const char first = text.front();
    if (const std::optional<char32_t> character = utf8::TakeCharacter(text)) {
      std::array<char, utf8::kMaxCharacterBytes> bytes;
      folded.append(bytes.data(), utf8::PutCharacter(FoldCase(*character), bytes.data()));
    } else {
      folded += first;
      text.remove_prefix(1);
    }
  }
  return folded;
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
