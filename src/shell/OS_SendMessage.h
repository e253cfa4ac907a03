#pragma once

#include <QString>

namespace tme {

struct CopyData;
struct Global;

/// dwData of a handed-over command line; records with any other value are ignored.
inline constexpr unsigned kCommandLineData = 3;
/// Bytes of text that fit the hand-over buffer beside the zero byte; longer text is cut at a character's end.
inline constexpr int kMaxCommandLineBytes = 254;

/// Second instance: hands one text of its command line to the running frame, whose handle stands in "WinRegistration",
/// and returns when the frame has opened it. Empty text: nothing. A frame that is still starting is waited for, up to
/// two seconds; false when there is none then.
bool SendCommandLine(const QString& command_line);

/// From here on, until UnhookFrameWindow, what later launches send reaches the frame.
void HookFrameWindow(Global& global, quint32 frame_handle);
void UnhookFrameWindow(Global& global);

/// Opens the paths of a received record, then cascades the windows.
void ReceiveCommandLine(Global& global, const CopyData& record);

}  // namespace tme
