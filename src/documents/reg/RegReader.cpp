#include "documents/reg/RegReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/LineReader.h"
#include "base/Utf8.h"
#include "documents/reg/RegDocumentLoad.h"
#include "documents/reg/RegValueLine.h"

namespace tme {

namespace {

constexpr std::string_view kExpectedHeader = "REGEDIT4";
constexpr std::uint64_t kLargeFileLines = 500;
constexpr std::size_t kCountBlock = std::size_t{1} << 20;
constexpr std::uint64_t kLinesPerProgress = 4096;
/// Value lines are rarely shorter, so more records than one for so many bytes are not made room for.
constexpr std::size_t kShortValueLine = 16;

// Stages within a line.
constexpr int kLineRead = 2;
constexpr int kLinePassedOver = 5;
constexpr int kValueTaken = 6;
constexpr int kKeyTaken = 7;

bool IsBlank(std::string_view line) { return line.find_first_not_of(" \t") == std::string_view::npos; }

std::string_view Trimmed(std::string_view line) {
  const std::size_t first = line.find_first_not_of(' ');
  if (first == std::string_view::npos) return line.substr(line.size());
  return line.substr(first, line.find_last_not_of(' ') - first + 1);
}

/// Counts the line ends from first up to last. CR LF is one, and counts at its LF.
std::uint64_t CountLineEnds(const std::string& text, std::size_t first, std::size_t last) {
  const char* bytes = text.c_str();  // with a NUL behind the last one
  std::uint64_t ends = 0;
  while (first < last) {
    // Few enough for a counter of one byte, which compilers make the most of.
    const std::size_t stop = std::min(last, first + 240);
    std::uint8_t here = 0;
    for (; first < stop; ++first) {
      const bool lf = bytes[first] == '\n';
      const bool lone_cr = (bytes[first] == '\r') & (bytes[first + 1] != '\n');
      here = static_cast<std::uint8_t>(here + (lf | lone_cr));
    }
    ends += here;
  }
  return ends;
}

/// Returns false when there are too many for the user.
bool CountLines(const std::string& text, const RegQuestions& ask, RegReadResult& result) {
  bool asked = false;
  std::uint64_t lines = 0;
  for (std::size_t at = 0; at < text.size(); at += kCountBlock) {
    const std::size_t end = std::min(text.size(), at + kCountBlock);
    lines += CountLineEnds(text, at, end);
    if (end == text.size() && text.back() != '\r' && text.back() != '\n') ++lines;
    result.line_count = lines > 0 ? lines - 1 : 0;
    if (result.line_count < kLargeFileLines) continue;
    if (!std::exchange(asked, true) && !ask.large_file()) {
      result.end = RegReadEnd::LargeFileRefused;
      result.line_count = kLargeFileLines;
      return false;
    }
    if (ask.progress) ask.progress({.phase = RegProgress::Phase::Counting, .lines = result.line_count});
  }
  return true;
}

bool MayRead(const std::string& text, const RegQuestions& ask, RegReadResult& result) {
  std::string_view first_line;
  LineReader(text).Next(first_line);
  result.other_header = first_line != kExpectedHeader;
  if (result.other_header && !ask.wrong_header()) {
    result.end = RegReadEnd::HeaderRefused;
    return false;
  }
  return CountLines(text, ask, result);
}

class RegImport {
 public:
  RegImport(RegDocument& document, std::string text, const RegQuestions& ask, RegReadResult& result)
      : ask_(ask),
        result_(result),
        root_(document.Root()),
        load_(document, std::move(text),
              std::min(static_cast<std::size_t>(result.line_count), text.size() / kShortValueLine)),
        lines_(load_.Text()),
        progress_{.phase = RegProgress::Phase::Importing, .total = result.line_count},
        current_(root_) {}

  void Run() {
    std::string_view line;
    if (!FindFirstKey(line) || !TakeKeyLine(line)) return;
    while (NextLine(line)) {
      if (lines_.AtEnd()) {
        // Intended: the last line is never taken, whatever it is. Files written by this program end with an empty one.
        if (!IsBlank(line)) result_.unfinished_last_line = 1;
        return;
      }
      if (line.empty()) continue;
      switch (line.front()) {
        case '[':
          if (!TakeKeyLine(line)) return;
          break;
        case '"':
        case '@':
          TakeValueLine(line);
          break;
        default:
          PassOver(line);
      }
    }
  }

 private:
  bool NextLine(std::string_view& line) {
    if (lines_.Number() % kLinesPerProgress == 1 && ask_.progress) {
      progress_.lines = lines_.Number() - 1;
      ask_.progress(progress_);
    }
    progress_.stage = kLineRead;
    return lines_.Next(line);
  }

  bool FindFirstKey(std::string_view& line) {
    while (NextLine(line)) {
      if (line.starts_with('[')) return true;
      if (lines_.Number() > 1) PassOver(line);
    }
    return false;
  }

