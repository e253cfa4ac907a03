#include "shell/OS_SendMessage.h"

#include <QThread>
#include <algorithm>

#include "platform/InstanceLink.h"
#include "platform/RegistryAccess.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"
#include "shell/mdform_TMEditor.h"

using namespace Qt::StringLiterals;

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

bool SendCommandLine(const QString& command_line) {
  if (command_line.isEmpty()) return true;
  constexpr int kTries = 40;
  constexpr unsigned long kPauseMs = 50;
  for (int attempt = 0; attempt < kTries; ++attempt) {
    if (attempt > 0) QThread::msleep(kPauseMs);
    bool numeric = false;
    const quint32 handle = RegistryAccess().ReadValue(SettingsRoot, u"WinRegistration"_s).toUInt(&numeric);
    if (!numeric) continue;
    const QByteArray text = CutAtCharacter(command_line.toUtf8());
    if (InstanceLink::Send(handle, {kCommandLineData, text + '\0'})) return true;
  }
  return false;
}

void HookFrameWindow(Global& global, quint32 frame_handle) {
  global.instance_link.Listen(frame_handle, [&global](const CopyData& record) { ReceiveCommandLine(global, record); });
}

void UnhookFrameWindow(Global& global) { global.instance_link.StopListening(); }

void ReceiveCommandLine(Global& global, const CopyData& record) {
  if (record.dwData != kCommandLineData) return;
  const QByteArray& text = record.data;
  OpenPathList(global, QString::fromUtf8(text.first(std::find(text.begin(), text.end(), 0) - text.begin())));
  global.frame->CascadeAfterOpening();
  global.frame->ComeToFront();
}

}  // namespace tme
