#include "documents/rtf/RtfLists.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "base/Utf8.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kMaxLists = 10'000;

ListKind KindOfNumberFormat(std::int32_t format) {
  constexpr std::pair<std::int32_t, ListKind> kFormats[] = {{1, ListKind::UpperRoman},  {2, ListKind::LowerRoman},
                                                            {3, ListKind::UpperLetter}, {4, ListKind::LowerLetter},
                                                            {23, ListKind::Bullet},     {255, ListKind::None}};
  const auto known = std::ranges::find(kFormats, format, &std::pair<std::int32_t, ListKind>::first);
  return known != std::end(kFormats) ? known->second : ListKind::Decimal;
}

void ReadLevelWord(const Token& word, ListStyle& style) {
  if (word.text == "levelnfc" || word.text == "levelnfcn") style.kind = KindOfNumberFormat(word.value);
  if (word.text == "levelstartat") style.start = word.value;
}

/// Of the Symbol font, whose signs stand in the private use area or among the characters above ASCII.
constexpr std::uint32_t kSymbolSigns = 0xF000, kSymbolBullet = 0xB7, kAnsiBullet = 0x95, kFirstSurrogate = 0xD800;
constexpr std::size_t kMaxLevelText = 64;  // bytes
const std::string kNothing = "\u200B";

void AddSign(std::uint32_t sign, std::string& text) {
  constexpr std::pair<std::uint32_t, char32_t> kSigns[] = {
      {kSymbolBullet, U'\u2022'}, {0xA7, U'\u25AA'}, {0xD8, U'\u27A2'}, {0xFC, U'\u2713'},
      {0x76, U'\u2756'},          {0xA8, U'\u25FB'}, {0x6F, U'\u25CB'}, {0x2D, U'-'}};
  if (text.size() >= kMaxLevelText) return;
  const bool is_private = sign >= kSymbolSigns && sign <= kSymbolSigns + 0xFF;
  char32_t character = sign;
  if (is_private || sign == kSymbolBullet || (sign >= kFirstSurrogate && sign < kSymbolSigns)) {
    const auto known = std::ranges::find(kSigns, sign & 0xFF, &std::pair<std::uint32_t, char32_t>::first);
    character = is_private && known != std::end(kSigns) ? known->second : kSigns[0].second;
  }
  std::array<char, utf8::kMaxCharacterBytes> bytes{};
  text.append(bytes.data(), utf8::PutCharacter(character, bytes.data()));
}

/// The text of a group like {\pntxta )}, without its end.
std::string ReadPlainText(Tokenizer& tokens, Token& token) {
  std::string text;
  for (tokens.Next(token); token.kind != TokenKind::GroupEnd && token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind == TokenKind::Text) text.append(token.text, 0, kMaxLevelText - std::min(text.size(), kMaxLevelText));
    if (token.kind == TokenKind::Hex) AddSign(token.byte == kAnsiBullet ? kSymbolBullet : token.byte, text);
    if (token.kind != TokenKind::Word || token.text != "u") continue;
    AddSign(static_cast<std::uint32_t>(token.value) & 0xFFFF, text);
    if (tokens.Position() < tokens.Bytes().size()) tokens.Seek(tokens.Position() + 1);  // what stands for it
  }
  return text;
}

}  // namespace

void ReadLegacyNumbering(std::string_view group, ParagraphFormat& format) {
  format.list = ListKind::Decimal;
  format.list_start = 1;
  std::string before, after;
  Tokenizer tokens(group);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::Word) continue;
    const std::string_view name = token.text;
    if (name == "pnlvlblt") format.list = ListKind::Bullet;
    if (name == "pnlvlcont") format.list = ListKind::None;
    if (name == "pnlcltr") format.list = ListKind::LowerLetter;
    if (name == "pnucltr") format.list = ListKind::UpperLetter;
    if (name == "pnlcrm") format.list = ListKind::LowerRoman;
    if (name == "pnucrm") format.list = ListKind::UpperRoman;
    if (name == "pnstart") format.list_start = token.value;
    if (name == "pnlvl") format.list_level = static_cast<std::uint8_t>(std::clamp(token.value, 1, 9) - 1);
    if (name == "pntxtb") before = ReadPlainText(tokens, token);
    if (name == "pntxta") after = ReadPlainText(tokens, token);
  }
  if (format.list_id != 0) return;  // the tables say it
  const bool is_bullet = format.list == ListKind::Bullet;
  format.list_text.clear();
  if (is_bullet ? !before.empty() && before != "\u2022" : !before.empty() || after != ".")
    format.list_text = is_bullet ? before : before + static_cast<char>(format.list_level) + after;
}

