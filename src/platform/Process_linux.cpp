#include <cstdlib>

#include "platform/Process.h"

namespace tme {

void EnterProcess() {}

void LeaveProcess(int status) { std::exit(status); }

}  // namespace tme
