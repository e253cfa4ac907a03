#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tme {

enum class SearchCase : std::uint8_t { Ignore, Match };
enum class SearchWords : std::uint8_t { Any, Whole };

/// In units of the text that was searched, within it; not empty.
struct TextMatch {
  std::size_t start;
  std::size_t end;
};

/// One search text, made ready to be looked for in large texts.
///
/// Case is ignored by simple case folding, one character for one, so "ß" is not "SS"; forms of a letter may differ in
/// bytes, and so may the match. A line feed in the search text matches any line end: CR LF, CR or LF. Bytes that are
/// no UTF-8 match themselves.
///
/// A whole word is a match that no word character stands beside: letters, digits and the underscore, and beyond ASCII
/// whatever is no punctuation, symbol or space.
class TextSearch {
 public:
  TextSearch(std::string_view wanted, SearchCase search_case, SearchWords words);

  /// The first match that lies in [from, to) of UTF-8 text; nothing for an empty search text. `to` may lie behind the
  /// text. What stands outside the range counts for whole words.
  std::optional<TextMatch> Find(std::string_view text, std::size_t from, std::size_t to) const;
  /// The same in UTF-16 text, positions in its units; U+2028 and U+2029 are line ends here. Converts the range once.
  std::optional<TextMatch> Find(std::u16string_view text, std::size_t from, std::size_t to) const;
  /// Appends all matches in UTF-8 text in their order, each behind the end of the one before, that start before `end`.
  void FindAll(std::string_view text, std::vector<TextMatch>& matches, std::size_t end = SIZE_MAX) const;

 private:
  /// One character of the search text: the byte strings that it may be, none of them the end or beginning of another
  /// but for line ends, where the longest comes first.
  using Forms = std::vector<std::string>;
  /// What a scan searches for: bytes in reach of each other in every match.
  struct Anchor;

  Anchor ChooseAnchor(std::string_view sample) const;
  std::optional<TextMatch> FindBy(const Anchor& anchor, std::string_view text, std::size_t from, std::size_t to) const;
  std::optional<TextMatch> MatchAround(std::string_view text, std::size_t from, std::size_t to, std::size_t index,
                                       std::size_t at) const;

  std::vector<Forms> characters_;
  SearchWords words_;
};

}  // namespace tme
