#include "documents/reg/RegWholeReader.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/LineReader.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegDocumentLoad.h"
#include "documents/reg/RegSourceLine.h"

namespace tme {
namespace {

constexpr std::uint64_t kLinesPerWholeProgress = 8192;
/// Fewer bytes than lines of exports have, so that most documents find room for all of their pieces and values.
constexpr std::size_t kBytesPerPiece = 24;

RegType TypeOfAssignment(std::string_view assignment) {
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

class RegWholeImport {
 public:
  RegWholeImport(RegDocument& document, std::string text, const RegWholeOptions& options, RegWholeResult& result)
      : options_(options),
        result_(result),
        load_(document, std::move(text), text.size() / kBytesPerPiece),
        lines_(load_.Text()),
        start_(load_.Text().data()),
        version_(options.unsaid),
        current_(options.first_values == RegWholeOptions::FirstValues::OfRoot ? document.Root() : nullptr) {
    load_.HoldWhole(load_.Text().size() / kBytesPerPiece);
  }

  void Run() {
    for (std::string_view line; !result_.cancelled && lines_.Next(line);) {
      const std::size_t first = FirstText(line);
      if (first == line.size()) {
        if (blanks_ == nullptr) blanks_ = line.data();
      } else {
        EndBlanks(line.data());
        TakeLine(line, first);
      }
      if (lines_.Number() % kLinesPerWholeProgress == 0) TellProgress();
    }
    EndBlanks(lines_.Position());
    load_.SetVersion(version_);
  }

 private:
  void TellProgress() {
    const std::string_view text = load_.Text();
    const auto done = static_cast<std::uint64_t>(lines_.Position() - start_);
    if (options_.progress && !options_.progress(done, text.size())) result_.cancelled = true;
  }

  void EndBlanks(const char* end) {
    if (blanks_ != nullptr) load_.AppendPiece({blanks_, static_cast<std::size_t>(end - blanks_)}, RegPiece::Blank);
    blanks_ = nullptr;
  }

  /// The piece from the line's start to the start of the next line.
  SourceLines::Piece Append(std::string_view line, RegPiece kind) {
    return load_.AppendPiece({line.data(), static_cast<std::size_t>(lines_.Position() - line.data())}, kind);
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
      current_ = load_.AppendDeletion(path, piece);
    } else {
      current_ = load_.AppendHeader(path, piece);
    }
    return true;
  }

  bool TakePair(std::string_view line) {
    const std::optional<RegPairPlace> pair = FindRegPair(line);
    if (!pair) return false;
    const SourceLines::Piece piece = Append(line, pair->kind);
    RegNode* key = load_.AppendHeader(pair->place.name.Of(line), piece);
    if (pair->kind == RegPiece::Pair)
      load_.AppendValue(key, RegType::String, "", pair->place.assignment.Of(line), piece);
    return true;
  }

  bool TakeValue(std::string_view line) {
    const std::string_view text(line.data(), static_cast<std::size_t>(End() - line.data()));
    const std::optional<RegValuePlace> value = FindRegValue(text, line.size());
    if (!value) return false;
    const std::string_view first_line = line;
    const char* end = text.data() + value->assignment.End();
    while (end > line.data() + line.size() && lines_.Next(line)) {
    }
    const std::string_view assignment = value->assignment.Of(text);
    if (assignment == "-") ++result_.value_deletions;
    const SourceLines::Piece piece = Append(first_line, RegPiece::Value);
    load_.AppendValue(current_, TypeOfAssignment(assignment), NameOf(value->name.Of(text)), assignment, piece);
    return true;
  }

  std::string_view NameOf(std::string_view quoted) {
    if (quoted.size() < 2) return "";
    const std::string_view name = quoted.substr(1, quoted.size() - 2);
    return name.find('\\') == std::string_view::npos ? name : load_.Texts().Copy(UnescapedRegText(name));
  }

  const char* End() { return load_.Text().data() + load_.Text().size(); }

  const RegWholeOptions& options_;
  RegWholeResult& result_;
  RegDocument::Load load_;
  LineReader lines_;
  const char* const start_;
  RegVersion version_;
  bool may_say_version_ = true;
  /// Where the blank lines that were read last begin; null without.
  const char* blanks_ = nullptr;
  /// What the next value belongs to; null before the first key.
  RegNode* current_;
};

}  // namespace

RegWholeResult ReadWholeReg(RegDocument& document, std::string text, const RegWholeOptions& options) {
  RegWholeResult result;
  RegWholeImport(document, std::move(text), options, result).Run();
  if (result.cancelled) document.Reset(document.Root()->Text());
  return result;
}

}  // namespace tme
