#include "documents/rtf/RtfNames.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "documents/rtf/RtfPatch.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

using N = RtfName;

// clang-format off
constexpr std::pair<std::string_view, RtfName> kNames[] = {
    // by word
    {"af", N::Font}, {"brdrcf", N::Color}, {"cb", N::Color}, {"cbpat", N::Color}, {"cf", N::Color},
    {"cfpat", N::Color}, {"chcbpat", N::Color}, {"chcfpat", N::Color}, {"clcbpat", N::Color},
    {"clcbpatraw", N::Color}, {"clcfpat", N::Color}, {"clcfpatraw", N::Color}, {"crauth", N::Author},
    {"cs", N::Style}, {"ds", N::Style}, {"f", N::Font}, {"highlight", N::Color}, {"levelpicture", N::ListPicture},
    {"listid", N::ListId}, {"ls", N::List}, {"pnf", N::Font}, {"prauth", N::Author}, {"revauth", N::Author},
    {"revauthdel", N::Author}, {"s", N::Style}, {"sbasedon", N::Style}, {"slink", N::Style}, {"snext", N::Style},
    {"srauth", N::Author}, {"trauth", N::Author}, {"trcbpat", N::Color}, {"trcfpat", N::Color}, {"ts", N::Style},
    {"ulc", N::Color}, {"yts", N::Style}};
// clang-format on

std::optional<RtfNamed> NamedBy(const Token& token) {
  if (token.kind != TokenKind::Word || !token.has_value) return std::nullopt;
  const auto* const found =
      std::ranges::lower_bound(kNames, token.text, {}, &std::pair<std::string_view, RtfName>::first);
  if (found == std::end(kNames) || found->first != token.text) return std::nullopt;
  return RtfNamed{found->second, token.value};
}

/// Whether a group has characters by their numbers.
bool HasUnicode(std::string_view group) {
  for (std::size_t at = group.find("\\u"); at != std::string_view::npos; at = group.find("\\u", at + 1))
    if (at + 2 < group.size() && (IsDigit(group[at + 2]) || group[at + 2] == '-')) return true;
  return false;
}

}  // namespace

void ForEachName(std::string_view rtf, const std::function<void(const RtfNamed&)>& take) {
  Tokenizer tokens(rtf);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token))
    if (const std::optional<RtfNamed> named = NamedBy(token)) take(*named);
}

std::string WithNames(std::string_view rtf, const MapName& map) {
  Patch patch(rtf);
  Tokenizer tokens(rtf);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    const std::optional<RtfNamed> named = NamedBy(token);
    if (!named) continue;
    const std::optional<std::int32_t> number = map(*named);
    if (number == named->number) continue;
    std::string word;
    if (number) word.append("\\").append(token.text).append(std::to_string(*number));
    if (number && rtf[token.end - 1] == ' ') word += ' ';
    patch.Replace(static_cast<std::uint32_t>(token.begin), static_cast<std::uint32_t>(token.end), word);
  }
  return patch.Count() > 0 ? patch.Result() : std::string(rtf);
}

void SayUnicodeSkip(std::string& group, int skip) {
  if (!HasUnicode(group)) return;
  const auto pass_line_ends = [&](std::size_t from) {
    return std::min(group.find_first_not_of("\r\n", from), group.size() - 1);
  };
  std::size_t word = pass_line_ends(1);
  if (group.compare(word, 2, "\\*") == 0) word = pass_line_ends(word + 2);
  std::size_t at = word + 1;
  while (at < group.size() && IsLetter(group[at])) ++at;
  const bool has_word = group[word] == '\\' && at > word + 1;
  while (has_word && at < group.size() && (IsDigit(group[at]) || group[at] == '-')) ++at;
  std::string said = "\\uc" + std::to_string(skip);
  if (!has_word) at = 1;
  if (!has_word && word < group.size() && (IsLetter(group[word]) || IsDigit(group[word]) || group[word] == ' '))
    said += ' ';
  group.insert(at, said);
}

}  // namespace tme::rtf
