#pragma once

#include <functional>
#include <memory>

namespace tme {

/// Tells when the system wants the program to end: the signals of a log-off or a kill (SIGTERM, SIGINT, SIGHUP) and the
/// desktop's session manager. One for the process, after QApplication.
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
  class Signals;
  std::unique_ptr<Signals> signals_;
};

}  // namespace tme
