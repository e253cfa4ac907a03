#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "base/CaseFold.h"
#include "base/Utf8.h"
#include "documents/search/TextSearch.h"

using namespace tme;

namespace {

constexpr std::size_t kEnd = std::string::npos;

/// All matches in turn, each marked with brackets.
std::string Marked(std::string_view text, std::string_view wanted, SearchCase search_case = SearchCase::Ignore,
                   SearchWords words = SearchWords::Any) {
  const TextSearch search(wanted, search_case, words);
  std::string marked;
  std::size_t at = 0;
  while (const std::optional<TextMatch> match = search.Find(text, at, kEnd)) {
    marked.append(text.substr(at, match->start - at)).append("[");
    marked.append(text.substr(match->start, match->end - match->start)).append("]");
    at = match->end;
  }
  return marked.append(text.substr(at));
}

TEST(TextSearch, FindsWhatIsWantedAndNothingElse) {
  const struct {
    const char *text, *wanted, *marked;
    SearchCase search_case = SearchCase::Ignore;
    SearchWords words = SearchWords::Any;
  } cases[] = {
      {"abcabc", "ABC", "[abc][abc]"},
      {"abcABC", "ABC", "abc[ABC]", SearchCase::Match},
      {"abc", "", "abc"},
      {"ab", "abc", "ab"},
      // Forms of other lengths than the wanted one: Kelvin sign, long s, capital of U+2C65.
      {"\u212Ai\u017Fs Kiss", "kiss", "[\u212Ai\u017Fs] [Kiss]"},
      {"\u212A\u212Ak", "kk", "[\u212A\u212A]k"},
      {"\u023A\u2C65", "\u2C65\u023A", "[\u023A\u2C65]"},
      {"ÄÖÜ straße STRASSE ПРИВЕТ привет", "äöü", "[ÄÖÜ] straße STRASSE ПРИВЕТ привет"},
      {"straße STRASSE", "STRASSE", "straße [STRASSE]"},
      {"ПРИВЕТ привет", "Привет", "[ПРИВЕТ] [привет]"},
      {"Σίσυφος ΣΊΣΥΦΟΣ", "σίσυφοσ", "[Σίσυφος] [ΣΊΣΥΦΟΣ]"},
      {"a\r\nb a\nb a\rb a\n\nb", "a\nb", "[a\r\nb] [a\nb] [a\rb] a\n\nb"},
      {"\r\n\r\n\r", "\n\n", "[\r\n\r\n]\r"},
      {"x\xFFy \xC3", "\xFFy", "x[\xFFy] \xC3"},
      {"cat concat cat_ cat2 cät cat", "cat", "[cat] concat cat_ cat2 cät [cat]", SearchCase::Ignore,
       SearchWords::Whole},
      {"écat cat» «cat… “cat” 猫cat", "cat", "écat [cat]» «[cat]… “[cat]” 猫cat", SearchCase::Ignore,
       SearchWords::Whole},
      {"x-y -y", "-y", "x-y [-y]", SearchCase::Ignore, SearchWords::Whole},
  };
  for (const auto& c : cases) EXPECT_EQ(Marked(c.text, c.wanted, c.search_case, c.words), c.marked) << c.wanted;
}

TEST(TextSearch, StaysInItsRangeButSeesTheNeighbours) {
  const TextSearch any("aa", SearchCase::Match, SearchWords::Any);
  EXPECT_EQ(any.Find("aaaa", 1, 4)->start, 1u);
  EXPECT_FALSE(any.Find("aaaa", 1, 2));
  EXPECT_FALSE(any.Find("aaaa", 4, 4));
  EXPECT_FALSE(any.Find("aaaa", 9, 12));
  const TextSearch whole("aa", SearchCase::Match, SearchWords::Whole);
  EXPECT_FALSE(whole.Find("aaaa", 1, 3));
  EXPECT_EQ(whole.Find(" aa ", 1, 3)->end, 3u);
}

TEST(TextSearch, Utf16PositionsAreItsOwn) {
  const std::u16string text = u"😀é\u2029Kelvin \u212Aelvin\u2029Xkelvin";
  const TextSearch search("\nKELVIN", SearchCase::Ignore, SearchWords::Any);
  EXPECT_EQ(search.Find(text, 0, kEnd)->start, 3u);
  EXPECT_EQ(search.Find(text, 0, kEnd)->end, 10u);
  const TextSearch whole("kelvin", SearchCase::Ignore, SearchWords::Whole);
  EXPECT_EQ(whole.Find(text, 5, text.size())->start, 11u);
  EXPECT_FALSE(whole.Find(text, 12, text.size()));
  EXPECT_FALSE(whole.Find(u"\U00020000kelvin", 2, 8));
}

std::string Encoded(std::u32string_view characters) {
  std::string text;
  char bytes[utf8::kMaxCharacterBytes];
  for (const char32_t character : characters) text.append(bytes, utf8::PutCharacter(character, bytes));
  return text;
}

/// Letters with many forms, of several lengths, against a search that only folds.
TEST(TextSearch, AgreesWithANaiveSearch) {
  const std::u32string alphabet = U"kK\u212AsS\u017FaAθΘ\u03D1\u03F4\u1C84т_";
  std::mt19937 random(7);
  const auto make = [&](std::size_t size) {
    std::u32string text(size, U' ');
    for (char32_t& character : text) character = alphabet[random() % alphabet.size()];
    return text;
  };
  for (int round = 0; round < 3000; ++round) {
    const std::u32string text = make(random() % 120), wanted = make(1 + random() % 4);
    const auto at = std::search(text.begin(), text.end(), wanted.begin(), wanted.end(),
                                [](char32_t one, char32_t other) { return FoldCase(one) == FoldCase(other); });
    const auto match = TextSearch(Encoded(wanted), SearchCase::Ignore, SearchWords::Any).Find(Encoded(text), 0, kEnd);
    ASSERT_EQ(match.has_value(), at != text.end()) << Encoded(text);
    if (match) {
      ASSERT_EQ(match->start, Encoded({text.begin(), at}).size());
    }
  }
}

/// The scan looks for at most four values at a byte.
TEST(CaseFold, NoLetterHasMoreThanFourForms) {
  for (char32_t character = 0; character < 0x20000; ++character) {
    const std::u32string forms = CaseForms(character);
    ASSERT_LE(forms.size(), 4u) << std::uint32_t{character};
    ASSERT_NE(forms.find(character), std::u32string::npos) << std::uint32_t{character};
    for (const char32_t form : forms) ASSERT_EQ(FoldCase(form), FoldCase(character));
  }
}

}  // namespace
