#include "shell/CommandLineRecord.h"

#include "platform/InstanceLink.h"
#include "shell/DisplayText.h"

namespace tme {
namespace {

/// At most kMaxCommandLineBytes, never half a character.
QByteArray CutAtCharacter(QByteArray text) {
  if (text.size() <= kMaxCommandLineBytes) return text;
  qsizetype end = kMaxCommandLineBytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.truncate(end);
  return text;
}

}  // namespace

CopyData CommandLineRecord(const QString& command_line) {
  return {kCommandLineData, CutAtCharacter(command_line.toUtf8()) + '\0'};
}

std::optional<QString> CommandLineOf(const CopyData& record) {
  if (record.dwData != kCommandLineData) return std::nullopt;
  const std::string_view text(record.data.constData(), static_cast<std::size_t>(record.data.size()));
  return TextOf(text.substr(0, text.find('\0')));
}

}  // namespace tme
