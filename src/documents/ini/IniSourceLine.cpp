#include "documents/ini/IniSourceLine.h"

#include <algorithm>
#include <cstddef>

namespace tme {
namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view WithoutLeadingBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

constexpr bool BeginsComment(std::string_view text) { return text.starts_with(';') || text.starts_with('#'); }

std::string_view Between(const char* first, const char* last) {
  return {first, static_cast<std::size_t>(last - first)};
}

const char* EndOf(std::string_view text) { return text.data() + text.size(); }

}  // namespace

std::string_view TrimIniBlanks(std::string_view text) {
  text = WithoutLeadingBlanks(text);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

IniLine SourceKindOf(std::string_view line) {
  const std::string_view text = WithoutLeadingBlanks(line);
  if (text.starts_with('\r') || text.starts_with('\n')) return IniLine::Blank;
  return text.starts_with('#') ? IniLine::Comment : KindOf(text);
}

std::string_view SourceHeaderName(std::string_view header) {
  const std::string_view name = TrimIniBlanks(header).substr(1);
  const std::size_t first = name.find(']');
  for (std::size_t at = first; at != std::string_view::npos; at = name.find(']', at + 1)) {
    const std::string_view behind = WithoutLeadingBlanks(name.substr(at + 1));
    if (behind.empty() || BeginsComment(behind)) return name.substr(0, at);
  }
  return name.substr(0, first);
}

std::string_view SourceHeaderComment(std::string_view header) {
  const std::string_view name = SourceHeaderName(header);
  std::string_view behind = Between(EndOf(name), EndOf(header));
  if (behind.empty()) return behind;
  behind = TrimIniBlanks(behind.substr(1));
  return BeginsComment(behind) ? behind : std::string_view();
}

IniEntryParts EntryPartsOf(std::string_view entry) {
  const std::string_view text = TrimIniBlanks(entry);
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) return {.key = text, .value = text.substr(text.size())};
  // A key that is not there would stand right before the "=".
  IniEntryParts parts{.key = text.substr(0, text.substr(0, equals).find_last_not_of(kBlanks) + 1), .has_equals = true};
  // Where the value is missing, it would come behind all blanks.
  parts.value = WithoutLeadingBlanks(Between(text.data() + equals + 1, EndOf(entry)));
  parts.value = parts.value.substr(0, parts.value.find_last_not_of(kBlanks) + 1);
  const std::string_view value = parts.value;
  if (value.size() < 2 || value.front() != value.back() || (value.front() != '"' && value.front() != '\''))
    return parts;
  const std::string_view inside = value.substr(1, value.size() - 2);
  if (inside.find(value.front()) != std::string_view::npos) return parts;
  parts.value = inside;
  parts.quote = value.front();
  return parts;
}

std::size_t IniDepthOf(std::string_view line) { return line.size() - WithoutLeadingBlanks(line).size(); }

bool ContinuesEntry(std::string_view line, std::string_view entry) {
  return IniDepthOf(line) > IniDepthOf(entry) && SourceKindOf(line) == IniLine::Entry &&
         line.find('=') == std::string_view::npos;
}

std::string WithPart(std::string_view line, std::string_view part, std::string_view now) {
  std::string changed(Between(line.data(), part.data()));
  return changed.append(now).append(Between(EndOf(part), EndOf(line)));
}

IniLineStyle StyleOf(std::string_view entry) {
  IniLineStyle style{.indent = entry.substr(0, entry.size() - WithoutLeadingBlanks(entry).size())};
  const IniEntryParts parts = EntryPartsOf(entry);
  if (!parts.has_equals) return style;
  const std::string_view behind_key = Between(EndOf(parts.key), EndOf(entry));
  style.before_equals = behind_key.substr(0, behind_key.find('='));
  const std::string_view behind_equals = behind_key.substr(style.before_equals.size() + 1);
  style.after_equals = behind_equals.substr(0, behind_equals.size() - WithoutLeadingBlanks(behind_equals).size());
  if (parts.value.empty() && parts.quote == 0)
    style.after_equals = style.before_equals.substr(0, 1);  // none shows there
  return style;
}

std::string EntryLine(const IniLineStyle& style, std::string_view key, std::string_view value) {
  const std::string_view written_key = TrimIniBlanks(key), written_value = TrimIniBlanks(value);
  std::string line = std::string(style.indent).append(written_key);
  const bool is_comment = BeginsComment(written_key);
  if (is_comment && written_value.empty()) return line;
  if (is_comment) return line.append("=").append(written_value);
  line.append(style.before_equals).append("=");
  return written_value.empty() ? line : line.append(style.after_equals).append(written_value);
}

std::string WithEntry(std::string_view line, std::string_view key, std::string_view value, const IniLineStyle& style) {
  const IniEntryParts parts = EntryPartsOf(line);
  const std::string_view new_key = TrimIniBlanks(key);
  std::string_view old_value = parts.value, new_value = value;
  const bool keeps_quotes = parts.quote != 0 && value.find(parts.quote) == std::string_view::npos;
  if (!keeps_quotes) new_value = TrimIniBlanks(value);
  if (parts.quote != 0 && !keeps_quotes) old_value = Between(old_value.data() - 1, EndOf(old_value) + 1);

  std::string changed(Between(line.data(), parts.key.data()));
  changed.append(new_key);
  const std::string_view equals = Between(EndOf(parts.key), old_value.data());
  const bool shows_no_blanks = old_value.empty() && !new_value.empty() && equals.ends_with('=');
  const std::string_view blank = shows_no_blanks && equals.size() > 1 ? equals.substr(0, 1) : std::string_view();
  if (parts.has_equals)
    changed.append(equals).append(blank).append(new_value);
  else if (!new_value.empty())
    changed.append(style.before_equals).append("=").append(style.after_equals).append(new_value);
  return changed.append(Between(EndOf(old_value), EndOf(line)));
}

}  // namespace tme
