#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "platform/SessionEnd.h"

namespace tme {

/// The libraries' last destructors do not run: in a program built with MinGW what belongs to a thread is freed before
/// those that look at it.
void LeaveProcess(int status) {
  std::fflush(nullptr);
  ::TerminateProcess(::GetCurrentProcess(), static_cast<UINT>(status));
  std::_Exit(status);  // not reached
}

/// A program with windows gets no signals here.
class SessionEnd::Signals {};

SessionEnd::SessionEnd(const std::function<void(Questions)>& end) { FollowSessionManager(end); }

SessionEnd::~SessionEnd() = default;

}  // namespace tme
