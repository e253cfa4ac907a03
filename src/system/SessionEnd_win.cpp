#include "system/SessionEnd.h"

namespace tme {

/// A program with windows gets no signals here.
class SessionEnd::Signals {};

SessionEnd::SessionEnd(const std::function<void(Questions)>& end) { FollowSessionManager(end); }

SessionEnd::~SessionEnd() = default;

}  // namespace tme
