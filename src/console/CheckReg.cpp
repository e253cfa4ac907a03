#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

#include "base/CaseFold.h"
#include "base/Utf8.h"
#include "console/Findings.h"
#include "console/KeyEdits.h"
#include "console/Values.h"
#include "documents/reg/RegHex.h"
#include "documents/reg/RegNames.h"
#include "documents/reg/RegSourceLine.h"

namespace tme::console {
namespace {

std::string_view FirstLineOf(std::string_view text) {
  LineReader lines(text);
  std::string_view line;
  lines.Next(line);
  return line;
}

/// Why data are no proper form of their type; they are bytes.
std::string FaultOfBytes(const RegData& data, RegVersion version) {
  const std::string type = "a " + RegTypeName(data.type), size = std::to_string(data.bytes.size());
  if (ContentOf(data.type) == RegContent::Number) return type + " of " + size + " bytes";
  const bool is_wide = version == RegVersion::Version5 || data.type == reg_type::kLink;
  if (is_wide && data.bytes.size() % 2 != 0) return type + " with an odd number of bytes, " + size + ", in UTF-16";
  const std::string nul(is_wide ? 2 : 1, '\0');
  if (!data.bytes.ends_with(nul)) return type + " without the NUL at its end";
  return type + " with bytes that are no text of one or more whole strings";
}

constexpr std::array kVersions{RegVersion::Regedit, RegVersion::Regedit4, RegVersion::Version5};

bool EndsString(std::string_view text) {
  const std::size_t end = text.find_last_not_of(" \t");
  return end != std::string_view::npos && text[end] == '"' && (end == 0 || text[end - 1] != '\\');
}

class RegCheck {
 public:
  RegCheck(const ConsoleFile& file, Findings& findings) : file_(file), findings_(findings) {}

  void Piece(RegPiece kind, std::uint64_t number, std::string_view text) {
    switch (kind) {
      case RegPiece::FileHeader:
        return Header(number, FirstLineOf(text));
      case RegPiece::Key:
      case RegPiece::KeyDeletion:
        return Key(kind, number, FirstLineOf(text));
      case RegPiece::Value:
        return Value(number, text);
      case RegPiece::Other:
        return Other(number, FirstLineOf(text));
      default:
        return;
    }
  }
  void End() {
    if (!has_header_) Add(1, "a first line that is no version of registry files", "imports refuse the file");
  }

 private:
  void Add(std::uint64_t number, std::string what, std::string why) {
    findings_.push_back({number, std::move(what), std::move(why)});
  }