  /// Returns false at a hive that is none: the import ends there without a word. Intended; the keys before it stay.
  bool TakeKeyLine(std::string_view line) {
    in_typed_hex_ = false;
    std::string_view path = line.substr(1);
    if (path.empty()) {
      LogFailure(line);
      return true;
    }
    // Whatever it is: "]" is not asked for.
    path.remove_suffix(utf8::LastCharacterBytes(path));
    current_ = root_;
    if (TakeBareHive(path)) return true;
    const std::size_t backslash = path.find('\\');
    if (backslash == std::string_view::npos) {
      LogFailure(line);
      return true;
    }
    if (!IsHiveName(path.substr(0, backslash))) {
      EndAtUnknownHive(path.substr(0, backslash));
      return false;
    }
    if (!line.ends_with(']')) ++result_.cut_keys;
    if (path.ends_with('\\')) path.remove_suffix(1);
    current_ = load_.KeyOf(path);
    progress_.stage = kKeyTaken;
    return true;
  }

  /// A hive's name alone is accepted for the first hive only, and leaves the root selected, so that its values are
  /// under the root, not under the hive. Intended: any other such line is a failed one.
  bool TakeBareHive(std::string_view path) {
    if (!IsHiveName(path)) return false;
    if (root_->ChildCount() > 0) return root_->Child(0)->Text() == path;
    load_.KeyOf(path);
    return true;
  }

  void TakeValueLine(std::string_view line) {
    RegValueLine value;
    const bool parsed =
        line.front() == '"' ? ParseValueLine(line, value) : ParseDefaultLine(line, load_.Texts(), value);
    in_typed_hex_ = parsed && value.form == RegLineForm::TypedHex && line.ends_with('\\');
    if (!parsed) {
      LogFailure(line);
      return;
    }
    if (value.form == RegLineForm::TypedHex) ++result_.typed_hex_values;
    if (value.type == RegType::Hex && value.data.ends_with('\\')) {
      // Joining writes over the backslashes at the end of the line, but over nothing before them.
      const std::size_t kept = line.find_last_not_of('\\') + 1;
      if (!JoinHexLines(value.data)) {
        LogFailure(std::string(line.substr(0, kept)).append(line.size() - kept, '\\'));
        return;
      }
    }
    load_.AppendValue(current_, value.type, value.name, value.data);
    if (line.front() == '@') ++result_.default_values;
    if (value.form == RegLineForm::Deletion) ++result_.value_deletions;
    if (value.form == RegLineForm::Other) ++result_.other_forms;
    progress_.stage = kValueTaken;
  }

  /// Joins the lines that follow to data in place, over what was read already. Returns false when they run out.
  bool JoinHexLines(std::string_view& data) {
    char* text = load_.Text().data();
    char* joined = text + (data.data() - text);
    std::size_t size = data.size();
    while (size > 0 && joined[size - 1] == '\\') {
      --size;
      std::string_view line;
      if (!NextLine(line)) return false;
      line = Trimmed(line);
      std::memmove(joined + size, line.data(), line.size());
      size += line.size();
    }
    data = {joined, size};
    return true;
  }

  /// Counts a line that is neither key nor value.
  void PassOver(std::string_view line) {
    progress_.stage = kLinePassedOver;
    const bool continues_typed_hex = in_typed_hex_ && (line.starts_with(' ') || line.starts_with('\t'));
    in_typed_hex_ = continues_typed_hex && line.ends_with('\\');
    if (continues_typed_hex) {
      ++result_.typed_hex_lines;
    } else if (line.starts_with(';')) {
      ++result_.comment_lines;
    } else if (!IsBlank(line)) {
      ++result_.other_lines;
    }
  }

  void LogFailure(std::string_view line) {
    ++result_.failed_lines;
    const std::string_view key = current_->Text();
    if (result_.error_log.size() + key.size() + line.size() > kMaxErrorLog) return;
    result_.error_log.append(key).append(": ").append(line).append("\r");
  }

  void EndAtUnknownHive(std::string_view hive) {
    result_.end = RegReadEnd::UnknownHive;
    result_.ended_at_line = lines_.Number();
    result_.ended_at_deletion = hive.starts_with('-') && IsHiveName(hive.substr(1));
    result_.error_log.clear();
    std::string_view line;
    for (result_.after_unknown_hive = 1; lines_.Next(line);) {
      if (!IsBlank(line)) ++result_.after_unknown_hive;
    }
  }

  const RegQuestions& ask_;
  RegReadResult& result_;
  RegNode* const root_;
  /// Its text may change behind the current line.
  RegDocument::Load load_;
  LineReader lines_;
  RegProgress progress_;
  /// What the next value belongs to.
  RegNode* current_;
  /// The line before was part of a typed hex value that goes on.
  bool in_typed_hex_ = false;
};

}  // namespace

RegReadResult ReadReg(RegDocument& document, std::string text, const RegQuestions& ask) {
  RegReadResult result;
  if (!MayRead(text, ask, result)) return result;
  RegImport(document, std::move(text), ask, result).Run();
  return result;
}

}  // namespace tme
