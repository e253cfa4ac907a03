#include "documents/reg/RegSourceLine.h"

#include <algorithm>

#include "documents/reg/RegHex.h"
#include "documents/reg/RegNames.h"

namespace tme {
namespace {

constexpr std::string_view kBlankChars = " \t";

std::string_view WithoutBlanks(std::string_view line) {
  const std::size_t first = FirstText(line);
  if (first == line.size()) return {};
  return line.substr(first, line.find_last_not_of(kBlankChars) - first + 1);
}

/// Whether only blanks and a comment stand from there on.
bool EndsBefore(std::string_view line, std::size_t at) {
  at = std::min(line.find_first_not_of(kBlankChars, at), line.size());
  return at == line.size() || line[at] == ';';
}

/// Behind the quote that closes the one at `at`; null without.
std::optional<std::size_t> BehindQuoted(std::string_view line, std::size_t at) {
  for (std::size_t quote = line.find('"', at + 1); quote != line.npos; quote = line.find('"', quote + 1)) {
    std::size_t first = quote;
    while (first - 1 > at && line[first - 1] == '\\') --first;
    if ((quote - first) % 2 == 0) return quote + 1;
  }
  return std::nullopt;
}

/// Behind "dword:" and its digits.
std::optional<std::size_t> BehindDword(std::string_view line, std::size_t at) {
  std::size_t end = at;
  while (end < line.size() && IsHexDigit(line[end])) ++end;
  const std::size_t digits = end - at;
  return digits >= 1 && digits <= 8 ? std::optional(end) : std::nullopt;
}

/// Where the assignment at `at` ends.
std::optional<std::size_t> BehindAssignment(std::string_view text, std::size_t line_size, std::size_t at) {
  const std::string_view line = text.substr(0, line_size);
  if (at == line_size) return std::nullopt;
  std::optional<std::size_t> end;
  if (line[at] == '"') {
    end = BehindQuoted(line, at);
  } else if (line[at] == '-') {
    end = at + 1;
  } else {
    const RegMark mark = RegMarkOf(line.substr(at));
    if (mark.form == RegForm::Hex) return EndOfHex(text, at + mark.size);
    if (mark.form == RegForm::Dword) end = BehindDword(line, at + mark.size);
  }
  return end && EndsBefore(line, *end) ? end : std::nullopt;
}

}  // namespace

std::size_t FirstText(std::string_view line) {
  std::size_t at = 0;
  while (at < line.size() && (line[at] == ' ' || line[at] == '\t')) ++at;
  return at;
}

std::optional<RegHeaderPlace> FindRegHeader(std::string_view line) {
  RegHeaderPlace header;
  std::size_t at = FirstText(line) + 1;
  const std::size_t end = line.rfind(']');
  if (end == line.npos) return std::nullopt;
  if (line[at] == '-') {
    header.kind = RegPiece::KeyDeletion;
    ++at;
  }
  header.path = {at, end - at};
  // A path of backslashes alone names nothing.
  if (line.find_first_not_of('\\', at) >= end) return std::nullopt;
  return header;
}

std::optional<RegValuePlace> FindRegValue(std::string_view text, std::size_t line_size) {
  const std::string_view line = text.substr(0, line_size);
  RegValuePlace place;
  place.name.at = FirstText(line);
  if (place.name.at == line.size()) return std::nullopt;
  std::optional<std::size_t> end = place.name.at + 1;
  if (line[place.name.at] == '"') end = BehindQuoted(line, place.name.at);
  if (!end) return std::nullopt;
  place.name.size = *end - place.name.at;
  std::size_t at = *end + FirstText(line.substr(*end));
  if (at == line_size || line[at] != '=') return std::nullopt;
  ++at;
  place.assignment.at = at + FirstText(line.substr(at));
  end = BehindAssignment(text, line_size, place.assignment.at);
  if (!end) return std::nullopt;
  place.assignment.size = *end - place.assignment.at;
  return place;
}

std::optional<RegPairPlace> FindRegPair(std::string_view line) {
  constexpr std::string_view kHive = "HKEY_";
  RegPairPlace pair;
  RegSpan& path = pair.place.name;
  path.at = FirstText(line);
  path.size = std::min(line.find_first_of(" \t=", path.at), line.size()) - path.at;
  if (!SameRegName(path.Of(line).substr(0, kHive.size()), kHive)) return std::nullopt;
  std::size_t at = path.End() + FirstText(line.substr(path.End()));
  const bool has_equals = at < line.size() && line[at] == '=';
  if (has_equals) at += line.substr(at + 1).starts_with(' ') ? 2 : 1;
  if (!has_equals && at == line.size()) pair.kind = RegPiece::Key;
  pair.place.assignment = {at, line.size() - at};
  return pair;
}

std::optional<RegVersion> VersionOfLine(std::string_view line) {
  line = WithoutBlanks(line);
  for (const RegVersion version : {RegVersion::Version5, RegVersion::Regedit4, RegVersion::Regedit})
    if (SameRegName(line, HeaderOf(version))) return version;
  return std::nullopt;
}

std::string_view HeaderOf(RegVersion version) {
  switch (version) {
    case RegVersion::Regedit:
      return "REGEDIT";
    case RegVersion::Regedit4:
      return "REGEDIT4";
    default:
      return "Windows Registry Editor Version 5.00";
  }
}

}  // namespace tme
