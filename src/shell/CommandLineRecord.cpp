#include "shell/CommandLineRecord.h"

#include "base/Utf8.h"
#include "shell/DisplayText.h"
#include "system/InstanceLink.h"

namespace tme {
namespace {

/// Never half a character.
QByteArray CutAtCharacter(QByteArray text, std::uint32_t most) {
  if (text.size() <= static_cast<qsizetype>(most)) return text;
  text.truncate(
      static_cast<qsizetype>(utf8::CharacterStart({text.constData(), static_cast<std::size_t>(text.size())}, most)));
  return text;
}

}  // namespace

CopyData CommandLineRecord(const QString& command_line) {
  return {kCommandLineData, CutAtCharacter(command_line.toUtf8(), kMaxCommandLineBytes) + '\0'};
}

CopyData LongCommandLineRecord(const QString& command_line) {
  return {kLongData, CutAtCharacter(command_line.toUtf8(), kMaxLongDataBytes - 1) + '\0'};
}

bool FitsCommandLineRecord(const QString& command_line) { return command_line.toUtf8().size() <= kMaxCommandLineBytes; }

std::optional<ReceivedCommandLine> CommandLineOf(const CopyData& record) {
  if (record.dwData != kCommandLineData && record.dwData != kLongData) return std::nullopt;
  const std::string_view text(record.data.constData(), static_cast<std::size_t>(record.data.size()));
  const std::size_t end = text.find('\0');
  // A buffer without an end was full.
  const bool is_full = end == std::string_view::npos && text.size() == MaxDataBytes(record.dwData);
  return ReceivedCommandLine{TextOf(text.substr(0, end)), record.is_cut || is_full};
}

}  // namespace tme
