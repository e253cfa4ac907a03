#include "documents/rtf/RtfUnseen.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <utility>

#include "documents/rtf/RtfFieldInstruction.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

/// The word that says what a group is, a star before it left out.
std::string_view GroupName(std::string_view group) {
  Tokenizer tokens(group.substr(std::min<std::size_t>(1, group.size())));
  Token token;
  tokens.Next(token);
  if (token.kind == TokenKind::Symbol && token.byte == '*') tokens.Next(token);
  return token.kind == TokenKind::Word ? token.text : std::string_view();
}

/// The first group of a name anywhere in others; empty for none.
std::string FindUnseenGroup(std::string_view groups, std::string_view name) {
  Tokenizer tokens(groups);
  Token token;
  std::size_t begin = 0;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind == TokenKind::GroupStart) begin = token.begin;
    if (token.kind != TokenKind::Word || token.text != name) continue;
    std::string group;
    tokens.TakeGroup(begin, &group);
    return group;
  }
  return {};
}

struct UnseenGroup {
  std::string_view name;
  UnseenKind kind;
  PagesOf pages = PagesOf::All;
};
constexpr UnseenGroup kUnseenGroups[] = {
    {"annotation", UnseenKind::Comment},
    {"field", UnseenKind::Field},
    {"fldinst", UnseenKind::Field},
    {"header", UnseenKind::Header},
    {"headerf", UnseenKind::Header, PagesOf::First},
    {"headerl", UnseenKind::Header, PagesOf::Left},
    {"headerr", UnseenKind::Header, PagesOf::Right},
    {"footer", UnseenKind::Footer},
    {"footerf", UnseenKind::Footer, PagesOf::First},
    {"footerl", UnseenKind::Footer, PagesOf::Left},
    {"footerr", UnseenKind::Footer, PagesOf::Right},
};

/// Text that a drawing draws over the whole page.
std::string WatermarkIn(const std::string& group, GroupTexts& texts) {
  const std::size_t name = group.find("gtextUNICODE");
  if (name == std::string::npos) return {};
  return texts.TextOf(FindUnseenGroup(std::string_view(group).substr(name), "sv"));
}

PackedTime CommentTime(const std::string& comment, GroupTexts& texts) {
  const std::string text = texts.TextOf(FindUnseenGroup(comment, "atndate"));
  std::int64_t packed = 0;
  std::from_chars(text.data(), text.data() + text.size(), packed);
  return UnpackTime(static_cast<std::int32_t>(packed));
}

/// A field that shows nothing; none for one that is not meant to.
std::optional<Unseen> UnseenField(const std::string& group, GroupTexts& texts) {
  constexpr std::string_view kSilent[] = {"", "ADVANCE", "ASK", "BOOKMARK", "PRIVATE", "RD", "SET", "TA", "TC", "XE"};
  Unseen field{.kind = UnseenKind::Field, .text = texts.TextOf(FindUnseenGroup(group, "fldinst"))};
  std::string_view rest = field.text;
  const std::string word = FieldWord(rest);
  if (std::ranges::find(kSilent, word) != std::end(kSilent)) return std::nullopt;
  if (word == "EQ") field = {.kind = UnseenKind::Formula, .text = std::string(rest)};
  if (word.starts_with("FORM")) field.kind = UnseenKind::FormField;
  return field;
}

/// The date and the name of who wrote it stand before a comment or in it.
struct CommentFacts {
  std::string author, initials;

  void Read(std::string_view name, const std::string& group, GroupTexts& texts) {
    if (name == "atnauthor") author = texts.TextOf(group);
    if (name == "atnid") initials = texts.TextOf(group);
  }
};

Revision& EntryFor(RevisionKind kind, std::vector<Revision>& revisions) {
  const auto known = std::ranges::find(revisions, kind, &Revision::kind);
  if (known != revisions.end()) return *known;
  return revisions.emplace_back(Revision{.kind = kind, .author = -1});
}

}  // namespace

PackedTime UnpackTime(std::int32_t packed) {
  constexpr int kFirstYear = 1900, kMonths = 12;
  auto bits = static_cast<std::uint32_t>(packed);
  const auto take = [&bits](unsigned count) {
    const auto value = static_cast<int>(bits & ((1U << count) - 1));
    bits >>= count;
    return value;
  };
  PackedTime time;
  time.minute = take(6);
  time.hour = take(5);
  time.day = take(5);
  time.month = take(4);
  time.year = take(9) + kFirstYear;
  if (time.month > kMonths || time.day == 0) time.month = 0;
  return time;
}

std::vector<Unseen> UnseenIn(std::string_view groups, GroupTexts& texts) {
  std::vector<Unseen> list;
  CommentFacts facts;
  Tokenizer tokens(groups);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::GroupStart) continue;
    std::string group;
    tokens.TakeGroup(token.begin, &group);
    const std::string_view name = GroupName(group);
    facts.Read(name, group, texts);
    const auto known = std::ranges::find(kUnseenGroups, name, &UnseenGroup::name);
    if (known == std::end(kUnseenGroups)) continue;
    if (known->kind == UnseenKind::Field) {
      if (std::optional<Unseen> field = UnseenField(group, texts)) list.push_back(std::move(*field));
      continue;
    }
    Unseen& unseen = list.emplace_back(Unseen{.kind = known->kind, .pages = known->pages});
    unseen.text = texts.TextOf(group);
    if (known->kind == UnseenKind::Comment) {
      unseen.author = facts.author.empty() ? facts.initials : facts.author;
      unseen.time = CommentTime(group, texts);
      facts = {};
    } else {
      unseen.watermark = WatermarkIn(group, texts);
    }
  }
  return list;
}

std::vector<Revision> RevisionsIn(std::string_view words) {
  constexpr struct {
    std::string_view mark, author, time;
    RevisionKind kind;
  } kWords[] = {{"revised", "revauth", "revdttm", RevisionKind::Inserted},
                {"deleted", "revauthdel", "revdttmdel", RevisionKind::Deleted},
                {"mvf", "mvauth", "mvdate", RevisionKind::MovedFrom},
                {"mvt", "mvauth", "mvdate", RevisionKind::MovedTo},
                {"crauth", "crauth", "crdate", RevisionKind::Format},
                {"prauth", "prauth", "prdate", RevisionKind::Format}};
  std::vector<Revision> revisions;
  Tokenizer tokens(words);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::Word) continue;
    for (const auto& [mark, author, time, kind] : kWords)
      if (token.text == mark && (mark == author || token.IsOn())) EntryFor(kind, revisions);
  }
  if (revisions.empty()) return revisions;
  tokens.Seek(0);
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    for (const auto& [mark, author, time, kind] : kWords) {
      if (token.kind != TokenKind::Word || std::ranges::find(revisions, kind, &Revision::kind) == revisions.end())
        continue;
      if (token.text == author) EntryFor(kind, revisions).author = token.value;
      if (token.text == time) EntryFor(kind, revisions).time = UnpackTime(token.value);
    }
  }
  std::ranges::sort(revisions, {}, &Revision::kind);
  return revisions;
}

std::vector<std::string> AuthorsOf(const RtfDocument& document, GroupTexts& texts) {
  std::vector<std::string> authors;
  const std::string table = FindUnseenGroup(document.kept_header, "revtbl");
  Tokenizer tokens(table);
  Token token;
  tokens.Next(token);
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::GroupStart) continue;
    std::string group;
    tokens.TakeGroup(token.begin, &group);
    std::string name = texts.TextOf(group);
    if (name.ends_with(';')) name.pop_back();
    authors.push_back(std::move(name));
  }
  return authors;
}

}  // namespace tme::rtf
