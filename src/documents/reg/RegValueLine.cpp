#include "documents/reg/RegValueLine.h"

#include <algorithm>
#include <string>

#include "base/TextStore.h"
#include "base/Utf8.h"

namespace tme {

namespace {

constexpr std::string_view kDefaultName = "[default]";
constexpr std::string_view kTypedHex = "hex(";
constexpr std::string_view kDeletion = "-";

/// What stands between name and data, from the "=" on.
constexpr std::string_view MarkOf(RegType type) { return TraitsOf(type).before.substr(1); }

/// Both begin with "=". Most lines show in the character behind it what they are.
bool HasMark(std::string_view text, std::string_view mark) {
  return text.size() >= mark.size() && text[1] == mark[1] && (mark.size() == 2 || text.starts_with(mark));
}

std::string_view WithoutLast(std::string_view text) {
  text.remove_suffix(utf8::LastCharacterBytes(text));
  return text;
}

/// Takes the first and last character off, whatever the last one is. Returns false when they are the same.
bool TakeOffQuotes(std::string_view& text) {
  if (text.size() == 1) return false;
  text = WithoutLast(text.substr(1));
  return true;
}

std::string_view WithoutFirst(std::string_view text, std::size_t characters) {
  if (utf8::AsciiRun(text.substr(0, characters)) == characters) return text.substr(characters);
  for (; characters > 0 && !text.empty(); --characters) {
    if (!utf8::TakeCharacter(text, utf8::Surrogates::Accept)) text.remove_prefix(1);
  }
  return text;
}

/// The type is looked for in the whole line, a double word first: it may well stand in a name or a string. Intended.
RegType TypeOf(std::string_view line, std::size_t equals) {
  const std::string_view rest = line.substr(equals);
  const bool is_only_equals = rest.find('=', 1) == std::string_view::npos;
  for (const RegTypeTraits& traits : kMarkedRegTypes) {
    const std::string_view mark = MarkOf(traits.type);
    if (is_only_equals ? HasMark(rest, mark) : rest.find(mark) != std::string_view::npos) return traits.type;
  }
  return RegType::String;
}

/// equals: of the first "=". data: from there on; counted from the length of the name, so a name that lost its own
/// quotes shifts it two characters back. Intended.
bool TakeData(std::string_view line, std::size_t equals, std::size_t data, RegValueLine& value) {
  value.type = TypeOf(line, equals);
  value.data = line.substr(data);
  if (value.type == RegType::String) return !value.data.starts_with('"') || TakeOffQuotes(value.data);
  value.data = WithoutFirst(value.data, MarkOf(value.type).size() - 1);
  return true;
}

/// assignment: the line from behind the name's closing quote on.
RegLineForm FormOf(std::string_view assignment, const RegValueLine& value) {
  const bool is_string = value.type == RegType::String;
  const std::string_view mark = MarkOf(value.type);
  const bool is_marked = HasMark(assignment, mark);
  std::string_view data = assignment.substr(std::min(mark.size(), assignment.size()));
  const bool has_quotes = !is_string || (data.ends_with('"') && is_marked);
  if (is_string && has_quotes) data.remove_suffix(1);
  if (has_quotes && is_marked && data == value.data) return RegLineForm::Same;
  if (!is_string || assignment.substr(1) != value.data) return RegLineForm::Other;
  if (value.data == kDeletion) return RegLineForm::Deletion;
  return value.data.starts_with(kTypedHex) ? RegLineForm::TypedHex : RegLineForm::Other;
}

}  // namespace

bool ParseValueLine(std::string_view line, RegValueLine& value) {
  const std::size_t equals = line.find('=', 1);
  if (equals == std::string_view::npos || equals == 1) return false;
  // One character is passed over before "=", whether it is a quote or not.
  const std::string_view before_quote = WithoutLast(line.substr(0, equals));
  value.name = before_quote.substr(1);
  if (!value.name.starts_with('"')) {
    if (!TakeData(line, equals, equals + 1, value)) return false;
    value.form = line[equals - 1] == '"' ? FormOf(line.substr(equals), value) : RegLineForm::Other;
    return true;
  }
  value.form = RegLineForm::Other;
  return TakeOffQuotes(value.name) && TakeData(line, equals, before_quote.size(), value);
}

bool ParseDefaultLine(std::string_view line, TextStore& texts, RegValueLine& value) {
  const std::size_t equals = line.find('=', 1);
  if (equals == std::string_view::npos) return false;
  value.name = kDefaultName;
  if (equals > 1) {
    value.name = texts.Copy(std::string(kDefaultName).append("\"").append(WithoutLast(line.substr(1, equals - 1))));
  }
  if (!TakeData(line, equals, equals + 1, value)) return false;
  value.form = equals == 1 ? FormOf(line.substr(equals), value) : RegLineForm::Other;
  return true;
}

}  // namespace tme
