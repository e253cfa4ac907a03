#include <cstdlib>

#include "system/Process.h"

namespace tme {

void EnterProcess() {}

void LeaveProcess(int status) { std::exit(status); }

}  // namespace tme