  void Header(std::uint64_t number, std::string_view line) {
    has_header_ = true;
    if (number > 1) Add(number, "the version is not in the first line", "imports refuse the file");
    if (std::ranges::none_of(kVersions, [line](RegVersion version) { return HeaderOf(version) == line; }))
      Add(number, "a version in other letter case or with blanks around it", "imports may refuse the file");
  }
  void Key(RegPiece kind, std::uint64_t number, std::string_view line) {
    values_.clear();
    has_key_ = kind != RegPiece::KeyDeletion;
    deletion_ = has_key_ ? 0 : number;
    const auto place = FindRegHeader(line);
    if (!place) return;  // REGEDIT: a path alone
    const std::string_view path = place->path.Of(line);
    const std::string_view hive = path.substr(0, path.find('\\'));
    const auto is_it = [hive](std::string_view name) { return SameRegName(name, hive); };
    if (!std::ranges::any_of(HiveNames, is_it))
      Add(number, "a key of no known hive, \"" + std::string(hive) + "\"",
          "imports pass over it, and the editor's reading by the rules ends here");
    const std::string_view behind = line.substr(std::min(line.size(), place->path.End() + 1));
    const std::size_t text = FirstText(behind);
    if (text < behind.size() && behind[text] != ';') Add(number, "text behind the \"]\" of a key", "it is lost");
    if (path.find("\\\\") != std::string_view::npos || path.starts_with('\\') || path.ends_with('\\'))
      Add(number, "an empty name in the path of a key", "imports pass over it or leave the empty name out");
    if (kind == RegPiece::KeyDeletion) return Deletion(number, path);
    const auto [first, is_new] = keys_.try_emplace(FoldedCase(path), number);
    if (!is_new)
      Add(number, "key \"" + std::string(path) + "\" again, first in line " + std::to_string(first->second),
          "who edits one of them may miss the other");
  }
  /// The keys at and below the path go, in the order of their lines.
  void Deletion(std::uint64_t number, std::string_view path) {
    const std::string top = FoldedCase(path), below = top + "\\";
    std::uint64_t first = 0;
    for (auto at = keys_.lower_bound(top); at != keys_.end() && at->first.starts_with(top);) {
      const bool goes = at->first == top || at->first.starts_with(below);
      if (goes && (first == 0 || at->second < first)) first = at->second;
      at = goes ? keys_.erase(at) : std::next(at);
    }
    if (first > 0)
      Add(number, "this deletes a key that stands above, in line " + std::to_string(first),
          "an import leaves nothing of it");
  }
  /// quoted: in its quotes.
  void Escapes(std::uint64_t number, std::string_view quoted) {
    for (std::size_t at = quoted.find('\\'); at < quoted.size(); at = quoted.find('\\', at + 2)) {
      if (at + 1 < quoted.size() && (quoted[at + 1] == '\\' || quoted[at + 1] == '"')) continue;
      return Add(number, "a backslash before neither \\ nor \"", "readers keep the backslash or drop it");
    }
  }
  void Hex(std::uint64_t number, std::string_view assignment) {
    const std::string_view digits = assignment.substr(RegMarkOf(assignment).size);
    char last = ',';
    std::size_t run = 0;
    bool has_single = false;
    LineReader lines(digits);
    for (std::string_view line; lines.Next(line);) {
      line = line.substr(0, line.find(';'));
      for (const char c : line) {
        if (IsHexDigit(c)) ++run;
        if (c == ',' && run == 1) has_single = true;
        if (c == ',') run = 0;
        if (IsHexDigit(c) || c == ',') last = c;
      }
    }
    if (has_single || run == 1) Add(number, "a byte of one hex digit", "some readers refuse the value");
    if (last == ',' && digits.find(',') != std::string_view::npos)
      Add(number, "a comma or a backslash behind the last byte", "readers refuse the value or join the next line");
  }
  void Value(std::uint64_t number, std::string_view text) {
    const auto place = FindRegValue(text, FirstLineOf(text).size());
    if (!place) return;
    if (deletion_ > 0)
      Add(number, "a value below the deletion of a key, in line " + std::to_string(std::exchange(deletion_, 0)),
          "imports pass over it and those that follow");
    const std::string name(place->name.Of(text));
    const auto [first, is_new] = values_.try_emplace(FoldedCase(name), number);
    if (!is_new)
      Add(number, "value " + name + " again, first in line " + std::to_string(first->second), "the last one counts");
    const std::string_view assignment = place->assignment.Of(text);
    Escapes(number, name);
    if (assignment.starts_with('"')) Escapes(number, assignment);
    if (RegMarkOf(assignment).form == RegForm::Hex) Hex(number, assignment);
    const auto data = DecodeAssignment(assignment, file_.Coding());
    if (!data || data->content != RegContent::Bytes || ContentOf(data->type) == RegContent::Bytes) return;
    Add(number, FaultOfBytes(*data, file_.Coding().version),
        "programs that read the value may fail or read on behind it");
  }
  void Other(std::uint64_t number, std::string_view line) {
    const std::string_view text = line.substr(FirstText(line));
    if (text.starts_with('[') && line.rfind(']') == std::string_view::npos)
      return Add(number, "a key without \"]\"", "imports pass over it, and its values go to the key above");
    const bool is_value = FindRegValue(line, line.size()).has_value();
    if (std::string name; BeginsOpenText(line, name)) {
      in_string_ = true;
      return Add(number, "a text in quotes that does not end in its line",
                 "the system's import reads on in the next lines, most others pass over them");
    }
    if (std::exchange(in_string_, in_string_ && !EndsString(text)))
      return Add(number, "a line that goes on with a text or is none",
                 "the system's import reads it as part of the text above, most others pass over it");
    if (!has_key_ && is_value) return Add(number, "a value before the first key", "imports pass over it");
    Add(number, "a line that is no key, value or comment", "imports pass over it");
  }

  const ConsoleFile& file_;
  Findings& findings_;
  bool has_header_ = false;
  bool has_key_ = false;
  /// Since the line of this deletion there was neither key nor value; 0 for none.
  std::uint64_t deletion_ = 0;
  bool in_string_ = false;
  std::map<std::string, std::uint64_t> keys_;
  std::unordered_map<std::string, std::uint64_t> values_;
};

void CheckEncoding(const ConsoleFile& file, std::uint64_t first_beyond_ascii, Findings& findings) {
  const TextEncoding encoding = file.Format().encoding;
  const bool is_utf8 = encoding == TextEncoding::Utf8 || encoding == TextEncoding::Utf8Bom;
  const bool is_8_bit = is_utf8 || encoding == TextEncoding::CodePage;
  if (encoding == TextEncoding::Utf8Bom)
    findings.push_back({1, "the byte order mark of UTF-8", "imports do not know the first line then"});
  else if (is_utf8 && first_beyond_ascii > 0)
    findings.push_back({first_beyond_ascii, "UTF-8", "imports take it for 8-bit characters of their own code page"});
  else if (is_8_bit && first_beyond_ascii > 0 && file.Reg().Version() == RegVersion::Version5)
    findings.push_back({first_beyond_ascii, "8-bit characters beyond ASCII in a file of version 5.00",
                        "imports take them for characters of their own code page"});
  if (!is_8_bit && file.Reg().Version() != RegVersion::Version5)
    findings.push_back({1, "UTF-16 in a file of version REGEDIT4 or before", "old imports refuse it"});
}

}  // namespace

void CheckReg(const ConsoleFile& file, Findings& findings) {
  RegCheck check(file, findings);
  std::uint64_t first_beyond_ascii = 0, last = 0;
  bool last_is_ended = true;
  ForEachPiece(file, [&](SourceLines::Piece piece, std::uint64_t number, std::string_view text) {
    check.Piece(static_cast<RegPiece>(file.Lines().Kind(piece)), number, text);
    if (first_beyond_ascii == 0 && utf8::AsciiRun(text) < text.size()) first_beyond_ascii = number;
    last = number + LineEndsIn(text);
    last_is_ended = !LineEndOf(text).empty();
  });
  check.End();
  CheckEncoding(file, first_beyond_ascii, findings);
  if (!last_is_ended)
    findings.push_back({last, "a last line without an end", "the editor's reading by the rules leaves it out"});
}

}  // namespace tme::console
