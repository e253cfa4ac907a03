#include "shell/OS_SendMessage.h"

#include <QDeadlineTimer>
#include <QThread>

#include "shell/CommandLineRecord.h"
#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"
#include "shell/mdform_TMEditor.h"
#include "system/InstanceLink.h"
#include "system/RegistryAccess.h"

using namespace Qt::StringLiterals;

namespace tme {

namespace {

Delivery SendOnce(const QString& command_line) {
  bool numeric = false;
  const quint32 number = RegistryAccess().ReadValue(SettingsRoot, u"WinRegistration"_s).toUInt(&numeric);
  const std::optional<std::uint32_t> handle = numeric ? std::optional(number) : std::nullopt;
  if (!FitsCommandLineRecord(command_line)) {
    const Delivery delivery = InstanceLink::Send(handle, LongCommandLineRecord(command_line));
    if (delivery != Delivery::NotTaken) return delivery;
  }
  return InstanceLink::Send(handle, CommandLineRecord(command_line));
}

}  // namespace

bool SendCommandLine(const QString& command_line, InstanceLink& own_link, std::chrono::milliseconds patience) {
  if (command_line.isEmpty()) return true;
  constexpr unsigned long kPauseMs = 50;
  const QDeadlineTimer end(patience);
  while (true) {
    if (SendOnce(command_line) == Delivery::DealtWith) return true;
    if (end.hasExpired() || own_link.ClaimOnlyInstance()) return false;
    QThread::msleep(kPauseMs);
  }
}

void HookFrameWindow(Global& global, quint32 frame_handle) {
  global.instance_link.Listen(frame_handle, [&global](const CopyData& record) { ReceiveCommandLine(global, record); });
}

void UnhookFrameWindow(Global& global) { global.instance_link.StopListening(); }

void ReceiveCommandLine(Global& global, const CopyData& record) {
  const std::optional<ReceivedCommandLine> command_line = CommandLineOf(record);
  if (!command_line) return;
  // First, since opening may ask, and a question belongs before the eyes.
  global.frame.ComeToFront();
  if (command_line->is_cut)
    OpenWholePath(global, command_line->text);
  else
    OpenPathList(global, command_line->text);
  global.area.CascadeAfterOpening();
}

}  // namespace tme
