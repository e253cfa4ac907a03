#pragma once

#include <functional>
#include <memory>

namespace tme {

/// Tells when the system wants the program to end: the desktop's session manager (on Windows the question that every
/// window gets before a log-off or shutdown) and the signals of a log-off or a kill (SIGTERM, SIGINT, SIGHUP; none on
/// Windows, where ending a program politely closes its frame). One for the process, after QApplication.
class SessionEnd {
 public:
  /// Whether the user may still be asked.
  enum class Questions { Allowed, Refused };

  /// `end` is called in the user-interface thread, between other events. For the session manager the session goes on
  /// ending when it returns.
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
