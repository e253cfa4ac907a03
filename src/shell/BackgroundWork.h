#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <exception>
#include <functional>
#include <stop_token>
#include <thread>

namespace tme {

/// One piece of work at a time on a thread of its own. Whatever it throws comes back to the thread that started it, so
/// that nothing ends the program there or stays unsaid.
class BackgroundWork : public QObject {
 public:
  using Work = std::function<void(const std::stop_token&)>;
  /// thrown: null when all went well.
  using Done = std::function<void(const std::exception_ptr& thrown)>;

  /// Begins the work, which must not be running, and calls `done` on this thread once it has ended: from the event
  /// loop, Collect or Wait. Throws std::system_error when there is no thread; nothing is called then.
  void Start(Work work, Done done);
  /// True until `done` was called.
  bool IsRunning() const { return thread_.joinable(); }
  /// Calls `done` now if the work has ended.
  void Collect();
  /// Waits for the work and calls `done`.
  void Wait();
  /// Asks the work to stop, as the destructor does, and waits for it; `done` is not called.
  void Stop();

 private:
  Done done_;
  std::exception_ptr thrown_;
  std::atomic<bool> has_ended_ = false;
  std::jthread thread_;  ///< last, so that it ends before anything else goes
};

/// What was thrown, in words for a sentence: without a full stop.
QString ExceptionText(const std::exception_ptr& thrown);

}  // namespace tme