ListKind ListKindOfText(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\n(");
  if (first == std::string_view::npos) return ListKind::None;
  const char c = text[first];
  const bool is_short = text.find_first_of(").", first) == first + 1;
  if (c >= '0' && c <= '9') return ListKind::Decimal;
  if (c >= 'a' && c <= 'z' && is_short) return ListKind::LowerLetter;
  if (c >= 'A' && c <= 'Z' && is_short) return ListKind::UpperLetter;
  return ListKind::Bullet;
}

bool ListTables::ReadLists(std::string_view group) {
  return ReadTable(group, {.entry = "list", .level = "listlevel", .number = "listid"}, lists_);
}

bool ListTables::ReadOverrides(std::string_view group) {
  return ReadTable(group, {.entry = "listoverride", .level = "lfolevel", .number = "ls"}, overrides_);
}

bool ListTables::ReadTable(std::string_view group, const TableWords& words, std::vector<List>& lists) {
  Tokenizer tokens(group);
  Token token;
  List list;
  std::size_t levels = 0;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::Word) continue;
    if (token.text == words.entry) {
      list = {};
      levels = 0;
    } else if (token.text == words.level) {
      ++levels;
    } else if (token.text == words.number) {
      list.id = token.value;
      if (lists.size() >= kMaxLists) return false;
      lists.push_back(list);
    } else if (token.text == "listid") {  // of the list that is overridden
      if (const List* found = FindIn(lists_, token.value)) list.levels = found->levels;
    } else if (token.text == "leveltext" && levels > 0 && levels <= kLevels) {
      list.levels[levels - 1].text = ReadLevelText(tokens, token);
    } else if (levels > 0 && levels <= kLevels) {
      ReadLevelWord(token, list.levels[levels - 1]);
    }
  }
  std::stable_sort(lists.begin(), lists.end(), [](const List& a, const List& b) { return a.id < b.id; });
  return true;
}

std::string ListTables::ReadLevelText(Tokenizer& tokens, Token& token) {
  std::string text;
  bool has_length = false;
  int fallback = 0;
  for (tokens.Next(token); token.kind != TokenKind::GroupEnd && token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind == TokenKind::Text) {
      const std::size_t skipped =
          std::min<std::size_t>(static_cast<std::size_t>(std::exchange(fallback, 0)), token.text.size());
      const std::string_view shown = token.text.substr(skipped);
      const std::size_t end = shown.find(';');
      text.append(shown.substr(0, std::min(end, kMaxLevelText - std::min(text.size(), kMaxLevelText))));
      if (end != std::string_view::npos) break;
    } else if (token.kind == TokenKind::Hex) {
      // The first one is the length.
      if (!std::exchange(has_length, true)) continue;
      if (std::exchange(fallback, 0) > 0) continue;
      if (token.byte < kLevels)
        text += static_cast<char>(token.byte);
      else
        AddSign(token.byte, text);
    } else if (token.kind == TokenKind::Word && token.text == "u") {
      AddSign(static_cast<std::uint32_t>(token.value) & 0xFFFF, text);
      fallback = 1;
    }
  }
  return text.empty() ? kNothing : text;
}

const ListTables::List* ListTables::FindIn(const std::vector<List>& lists, std::int32_t id) {
  const auto found = std::lower_bound(lists.begin(), lists.end(), id,
                                      [](const List& list, std::int32_t wanted) { return list.id < wanted; });
  return found != lists.end() && found->id == id ? &*found : nullptr;
}

ListStyle ListTables::Find(std::int32_t override_number, std::uint8_t level) const {
  const List* found = FindIn(overrides_, override_number);
  return found != nullptr && level < kLevels ? found->levels[level] : ListStyle{};
}

}  // namespace tme::rtf
