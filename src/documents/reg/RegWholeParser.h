#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "base/LineReader.h"
#include "documents/reg/RegNode.h"
#include "documents/reg/RegSourceLine.h"
#include "documents/reg/RegWholeReader.h"

namespace tme {

/// What stands before a text.
struct RegParseStart {
  /// Of the lines, when the first one says no other.
  RegVersion version = RegVersion::Regedit4;
  /// Whether a line that is neither blank nor a comment stood there.
  bool may_say_version = true;
  /// What the next value belongs to; null before the first key.
  RegNode* current = nullptr;
};

/// Splits the text of a registry file into pieces and tells what each is, line by line.
/// Target: Append(lines, kind), which returns a piece; AppendHeader(path, piece) and AppendDeletion(path, piece), which
/// return the key; AppendValue(key, type, name, assignment, piece); Texts(), where unescaped names lie.
template <class Target>
class RegWholeParser {
 public:
  /// text: must stay.
  RegWholeParser(Target& target, std::string_view text, const RegParseStart& start, RegWholeResult& result)
      : target_(target),
        result_(result),
        lines_(text),
        end_(text.data() + text.size()),
        version_(start.version),
        may_say_version_(start.may_say_version),
        current_(start.current) {}

  /// Takes lines that begin before a place. Returns where the next one begins: behind the place where a value goes on
  /// there. tell(lines) is called for each line; false ends it.
  template <typename Tell>
  const char* Run(const char* place, Tell tell) {
    for (std::string_view line; lines_.Position() < place && lines_.Next(line);) {
      const std::size_t first = FirstText(line);
      if (first == line.size()) {
        if (blanks_ == nullptr) blanks_ = line.data();
      } else {
        EndBlanks(line.data());
        TakeLine(line, first);
      }
      if (!tell(lines_)) return lines_.Position();
    }
    EndBlanks(lines_.Position());
    return lines_.Position();
  }

  RegVersion Version() const { return version_; }
  /// Whether a line that follows may say it.
  bool MaySayVersion() const { return may_say_version_; }

 private:
  void EndBlanks(const char* end) {
    if (blanks_ != nullptr) target_.Append({blanks_, static_cast<std::size_t>(end - blanks_)}, RegPiece::Blank);
    blanks_ = nullptr;
  }

  /// The piece from the line's start to the start of the next line.
  SourceLines::Piece Append(std::string_view line, RegPiece kind) {
    return target_.Append({line.data(), static_cast<std::size_t>(lines_.Position() - line.data())}, kind);
  }

  void TakeLine(std::string_view line, std::size_t first) {
    const char mark = line[first];
    if (mark == ';') {
      ++result_.comments;
      Append(line, RegPiece::Comment);
      return;
    }
    const bool is_first = std::exchange(may_say_version_, false);
    if (is_first && TakeFileHeader(line)) return;
    const bool taken = version_ == RegVersion::Regedit ? TakePair(line)
                       : mark == '['                   ? TakeKey(line)
                       : mark == '"' || mark == '@'    ? current_ != nullptr && TakeValue(line)
                                                       : false;
    if (taken) return;
    if (++result_.not_understood == 1) result_.first_not_understood = lines_.Number();
    Append(line, RegPiece::Other);
  }

  bool TakeFileHeader(std::string_view line) {
    const std::optional<RegVersion> version = VersionOfLine(line);
    if (!version) return false;
    version_ = *version;
    result_.has_header = true;
    Append(line, RegPiece::FileHeader);
    return true;
  }

  bool TakeKey(std::string_view line) {
    const std::optional<RegHeaderPlace> header = FindRegHeader(line);
    if (!header) return false;
    const SourceLines::Piece piece = Append(line, header->kind);
    const std::string_view path = header->path.Of(line);
    if (header->kind == RegPiece::KeyDeletion) {
      ++result_.key_deletions;
      current_ = target_.AppendDeletion(path, piece);
    } else {
      current_ = target_.AppendHeader(path, piece);
    }
    return true;
  }

  bool TakePair(std::string_view line) {
    const std::optional<RegPairPlace> pair = FindRegPair(line);
    if (!pair) return false;
    const SourceLines::Piece piece = Append(line, pair->kind);
    RegNode* key = target_.AppendHeader(pair->place.name.Of(line), piece);
    if (pair->kind == RegPiece::Pair)
      target_.AppendValue(key, RegType::String, "", pair->place.assignment.Of(line), piece);
    return true;
  }

  bool TakeValue(std::string_view line) {
    const std::string_view text(line.data(), static_cast<std::size_t>(end_ - line.data()));
    const std::optional<RegValuePlace> value = FindRegValue(text, line.size());
    if (!value) return false;
    const std::string_view first_line = line;
    const char* end = text.data() + value->assignment.End();
    while (end > line.data() + line.size() && lines_.Next(line)) {
    }
    const std::string_view assignment = value->assignment.Of(text);
    if (assignment == "-") ++result_.value_deletions;
    const SourceLines::Piece piece = Append(first_line, RegPiece::Value);
    target_.AppendValue(current_, TypeOf(assignment), NameOf(value->name.Of(text)), assignment, piece);
    return true;
  }

  std::string_view NameOf(std::string_view quoted) {
    if (quoted.size() < 2) return "";
    const std::string_view name = quoted.substr(1, quoted.size() - 2);
    return name.find('\\') == std::string_view::npos ? name : target_.Texts().Copy(UnescapedRegText(name));
  }

  static RegType TypeOf(std::string_view assignment) {
    switch (assignment.front()) {
      case '"':
        return RegType::String;
      case '-':
        return RegType::None;
      case 'd':
      case 'D':
        return RegType::Dword;
      default:
        return RegType::Hex;
    }
  }

  Target& target_;
  RegWholeResult& result_;
  LineReader lines_;
  const char* const end_;
  RegVersion version_;
  bool may_say_version_;
  /// Where the blank lines that were read last begin; null without.
  const char* blanks_ = nullptr;
  RegNode* current_;
};

}  // namespace tme
