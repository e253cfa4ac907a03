#include "windows/reg/RegSourceLexer.h"

#include "base/LineReader.h"
#include "documents/reg/RegHex.h"
#include "documents/reg/RegSourceLine.h"
#include "windows/reg/RegValueText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Bytes of an assignment; a longer one is not decoded while the user waits for a line to be painted.
constexpr std::size_t kMostDecodedForFaults = std::size_t{1} << 16;

}  // namespace

class RegSourceLexer::Reading {
 public:
  Reading(const RegDocument& document, const SourcePart& part, std::span<char> styles)
      : part_(part),
        styles_(styles),
        lines_(part.text),
        coding_(CodingOf(document)),
        is_whole_(document.HeldAs() == Holding::Whole),
        has_key_(!part.is_first) {}

  std::vector<SourceFault> Run(const RegSourceLexer& lexer) {
    std::string_view line;
    bool is_within = part_.starts_within;
    while (lines_.Next(line)) {
      const std::size_t first = FirstText(line);
      if (first == line.size()) continue;
      if (line[first] == ';')
        Set(line, 0, line.size(), SourceStyle::Comment);
      else if (!std::exchange(is_within, is_within && lexer.GoesOn(line)))
        TakeLine(line, line[first]);
    }
    return std::move(faults_);
  }

 private:
  void Set(std::string_view line, std::size_t at, std::size_t size, SourceStyle style) {
    SetStyle(styles_, static_cast<std::size_t>(line.data() - part_.text.data()) + at, size, style);
  }

  void AddFault(std::string_view lines, const QString& reason) {
    if (!is_whole_ || (part_.ends_within && lines.data() + lines.size() == part_.text.data() + part_.text.size()))
      return;
    faults_.push_back({static_cast<std::size_t>(lines.data() - part_.text.data()), lines.size(), reason});
  }

  void TakeLine(std::string_view line, char mark) {
    if (std::exchange(may_say_version_, false) && part_.is_first && VersionOfLine(line))
      return Set(line, 0, line.size(), SourceStyle::Mark);
    if (coding_.version == RegVersion::Regedit && is_whole_) return TakePair(line);
    if (mark == '[') return TakeKey(line);
    if (mark == '"' || mark == '@') return TakeValue(line);
    AddFault(line, tr("This line is neither a key, which begins with \"[\", nor a value, which begins with a name in "
                      "quotes or \"@\".  It stays as it is."));
  }

  void TakePair(std::string_view line) {
    if (const std::optional<RegPairPlace> pair = FindRegPair(line))
      Set(line, pair->place.name.at, pair->place.name.size, SourceStyle::Section);
    else
      AddFault(line, tr("This line begins with no hive's name, so it is no key.  It stays as it is."));
  }

  void TakeKey(std::string_view line) {
    const std::optional<RegHeaderPlace> header = FindRegHeader(line);
    if (!header)
      return AddFault(line, tr("The key's path or the \"]\" behind it is missing.  The line stays as it is."));
    has_key_ = true;
    const bool is_deletion = header->kind == RegPiece::KeyDeletion;
    Set(line, 0, header->path.End() + 1, is_deletion ? SourceStyle::Deletion : SourceStyle::Section);
  }

  void TakeValue(std::string_view line) {
    const auto at = static_cast<std::size_t>(line.data() - part_.text.data());
    const std::string_view text = part_.text.substr(at);
    const std::optional<RegValuePlace> value = FindRegValue(text, line.size());
    if (!value) {
      // What is cut off below may be a value.
      if (part_.ends_within && line.ends_with('\\')) return SkipTo(text.data() + text.size(), line);
      return AddFault(line,
                      tr("This is no value: a name in quotes or \"@\", then \"=\", and a text in quotes, dword: or "
                         "hex: are wanted, and nothing behind them.  The line stays as it is."));
    }
    Set(text, value->name.at, value->name.size, SourceStyle::Name);
    const std::string_view assignment = value->assignment.Of(text);
    if (assignment == "-")
      Set(text, value->assignment.at, 1, SourceStyle::Deletion);
    else if (const std::size_t colon = assignment.find(':'); assignment.front() != '"' && colon != assignment.npos)
      Set(text, value->assignment.at, colon + 1, SourceStyle::Mark);
    const std::string_view whole = text.substr(0, std::max(line.size(), value->assignment.End()));
    if (!has_key_)
      AddFault(whole, tr("This value stands before the first key, so it belongs to none."));
    else
      TellImproper(whole, assignment);
    SkipTo(text.data() + value->assignment.End(), line);
  }

  void TellImproper(std::string_view lines, std::string_view assignment) {
    if (!is_whole_ || assignment.size() > kMostDecodedForFaults || assignment == "-") return;
    const std::optional<RegData> data = DecodeAssignment(assignment, coding_);
    if (!data || data->content != RegContent::Bytes || ContentOf(data->type) == RegContent::Bytes) return;
    AddFault(lines, tr("The bytes are no proper %1, so they are shown and edited as bytes.")
                        .arg(QString::fromStdString(RegTypeName(data->type))));
  }

  /// Takes the lines up to the one in which the value ends.
  void SkipTo(const char* end, std::string_view line) {
    while (end > line.data() + line.size() && lines_.Next(line))
      if (const std::size_t first = FirstText(line); first < line.size() && line[first] == ';')
        Set(line, 0, line.size(), SourceStyle::Comment);
  }

  const SourcePart& part_;
  const std::span<char> styles_;
  LineReader lines_;
  const RegCoding coding_;
  const bool is_whole_;
  bool has_key_;
  bool may_say_version_ = true;
  std::vector<SourceFault> faults_;
};

bool RegSourceLexer::GoesOn(std::string_view line) const {
  const std::size_t first = FirstText(line);
  if (first < line.size() && line[first] == ';') return true;
  const std::size_t last = line.find_last_not_of(" \t\r\n");
  return last != line.npos && line[last] == '\\';
}

std::vector<SourceFault> RegSourceLexer::Read(const SourcePart& part, std::span<char> styles) const {
  return Reading(document_, part, styles).Run(*this);
}

}  // namespace tme
