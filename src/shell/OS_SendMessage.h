#pragma once

#include <QString>
#include <chrono>

namespace tme {

struct CopyData;
struct Global;
class InstanceLink;

/// Second instance: hands one text of its command line to the running frame, whose handle stands in "WinRegistration"
/// or which the claim tells, and returns when the frame has opened it. Empty text: nothing. A frame that is still
/// starting is waited for, but not once it has gone: false then, and own_link holds the claim, or when the patience is
/// at its end.
bool SendCommandLine(const QString& command_line, InstanceLink& own_link,
                     std::chrono::milliseconds patience = std::chrono::seconds(3));

/// From here on, until UnhookFrameWindow, what later launches send reaches the frame.
void HookFrameWindow(Global& global, quint32 frame_handle);
void UnhookFrameWindow(Global& global);

/// Brings the frame to the front and opens the paths of a received record, then cascades the windows.
void ReceiveCommandLine(Global& global, const CopyData& record);

}  // namespace tme
