#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace tme {

class RegDocument;

/// Where a read stands.
struct RegProgress {
  enum class Phase : std::uint8_t { Counting, Importing };
  Phase phase = Phase::Counting;
  /// Lines after the first one: counted so far, or imported so far.
  std::uint64_t lines = 0;
  /// Importing: lines counted before.
  std::uint64_t total = 0;
  /// Stage within the current line, 1 to 7.
  int stage = 0;
};

struct RegQuestions {
  /// The first line is not exactly "REGEDIT4": true reads on.
  std::function<bool()> wrong_header;
  /// There are 500 lines after the first: true reads on.
  std::function<bool()> large_file;
  /// Is called every few thousand lines at most; may be empty. Must not change the document.
  std::function<void(const RegProgress&)> progress;
};

/// Bytes. A long key before many failed lines would fill the memory.
inline constexpr std::size_t kMaxErrorLog = std::size_t{1} << 26;

enum class RegReadEnd : std::uint8_t {
  EndOfInput,
  HeaderRefused,
  LargeFileRefused,
  /// A key line of no known hive ended the import at once; intended.
  UnknownHive,
};

struct RegReadResult {
  RegReadEnd end = RegReadEnd::EndOfInput;
  /// Lines after the first one.
  std::uint64_t line_count = 0;
  /// UnknownHive: 1-based number of the line that ended it.
  std::uint64_t ended_at_line = 0;
  /// UnknownHive: that line deletes a key of a known hive ("[-HKEY_USERS\\Alpha]").
  bool ended_at_deletion = false;
  /// Failed lines as the error log wants them: the current key's text, ": ", the line, a bare CR each. Empty after
  /// UnknownHive: nothing is logged then; intended. No entry is added beyond kMaxErrorLog.
  std::string error_log = {};

  // Lines that were not taken, by reason. Blank lines do not count.
  std::uint64_t failed_lines = 0;
  std::uint64_t comment_lines = 0;
  /// Values like hex(2): are taken as strings that hold only their first line; these are the lines that follow, and how
  /// many such values there are.
  std::uint64_t typed_hex_values = 0;
  std::uint64_t typed_hex_lines = 0;
  /// UnknownHive: the line that ended it and all after it.
  std::uint64_t after_unknown_hive = 0;
  /// The last line of a file is never processed; 1 when it held something.
  std::uint64_t unfinished_last_line = 0;
  /// Anything else that was not taken: lines before the first key (but not the first line, which was asked about),
  /// lines that are no value.
  std::uint64_t other_lines = 0;

  // What was taken, but a save writes it otherwise.
  /// The first line was none of a REGEDIT4 file.
  bool other_header = false;
  /// "@=" lines, whose values are named "[default]" from then on.
  std::uint64_t default_values = 0;
  /// "name"=- lines, taken for the text "-".
  std::uint64_t value_deletions = 0;
  /// Values in another form than a save gives them (RegLineForm::Other).
  std::uint64_t other_forms = 0;
  /// Key lines whose last character was dropped although it was no "]".
  std::uint64_t cut_keys = 0;
};

/// Fills a fresh document from the text of a registry export file, whose lines may end in CR LF, LF or CR. The cost is
/// linear. The root is selected afterwards.
/// text: UTF-8, taken over by the document, and changed where lines of one value are joined.
RegReadResult ReadReg(RegDocument& document, std::string text, const RegQuestions& ask);

}  // namespace tme
