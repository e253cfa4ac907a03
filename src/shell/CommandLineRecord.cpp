#include "shell/CommandLineRecord.h"

#include "base/Utf8.h"
#include "platform/InstanceLink.h"
#include "shell/DisplayText.h"

namespace tme {
namespace {

/// At most kMaxCommandLineBytes, never half a character.
QByteArray CutAtCharacter(QByteArray text) {
  if (text.size() <= kMaxCommandLineBytes) return text;
  text.truncate(static_cast<qsizetype>(
      utf8::CharacterStart({text.constData(), static_cast<std::size_t>(text.size())}, kMaxCommandLineBytes)));
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
