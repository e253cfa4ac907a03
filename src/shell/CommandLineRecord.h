#pragma once

#include <QString>
#include <optional>

namespace tme {

struct CopyData;

/// dwData of a handed-over command line; records with any other value are ignored.
inline constexpr unsigned kCommandLineData = 3;
/// Bytes of text that fit the hand-over buffer beside the zero byte; longer text is cut at a character's end.
inline constexpr int kMaxCommandLineBytes = 254;

bool FitsCommandLineRecord(const QString& command_line);
CopyData CommandLineRecord(const QString& command_line);
/// The same for a text that does not fit: whole, for receivers that know kLongData.
CopyData LongCommandLineRecord(const QString& command_line);

struct ReceivedCommandLine {
  QString text;
  bool is_cut = false;  ///< there was more of it
};
/// The text up to the first zero byte, or the end; null for a record of another meaning.
std::optional<ReceivedCommandLine> CommandLineOf(const CopyData& record);

}  // namespace tme
