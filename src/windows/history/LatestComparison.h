#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "shell/BackgroundWork.h"

namespace tme {

struct VersionComparison;

/// Makes comparisons, of which only the one that was asked for last counts. They end with it.
class LatestComparison {
 public:
  using Compare = std::function<void(const std::stop_token& stop, VersionComparison& result)>;
  using Done = std::function<void(std::shared_ptr<const VersionComparison>)>;
  struct Job {
    qint64 bytes;     ///< of both sides
    Compare compare;  ///< any thread calls it
  };

  /// done: gets each result that counts, on this thread; one that failed when something was thrown.
  explicit LatestComparison(Done done) : done_(std::move(done)) {}

  /// Compares at once what takes no time that anyone notices, else on a thread of its own. prepare: called now.
  void Start(const std::function<Job()>& prepare);
  /// No result is wanted any more.
  void Cancel();

 private:
  /// Gives a failed result when something is thrown.
  void OrFail(const std::function<void()>& act);
  void Run(Compare compare);

  const Done done_;
  /// Grows with each that is asked for or cancelled.
  std::uint64_t wanted_ = 0;
  /// Waits for the end of one that no longer counts.
  Compare pending_;
  BackgroundWork working_;
};

}  // namespace tme
