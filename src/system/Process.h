#pragma once

namespace tme {

/// Comes before anything of Qt's. On Windows it keeps Qt from compiling patterns to machine code.
void EnterProcess();

/// Ends the process, which has nothing left to do; what C streams still hold is written. On Windows nothing else runs
/// any more; elsewhere what runs when main returns.
[[noreturn]] void LeaveProcess(int status);

}  // namespace tme
