#include "documents/rtf/RtfHeaderTables.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

#include "documents/rtf/RtfLabel.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

/// By HeaderTable.
constexpr std::array<std::string_view, kHeaderTables> kTableWords = {"stylesheet", "listtable", "listoverridetable",
                                                                     "revtbl"};
constexpr std::array<std::string_view, kHeaderTables> kTableStarts = {"{\\stylesheet", "{\\*\\listtable",
                                                                      "{\\*\\listoverridetable", "{\\*\\revtbl"};

/// Which table a group is; behind its word.
std::optional<HeaderTable> TableOf(Tokenizer& tokens) {
  Token token;
  tokens.Next(token);
  if (token.kind == TokenKind::Symbol && token.byte == '*') tokens.Next(token);
  const auto* const found =
      token.kind == TokenKind::Word ? std::ranges::find(kTableWords, token.text) : kTableWords.end();
  if (found == kTableWords.end()) return std::nullopt;
  return static_cast<HeaderTable>(found - kTableWords.begin());
}

char KindOfStyle(std::string_view word) {
  constexpr std::pair<std::string_view, char> kKinds[] = {{"s", 's'}, {"cs", 'c'}, {"ds", 'd'}, {"ts", 't'}};
  const auto* const found = std::ranges::find(kKinds, word, &std::pair<std::string_view, char>::first);
  return found != std::end(kKinds) ? found->second : '\0';
}

void ReadWord(const Token& token, HeaderEntry& entry) {
  const bool is_style = entry.table == HeaderTable::Styles && entry.kind == 0;
  if (is_style && KindOfStyle(token.text) != 0) {
    entry.kind = KindOfStyle(token.text);
    entry.number = token.value;
  }
  if (token.text == "listid") (entry.table == HeaderTable::Lists ? entry.number : entry.list_id) = token.value;
  if (token.text == "ls" && entry.table == HeaderTable::Overrides) entry.number = token.value;
}

class EntryReader {
 public:
  EntryReader(const RtfDocument& document, const DecodeCodePage& decode)
      : document_(document), texts_(document, decode) {}

  std::vector<HeaderEntry> Read() {
    Tokenizer tokens(document_.kept_header);
    Token token;
    for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
      if (token.kind != TokenKind::GroupStart) continue;
      std::string group;
      tokens.TakeGroup(token.begin, &group);
      ReadTable(group);
    }
    for (const JoinedEntry& joined : document_.joined) {
      Add(joined.table, joined.rtf, 1);
      entries_.back().number = joined.number;
      entries_.back().has_joined = true;
      entries_.back().origin = joined.origin;
    }
    return std::move(entries_);
  }

 private:
  void ReadTable(std::string_view group) {
    Tokenizer tokens(group);
    tokens.Seek(1);
    const std::optional<HeaderTable> table = TableOf(tokens);
    if (!table) return;
    int unicode_skip = 1;
    Token token;
    for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
      if (token.kind == TokenKind::Word && token.text == "uc") unicode_skip = token.value;
      if (token.kind != TokenKind::GroupStart) continue;
      std::string entry;
      tokens.TakeGroup(token.begin, &entry);
      Add(*table, std::move(entry), unicode_skip);
    }
  }

  void Add(HeaderTable table, std::string rtf, int unicode_skip) {
    HeaderEntry entry{.table = table, .unicode_skip = unicode_skip, .rtf = std::move(rtf)};
    int depth = 0;
    Tokenizer tokens(entry.rtf);
    Token token;
    for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
      if (token.kind == TokenKind::GroupStart) ++depth;
      if (token.kind == TokenKind::GroupEnd) --depth;
      if (token.kind == TokenKind::Word && depth == 1) ReadWord(token, entry);
    }
    if (table == HeaderTable::Styles && entry.kind == 0) entry.kind = 's';
    if (table == HeaderTable::Authors) entry.number = authors_++;
    if (table == HeaderTable::Styles || table == HeaderTable::Authors) {
      entry.name = texts_.TextOf(entry.rtf);
      entry.name.resize(std::min(entry.name.find(';'), entry.name.size()));
    }
    entries_.push_back(std::move(entry));
  }

  const RtfDocument& document_;
  GroupTexts texts_;
  std::vector<HeaderEntry> entries_;
  std::int32_t authors_ = 0;
};

}  // namespace

std::vector<HeaderEntry> HeaderEntriesOf(const RtfDocument& document, const DecodeCodePage& decode) {
  return EntryReader(document, decode).Read();
}

std::string TextOfTable(HeaderTable table, std::span<const JoinedEntry* const> entries, TableText which) {
  std::string text;
  for (const JoinedEntry* entry : entries)
    if (entry->table == table) text += entry->rtf;
  if (text.empty() || which == TableText::Entries) return text;
  return std::string(kTableStarts[static_cast<std::size_t>(table)]).append(text).append("}");
}

std::string WithoutTableSkips(std::string header) {
  constexpr std::string_view kSkip = "\\uc";
  for (const std::string_view start : kTableStarts) {
    const std::size_t at = header.find(start);
    if (at == std::string::npos || header.compare(at + start.size(), kSkip.size(), kSkip) != 0) continue;
    std::size_t end = at + start.size() + kSkip.size();
    while (end < header.size() && IsDigit(header[end])) ++end;
    header.erase(at + start.size(), end - at - start.size());
  }
  return header;
}

std::string HeaderWith(const std::string& kept_header, std::size_t at, std::span<const JoinedEntry* const> entries) {
  if (entries.empty()) return kept_header;
  std::array<std::size_t, kHeaderTables> ends{};
  Tokenizer tokens(kept_header);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::GroupStart) continue;
    Tokenizer inside(kept_header);
    inside.Seek(token.end);
    const std::optional<HeaderTable> table = TableOf(inside);
    tokens.TakeGroup(token.begin, nullptr);
    if (table && ends[static_cast<std::size_t>(*table)] == 0)
      ends[static_cast<std::size_t>(*table)] = tokens.Position() - 1;
  }
  std::vector<std::pair<std::size_t, std::string>> added;
  for (std::size_t i = 0; i < kHeaderTables; ++i) {
    const TableText which = ends[i] > 0 ? TableText::Entries : TableText::Whole;
    added.emplace_back(ends[i] > 0 ? ends[i] : at, TextOfTable(static_cast<HeaderTable>(i), entries, which));
  }
  std::ranges::stable_sort(added, {}, &std::pair<std::size_t, std::string>::first);
  std::string header;
  std::size_t taken = 0;
  for (const auto& [place, text] : added) {
    header.append(kept_header, taken, place - taken).append(text);
    taken = place;
  }
  return header.append(kept_header, taken);
}

}  // namespace tme::rtf
