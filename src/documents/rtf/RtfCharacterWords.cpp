#include "documents/rtf/RtfCharacterWords.h"

#include <algorithm>
#include <array>

#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

constexpr std::string_view kToLeft = "\\rtlch\\fcs1";
constexpr std::string_view kToRight = "\\ltrch\\fcs0";

constexpr auto kOfOtherDirection =
    std::to_array<std::string_view>({"ab", "acaps", "acf", "adn", "aexpnd", "af", "afs", "ai", "alang", "aoutl",
                                     "ascaps", "ashad", "astrike", "aul", "auld", "auldb", "aulnone", "aulw", "aup"});

std::string_view NameOf(std::string_view word) {
  std::size_t end = 1;
  while (end < word.size() && IsLetter(word[end])) ++end;
  return word.substr(1, end - 1);
}

bool IsOfBorder(std::string_view word) { return word.starts_with("\\brdr") || word.starts_with("\\brsp"); }

/// Takes the first word, a border with all that it says.
std::string_view TakeWord(std::string_view& words) {
  const auto next = [&](std::size_t from) { return std::min(words.find('\\', from), words.size()); };
  std::size_t end = next(1);
  if (NameOf(words.substr(0, end)) == "chbrdr")
    while (end < words.size() && IsOfBorder(words.substr(end))) end = next(end + 1);
  const std::string_view word = words.substr(0, end);
  words.remove_prefix(end);
  return word;
}

std::string_view FindWord(std::string_view words, std::string_view name) {
  while (!words.empty())
    if (const std::string_view word = TakeWord(words); NameOf(word) == name) return word;
  return {};
}

bool AreNamesIn(std::string_view words, std::string_view others) {
  while (!words.empty())
    if (FindWord(others, NameOf(TakeWord(words))).empty()) return false;
  return true;
}

/// The words by their places.
struct Parts {
  std::string other_direction{};
  std::array<std::string, 3> fonts{};  ///< by FontClass
  std::string rest{};
  bool is_right_to_left = false;

  explicit Parts(std::string_view words) {
    is_right_to_left = words.starts_with(kToRight);
    if (is_right_to_left || words.starts_with(kToLeft)) {
      words.remove_prefix(kToLeft.size());
      const std::size_t end = std::min(words.find(is_right_to_left ? kToLeft : kToRight), words.size());
      other_direction = words.substr(0, end);
      words.remove_prefix(std::min(end + kToLeft.size(), words.size()));
    }
    while (TakeFont(words)) continue;
    rest = words;
  }

  std::string Joined() const {
    std::string words = Direction();
    for (const FontClass font_class : {FontClass::High, FontClass::Double, FontClass::Low})
      if (!FontOf(font_class).empty()) words.append(WordOf(font_class)).append(FontOf(font_class));
    return words.append(rest);
  }

  std::string Direction() const {
    if (!is_right_to_left && other_direction.empty()) return {};
    return std::string(is_right_to_left ? kToRight : kToLeft)
        .append(other_direction)
        .append(is_right_to_left ? kToLeft : kToRight);
  }

  void SetFont(std::string_view word, FontClass font_class, bool replaces) {
    std::string& font = fonts[static_cast<std::size_t>(font_class)];
    if (replaces || font.empty()) font = word;
  }
  const std::string& FontOf(FontClass font_class) const { return fonts[static_cast<std::size_t>(font_class)]; }

 private:
  bool TakeFont(std::string_view& words) {
    for (const FontClass font_class : {FontClass::High, FontClass::Double, FontClass::Low}) {
      std::string_view left = words;
      if (!left.starts_with(WordOf(font_class))) continue;
      left.remove_prefix(WordOf(font_class).size());
      const std::string_view font = left.empty() ? left : TakeWord(left);
      if (font.empty() || (NameOf(font) != "af" && NameOf(font) != "f")) return false;
      fonts[static_cast<std::size_t>(font_class)] = font;
      words = left;
      return true;
    }
    return false;
  }
};

