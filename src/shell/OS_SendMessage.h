#pragma once

#include <QString>
#include <chrono>

namespace tme {

struct CopyData;
struct Global;
class InstanceLink;

/// Second instance: hands one text of its command line to the running frame and returns when that has opened it; an
/// empty text is nothing to do. Waits for a frame that is still starting. Returns false when the patience is at its
/// end, or once the frame has gone: own_link holds the claim then.
bool SendCommandLine(const QString& command_line, InstanceLink& own_link,
                     std::chrono::milliseconds patience = std::chrono::seconds(3));

/// From here on, until UnhookFrameWindow, what later launches send reaches the frame.
void HookFrameWindow(Global& global, quint32 frame_handle);
void UnhookFrameWindow(Global& global);

/// Brings the frame to the front and opens the paths of a received record, then cascades the windows.
void ReceiveCommandLine(Global& global, const CopyData& record);

}  // namespace tme
