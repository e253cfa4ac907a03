#include "windows/history/LatestComparison.h"

#include <new>
#include <utility>

#include "windows/history/VersionComparison.h"

namespace tme {
namespace {

/// Up to here a window waits for the comparison.
constexpr qint64 kComparedAtOnce = qint64{1} << 20;

/// What is shown instead of a comparison that threw.
std::shared_ptr<const VersionComparison> FailedComparison(const std::exception_ptr& thrown) {
  auto comparison = std::make_shared<VersionComparison>();
  try {
    std::rethrow_exception(thrown);
  } catch (const std::bad_alloc&) {
    comparison->outcome = VersionComparison::Outcome::TooLarge;
  } catch (...) {
    comparison->outcome = VersionComparison::Outcome::Failed;
    comparison->failure = ExceptionText(thrown);
  }
  return comparison;
}

}  // namespace

void LatestComparison::Start(const std::function<Job()>& prepare) {
  Cancel();
  OrFail([&] {
    Job job = prepare();
    if (job.bytes <= kComparedAtOnce) {
      auto comparison = std::make_shared<VersionComparison>();
      job.compare({}, *comparison);
      done_(std::move(comparison));
    } else if (working_.IsRunning()) {
      pending_ = std::move(job.compare);
    } else {
      Run(std::move(job.compare));
    }
  });
}

void LatestComparison::Cancel() {
  ++wanted_;
  pending_ = nullptr;
}

void LatestComparison::OrFail(const std::function<void()>& act) {
  try {
    act();
  } catch (const std::exception&) {  // no memory, no thread
    done_(FailedComparison(std::current_exception()));
  }
}

void LatestComparison::Run(Compare compare) {
  auto comparison = std::make_shared<VersionComparison>();
  auto work = [compare = std::move(compare), comparison](const std::stop_token& stop) { compare(stop, *comparison); };
  const auto done = [this, comparison, number = wanted_](const std::exception_ptr& thrown) {
    OrFail([&] {
      if (number == wanted_)
        done_(thrown ? FailedComparison(thrown) : comparison);
      else if (pending_)
        Run(std::exchange(pending_, nullptr));
    });
  };
  working_.Start(std::move(work), done);
}

}  // namespace tme
