#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include "shell/BackgroundWork.h"

namespace tme {

struct VersionComparison;

/// Makes comparisons, of which only the one that was asked for last counts. They end with it, but for one that is left.
class LatestComparison {
 public:
  using Compare = std::function<void(const std::stop_token& stop, VersionComparison& result)>;
  using Done = std::function<void(std::shared_ptr<const VersionComparison>)>;
  struct Job {
    qint64 bytes;     ///< of both sides
    Compare compare;  ///< any thread calls it
    /// It uses nothing that may go before the application object. Nobody waits for it to stop then: cancelled, it goes
    /// on by itself, one at a time.
    bool stands_alone = false;
  };

  /// done: gets each result that counts, on this thread; one that failed when something was thrown.
  explicit LatestComparison(Done done);
  ~LatestComparison();
  LatestComparison(const LatestComparison&) = delete;
  LatestComparison& operator=(const LatestComparison&) = delete;

  /// Compares at once what takes no time that anyone notices, else on a thread of its own. prepare: called now.
  void Start(const std::function<Job()>& prepare);
  /// No result is wanted any more.
  void Cancel();

 private:
  /// Gives a failed result when something is thrown.
  void OrFail(const std::function<void()>& act);
  void Run(Job job);
  /// work: whose comparison has ended.
  void Ended(const BackgroundWork& work, const std::function<void()>& tell);
  /// Nobody wants what is running. False where it must be waited for.
  bool Leave();

  const Done done_;
  /// Grows with each that is asked for or cancelled.
  std::uint64_t wanted_ = 0;
  /// Waits for the end of one that no longer counts.
  std::optional<Job> pending_;
  /// A child of the application object once it is left.
  struct Running {
    BackgroundWork* work;
    bool stands_alone;
    std::stop_source stop;
  };
  std::optional<Running> running_;
  BackgroundWork* left_ = nullptr;
  /// This, for what runs; null once it is gone.
  std::shared_ptr<LatestComparison*> self_;
};

}  // namespace tme
