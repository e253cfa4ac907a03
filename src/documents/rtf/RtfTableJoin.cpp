#include "documents/rtf/RtfTableJoin.h"

#include <algorithm>
#include <limits>

#include "documents/rtf/RtfOutput.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

/// A group whose 8-bit text is that of another code page, with that text as \u.
std::string WithoutCodePage(std::string_view rtf, int page, int unicode_skip, const DecodeCodePage& decode) {
  std::string result, bytes;
  const PartSink sink = [&result](std::string_view part) {
    result.append(part);
    return true;
  };
  RtfOutput out(sink);
  out.SetUnicodeSkip(static_cast<std::size_t>(std::max(unicode_skip, 0)));
  const auto flush = [&] {
    if (!bytes.empty()) out.Text(decode(page, bytes));
    bytes.clear();
  };
  Tokenizer tokens(rtf);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind == TokenKind::Hex) {
      bytes += static_cast<char>(token.byte);
    } else if (token.kind == TokenKind::HighText) {
      bytes.append(token.text);
    } else {
      flush();
      out.Kept(rtf.substr(token.begin, token.end - token.begin));
    }
  }
  flush();
  out.Finish();
  return result;
}

/// Word processors take names that differ in case alone for one.
bool IsSameName(std::string_view one, std::string_view other) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::ranges::equal(one, other, {}, lower, lower);
}

HeaderTable TableOfName(RtfName name) {
  if (name == RtfName::Style) return HeaderTable::Styles;
  if (name == RtfName::List) return HeaderTable::Overrides;
  return name == RtfName::ListId ? HeaderTable::Lists : HeaderTable::Authors;
}

}  // namespace

RtfTableJoin::RtfTableJoin(const RtfDocument& source, RtfDocument& target, Numbers numbers,
                           const DecodeCodePage& decode)
    : source_(source),
      target_(target),
      numbers_(std::move(numbers)),
      decode_(decode),
      own_(HeaderEntriesOf(source, decode)),
      there_(HeaderEntriesOf(target, decode)),
      is_same_document_(IsSameDocument()) {
  for (std::size_t i = 0; i < own_.size(); ++i) entries_.try_emplace({own_[i].table, own_[i].number}, i);
  FindUsedNumbers();
}

/// Whether all that the source has stands there, under its own numbers.
bool RtfTableJoin::IsSameDocument() const {
  const auto key_of = [](const HeaderEntry& entry) {
    return std::pair<Key, std::string_view>({entry.table, entry.number}, entry.rtf);
  };
  std::set<std::pair<Key, std::string_view>> there;
  for (const HeaderEntry& entry : there_) there.insert(key_of(entry));
  return !own_.empty() &&
         std::ranges::all_of(own_, [&](const HeaderEntry& entry) { return there.contains(key_of(entry)); });
}

/// Text may name entries that no table has.
void RtfTableJoin::FindUsedNumbers() {
  for (const HeaderEntry& entry : there_) used_.insert({entry.table, entry.number});
  for (const ParagraphFormat& format : target_.paragraph_formats)
    if (format.list_id != 0) used_.insert({HeaderTable::Overrides, format.list_id});
  for (const std::string& words : target_.extras) {
    ForEachName(words, [this](const RtfNamed& named) {
      if (named.name == RtfName::Style) used_.insert({HeaderTable::Styles, named.number});
    });
  }
}

std::string RtfTableJoin::Mapped(std::string_view rtf) {
  std::string mapped = WithNames(rtf, [this](const RtfNamed& named) { return NumberOf(named); });
  WriteEntries();
  return mapped;
}

std::int32_t RtfTableJoin::ListNumber(std::int32_t number) {
  const std::int32_t there = number == 0 ? 0 : Joined(HeaderTable::Overrides, number).value_or(0);
  WriteEntries();
  return there;
}

