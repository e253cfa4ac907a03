#include "documents/rtf/RtfLists.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

#include "base/Utf8.h"
#include "documents/rtf/RtfSymbols.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kMaxLists = 10'000;

ListKind KindOfNumberFormat(std::int32_t format) {
  constexpr std::pair<std::int32_t, ListKind> kFormats[] = {
      {1, ListKind::UpperRoman}, {2, ListKind::LowerRoman}, {3, ListKind::UpperLetter},  {4, ListKind::LowerLetter},
      {5, ListKind::Ordinal},    {6, ListKind::Words},      {7, ListKind::OrdinalWords}, {22, ListKind::Padded},
      {23, ListKind::Bullet},    {255, ListKind::None}};
  const auto known = std::ranges::find(kFormats, format, &std::pair<std::int32_t, ListKind>::first);
  return known != std::end(kFormats) ? known->second : ListKind::Decimal;
}

void ReadLevelWord(const Token& word, ListStyle& style) {
  constexpr std::int32_t kLastSide = 2;
  const std::string_view name = word.text;
  if (name == "levelnfc" || name == "levelnfcn") style.kind = KindOfNumberFormat(word.value);
  if (name == "levelstartat") style.start = word.value;
  if (name == "listoverridestartat") style.has_own_start = word.IsOn();
  if (name == "levellegal") style.is_legal = word.IsOn();
  if (name == "levelnorestart") style.goes_on = word.IsOn();
  if ((name == "leveljc" || name == "leveljcn") && word.value >= 0 && word.value <= kLastSide)
    style.side = static_cast<ListStyle::Side>(word.value);
}

constexpr std::uint32_t kSymbolBullet = 0xB7, kAnsiBullet = 0x95, kFirstSurrogate = 0xD800, kLastByte = 0xFF;
constexpr std::size_t kMaxLevelText = 64;  // bytes
const std::string kNothing = "\u200B";

void AddCharacter(char32_t character, std::string& text) {
  if (text.size() >= kMaxLevelText) return;
  std::array<char, utf8::kMaxCharacterBytes> bytes{};
  text.append(bytes.data(), utf8::PutCharacter(character, bytes.data()));
}

/// A bullet of a font that is not said: a bullet, where it is none of Unicode.
void AddSign(std::uint32_t sign, std::string& text) {
  const bool is_private = sign >= kFirstPrivate && sign <= kLastPrivate;
  const char32_t known = is_private ? BulletCharacter(SymbolFont::Unknown, static_cast<unsigned char>(sign)) : 0;
  const bool is_unknown = is_private || sign == kSymbolBullet || (sign >= kFirstSurrogate && sign < kFirstPrivate);
  AddCharacter(known != 0 ? known : is_unknown ? kBullet : sign, text);
}

/// The text of a level, whose signs are those of a font.
std::string InFont(const std::string& text, SymbolFont font) {
  std::string shown;
  std::string_view rest = text;
  while (const std::optional<char32_t> character = utf8::TakeCharacter(rest)) {
    const bool is_symbol = (*character >= kFirstPrivate && *character <= kLastPrivate) ||
                           (font != SymbolFont::Unknown && *character > ' ' && *character <= kLastByte);
    const char32_t known = is_symbol ? BulletCharacter(font, static_cast<unsigned char>(*character & kLastByte)) : 0;
    AddSign(known != 0 ? known : *character, shown);
  }
  return shown;
}

/// The text of a group like {\pntxta )}, without its end.
std::string ReadPlainText(Tokenizer& tokens, Token& token) {
  std::string text;
  for (tokens.Next(token); token.kind != TokenKind::GroupEnd && token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind == TokenKind::Text) text.append(token.text, 0, kMaxLevelText - std::min(text.size(), kMaxLevelText));
    if (token.kind == TokenKind::Hex) {
      const bool is_bullet = token.byte == kAnsiBullet || token.byte == kSymbolBullet;
      AddCharacter(is_bullet ? kFirstPrivate + kSymbolBullet : token.byte, text);
    }
    if (token.kind != TokenKind::Word || token.text != "u") continue;
    AddCharacter(static_cast<std::uint32_t>(token.value) & 0xFFFF, text);
    if (tokens.Position() < tokens.Bytes().size()) tokens.Seek(tokens.Position() + 1);  // what stands for it
  }
  return text;
}

}  // namespace