/// Puts `word` in the place of the one called `name`, or behind all.
void Replace(std::string& words, std::string_view name, std::string_view word) {
  const std::string_view old = FindWord(words, name);
  const auto at = old.empty() ? words.size() : static_cast<std::size_t>(old.data() - words.data());
  // What a border says comes behind it.
  const bool goes_behind = name == "chbrdr" && !word.empty();
  words.replace(at, old.size(), goes_behind ? std::string_view() : word);
  if (goes_behind) words += word;
}

}  // namespace

std::string_view WordOf(FontClass font_class) {
  constexpr std::array<std::string_view, 3> kWords = {"\\loch", "\\hich", "\\dbch"};
  return kWords[static_cast<std::size_t>(font_class)];
}

std::string WithCharacterWord(std::string_view words, std::string_view word, std::string_view name, FontPlace place) {
  Parts parts(words);
  if (name == "rtlch" || name == "ltrch")
    parts.is_right_to_left = name == "rtlch";
  else if (place != FontPlace::OtherDirection)
    parts.SetFont(word, static_cast<FontClass>(static_cast<int>(place) - 1), name == "af");
  else if (std::ranges::find(kOfOtherDirection, name) != kOfOtherDirection.end())
    Replace(parts.other_direction, name, word);
  else if (IsOfBorder(word))
    parts.rest += word;
  else
    Replace(parts.rest, name, word);
  return parts.Joined();
}

std::string WithoutCharacterWord(std::string_view words, std::string_view name) {
  Parts parts(words);
  Replace(parts.rest, name, {});
  return parts.Joined();
}

bool NameFontOf(std::string_view words, FontClass font_class) { return !Parts(words).FontOf(font_class).empty(); }

bool AreCharacterWordsIn(std::string_view words, std::string_view others, FontClass font_class) {
  if (words.empty() || words == others) return true;
  const Parts one(words), other(others);
  for (std::size_t i = 0; i < one.fonts.size(); ++i)
    if (!one.fonts[i].empty() && other.fonts[i].empty() && i != static_cast<std::size_t>(font_class)) return false;
  return AreNamesIn(one.other_direction, other.other_direction) && AreNamesIn(one.rest, other.rest);
}

CharacterWordSteps CharacterWordsBetween(std::string_view from, std::string_view to, FontClass font_class,
                                         FontClass text_class) {
  const Parts one(from), other(to);
  CharacterWordSteps steps{.text_class = text_class};
  const std::string& own = other.FontOf(font_class);
  if (!own.empty()) steps.own_font.append(WordOf(font_class)).append(own);
  steps.is_own_font_new = !own.empty() && own != one.FontOf(font_class);
  steps.replaces_font = own.empty() && !one.FontOf(font_class).empty();
  if (one.other_direction != other.other_direction || one.is_right_to_left != other.is_right_to_left) {
    steps.words = other.Direction();
    if (steps.words.empty()) steps.words = kToRight;
    steps.text_class = FontClass::Low;
  }
  std::string_view rest = other.rest;
  while (!rest.empty()) {
    const std::string_view word = TakeWord(rest);
    if (FindWord(one.rest, NameOf(word)) != word) steps.words += word;
  }
  for (const FontClass each : {FontClass::High, FontClass::Double, FontClass::Low}) {
    if (each == font_class || other.FontOf(each) == one.FontOf(each) || other.FontOf(each).empty()) continue;
    steps.fonts.append(WordOf(each)).append(other.FontOf(each));
    steps.class_of_fonts = each;
  }
  return steps;
}

bool IsOfRevision(std::string_view words) {
  while (!words.empty()) {
    const std::string_view name = NameOf(TakeWord(words));
    if (name == "revised" || name == "deleted" || name.starts_with("revauth") || name.starts_with("revdttm") ||
        name == "crauth" || name == "crdate" || name.starts_with("mv"))
      return true;
  }
  return false;
}

}  // namespace tme::rtf
