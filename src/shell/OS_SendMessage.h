#pragma once

#include <QString>

namespace tme {

struct CopyData;
struct Global;

/// Second instance: hands one text of its command line to the running frame, whose handle stands in "WinRegistration",
/// and returns when the frame has opened it. Empty text: nothing. A frame that is still starting is waited for, up to
/// two seconds; false when there is none then.
bool SendCommandLine(const QString& command_line);

/// From here on, until UnhookFrameWindow, what later launches send reaches the frame.
void HookFrameWindow(Global& global, quint32 frame_handle);
void UnhookFrameWindow(Global& global);

/// Brings the frame to the front and opens the paths of a received record, then cascades the windows.
void ReceiveCommandLine(Global& global, const CopyData& record);

}  // namespace tme