void ReadLegacyNumbering(std::string_view group, const FontTable& fonts, ParagraphFormat& format) {
  format.list = ListKind::Decimal;
  format.list_start = 1;
  std::string before, after;
  SymbolFont font = SymbolFont::Unknown;
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
    if (name == "pnord") format.list = ListKind::Ordinal;
    if (name == "pncard") format.list = ListKind::Words;
    if (name == "pnordt") format.list = ListKind::OrdinalWords;
    if (name == "pnf") font = fonts.SymbolsOf(token.value);
    if (name == "pnstart") format.list_start = token.value;
    if (name == "pnlvl") format.list_level = static_cast<std::uint8_t>(std::clamp(token.value, 1, 9) - 1);
    if (name == "pntxtb") before = ReadPlainText(tokens, token);
    if (name == "pntxta") after = ReadPlainText(tokens, token);
  }
  if (format.list_id != 0) return;  // the tables say it
  const bool is_bullet = format.list == ListKind::Bullet;
  if (is_bullet) before = InFont(before, font);
  format.list_text.clear();
  if (is_bullet ? !before.empty() && before != "\u2022" : !before.empty() || after != ".")
    format.list_text = is_bullet ? before : before + static_cast<char>(format.list_level) + after;
}

bool ListTables::ReadLists(std::string_view group, const FontTable* fonts) {
  return ReadTable(group, {.entry = "list", .level = "listlevel", .number = "listid"}, fonts, lists_);
}

bool ListTables::ReadOverrides(std::string_view group, const FontTable* fonts) {
  return ReadTable(group, {.entry = "listoverride", .level = "lfolevel", .number = "ls"}, fonts, overrides_);
}

bool ListTables::ReadTable(std::string_view group, const TableWords& words, const FontTable* fonts,
                           std::vector<List>& lists) {
  Tokenizer tokens(group);
  Token token;
  List list;
  std::size_t levels = 0;
  SymbolFont font = SymbolFont::Unknown;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::Word) continue;
    ListStyle* const style = levels > 0 && levels <= kLevels ? &list.levels[levels - 1] : nullptr;
    if (token.text == words.entry) {
      list = {};
      levels = 0;
    } else if (token.text == words.level) {
      if (style != nullptr) style->text = InFont(style->text, font);
      font = SymbolFont::Unknown;
      ++levels;
    } else if (token.text == words.number) {
      if (style != nullptr) style->text = InFont(style->text, font);
      list.id = token.value;
      if (words.number == "listid") list.counter = token.value;
      if (lists.size() >= kMaxLists) return false;
      lists.push_back(list);
    } else if (token.text == "listid") {  // of the list that is overridden
      list.counter = token.value;
      if (const List* found = FindIn(lists_, token.value)) list.levels = found->levels;
    } else if (token.text == "leveltext" && style != nullptr) {
      style->text = ReadLevelText(tokens, token);
    } else if (token.text == "f" && style != nullptr && style->kind == ListKind::Bullet) {
      font = fonts != nullptr ? fonts->SymbolsOf(token.value) : SymbolFont::Unknown;
    } else if (style != nullptr) {
      ReadLevelWord(token, *style);
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
      AddCharacter(token.byte == kSymbolBullet ? kFirstPrivate + kSymbolBullet : token.byte, text);
    } else if (token.kind == TokenKind::Word && token.text == "u") {
      AddCharacter(static_cast<std::uint32_t>(token.value) & 0xFFFF, text);
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

const ListStyle& ListTables::Find(std::int32_t override_number, std::size_t level) const {
  static const ListStyle kUnknownStyle;
  const List* found = FindIn(overrides_, override_number);
  return found != nullptr && level < kLevels ? found->levels[level] : kUnknownStyle;
}

void ListTables::ReadHeader(std::string_view header) {
  *this = {};
  Tokenizer tokens(header);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind != TokenKind::GroupStart) continue;
    std::string group;
    tokens.TakeGroup(token.begin, &group);
    if (group.starts_with("{\\*\\listtable") || group.starts_with("{\\listtable")) ReadLists(group, nullptr);
    if (group.starts_with("{\\*\\listoverridetable") || group.starts_with("{\\listoverridetable"))
      ReadOverrides(group, nullptr);
  }
}

std::int32_t ListTables::CounterOf(std::int32_t override_number) const {
  const List* found = FindIn(overrides_, override_number);
  return found != nullptr ? found->counter : 0;
}

}  // namespace tme::rtf
