#pragma once

#include <functional>
#include <memory>

namespace tme {

/// Tells when the system wants the program to end: through the session manager (on Windows, the question before a
/// log-off) or a signal (SIGTERM, SIGINT, SIGHUP; none on Windows). One for the process, after QApplication.
class SessionEnd {
 public:
  /// Whether the user may still be asked.
  enum class Questions { Allowed, Refused };

  /// `end` is called on the user-interface thread, between other events. The session manager waits until it returns.
  explicit SessionEnd(const std::function<void(Questions questions)>& end);
  /// The signals do again what they did before.
  ~SessionEnd();
  SessionEnd(const SessionEnd&) = delete;
  SessionEnd& operator=(const SessionEnd&) = delete;

 private:
  static void FollowSessionManager(const std::function<void(Questions questions)>& end);

  class Signals;
  std::unique_ptr<Signals> signals_;
};

}  // namespace tme
