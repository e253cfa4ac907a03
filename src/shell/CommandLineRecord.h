#pragma once

#include <QString>
#include <optional>

namespace tme {

struct CopyData;

/// dwData of a handed-over command line; records with any other value are ignored.
inline constexpr unsigned kCommandLineData = 3;
/// Bytes of text that fit the hand-over buffer beside the zero byte; longer text is cut at a character's end.
inline constexpr int kMaxCommandLineBytes = 254;

CopyData CommandLineRecord(const QString& command_line);
/// The text up to the first zero byte, or the end; null for a record of another meaning.
std::optional<QString> CommandLineOf(const CopyData& record);

}  // namespace tme