std::optional<std::int32_t> RtfTableJoin::NumberOf(const RtfNamed& named) {
  switch (named.name) {
    case RtfName::Font:
      return numbers_.font(named.number);
    case RtfName::Color:
      return numbers_.color(named.number);
    case RtfName::ListPicture:
      return is_same_document_ ? std::optional(named.number) : std::nullopt;
    default:
      return Joined(TableOfName(named.name), named.number);
  }
}

std::optional<std::int32_t> RtfTableJoin::Joined(HeaderTable table, std::int32_t number) {
  const auto entry = entries_.find({table, number});
  if (entry == entries_.end()) return std::nullopt;
  if (is_same_document_) return number;
  if (const auto known = known_.find(entry->first); known != known_.end()) return known->second;
  const HeaderEntry& own = own_[entry->second];
  const auto found = std::ranges::find_if(there_, [&](const HeaderEntry& other) { return IsLike(own, other); });
  if (found != there_.end()) return known_[entry->first] = found->number;
  const std::int32_t given = Enter(own);
  to_write_.push_back(entry->second);
  return given;
}

/// A list of another document is never one of this one, but it joins once only.
bool RtfTableJoin::IsLike(const HeaderEntry& own, const HeaderEntry& other) {
  if (own.table != other.table) return false;
  switch (own.table) {
    case HeaderTable::Styles:
      return own.kind == other.kind &&
             (IsSameName(own.name, other.name) || (own.kind == 's' && own.number == 0 && other.number == 0));
    case HeaderTable::Authors:
      return own.name == other.name;
    case HeaderTable::Lists:
      return other.has_joined && own.rtf == other.origin;
    case HeaderTable::Overrides:
      return other.has_joined && own.rtf == other.origin && Joined(HeaderTable::Lists, own.list_id) == other.list_id;
  }
  return false;
}

std::int32_t RtfTableJoin::FreeNumber(HeaderTable table, std::int32_t wanted) const {
  const auto behind = used_.upper_bound({table, std::numeric_limits<std::int32_t>::max()});
  const bool is_first = behind == used_.begin() || std::prev(behind)->first != table;
  if (table == HeaderTable::Authors) return is_first ? 0 : std::prev(behind)->second + 1;
  if (!used_.contains({table, wanted})) return wanted;
  const std::int32_t last = std::prev(behind)->second;
  if (last < std::numeric_limits<std::int32_t>::max()) return last + 1;
  std::int32_t free = 1;
  while (used_.contains({table, free})) ++free;
  return free;
}

std::int32_t RtfTableJoin::Enter(const HeaderEntry& own) {
  if (own.table == HeaderTable::Authors && FreeNumber(own.table, 0) == 0) {
    // The first author is that of changes without one.
    target_.joined.push_back({own.table, 0, "{Unknown;}", {}});
    used_.insert({own.table, 0});
  }
  const std::int32_t number = FreeNumber(own.table, own.number);
  used_.insert({own.table, number});
  known_[{own.table, own.number}] = number;
  return number;
}

/// What is written may name others, which then join, too.
void RtfTableJoin::WriteEntries() {
  for (std::size_t i = 0; i < to_write_.size(); ++i) {
    const HeaderEntry& own = own_[to_write_[i]];
    target_.joined.push_back({own.table, known_[{own.table, own.number}], Written(own), own.rtf});
  }
  to_write_.clear();
}

std::string RtfTableJoin::Written(const HeaderEntry& own) {
  std::string rtf = WithNames(own.rtf, [this](const RtfNamed& named) { return NumberOf(named); });
  // The bytes of a list's numbers are no text.
  const bool is_text = own.table == HeaderTable::Styles || own.table == HeaderTable::Authors;
  if (is_text && source_.ansi_code_page != target_.ansi_code_page)
    rtf = WithoutCodePage(rtf, source_.ansi_code_page, own.unicode_skip, decode_);
  SayUnicodeSkip(rtf, own.unicode_skip);
  return rtf;
}

}  // namespace tme::rtf
