#include "windows/history/LatestComparison.h"

#include <QCoreApplication>
#include <new>
#include <stop_token>
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

LatestComparison::LatestComparison(Done done)
    : done_(std::move(done)), self_(std::make_shared<LatestComparison*>(this)) {}

LatestComparison::~LatestComparison() {
  *self_ = nullptr;
  if (running_ && !Leave()) delete running_->work;
}

void LatestComparison::Start(const std::function<Job()>& prepare) {
  Cancel();
  OrFail([&] {
    Job job = prepare();
    if (job.bytes <= kComparedAtOnce) {
      auto comparison = std::make_shared<VersionComparison>();
      job.compare({}, *comparison);
      done_(std::move(comparison));
    } else if (running_) {
      pending_ = std::move(job);
    } else {
      Run(std::move(job));
    }
  });
}

void LatestComparison::Cancel() {
  ++wanted_;
  pending_.reset();
  if (running_) Leave();
}

bool LatestComparison::Leave() {
  running_->stop.request_stop();
  const bool is_alone = *self_ == nullptr;
  if (!running_->stands_alone || (left_ != nullptr && !is_alone)) return false;
  left_ = running_->work;
  left_->setParent(QCoreApplication::instance());
  running_.reset();
  return true;
}

void LatestComparison::OrFail(const std::function<void()>& act) {
  try {
    act();
  } catch (const std::exception&) {  // no memory, no thread
    done_(FailedComparison(std::current_exception()));
  }
}

void LatestComparison::Run(Job job) {
  auto comparison = std::make_shared<VersionComparison>();
  auto owned = std::make_unique<BackgroundWork>();
  BackgroundWork* const work = owned.get();
  const std::stop_source stop;
  auto compare = [compare = std::move(job.compare), comparison, token = stop.get_token()](const std::stop_token& end) {
    // Whoever waits for the work, and whoever leaves it, ask in ways of their own.
    std::stop_source either;
    const std::stop_callback on_end(end, [&either] { either.request_stop(); });
    const std::stop_callback on_leave(token, [&either] { either.request_stop(); });
    compare(either.get_token(), *comparison);
  };
  const auto done = [self = self_, work, comparison, number = wanted_](const std::exception_ptr& thrown) {
    work->deleteLater();
    if (LatestComparison* owner = *self)
      owner->Ended(*work, [&] {
        if (number == owner->wanted_) owner->done_(thrown ? FailedComparison(thrown) : comparison);
      });
  };
  work->Start(std::move(compare), done);
  running_ = {owned.release(), job.stands_alone, stop};
}

void LatestComparison::Ended(const BackgroundWork& work, const std::function<void()>& tell) {
  if (left_ == &work)
    left_ = nullptr;
  else
    running_.reset();
  OrFail([&] {
    tell();
    if (pending_ && !running_) Run(*std::exchange(pending_, std::nullopt));
  });
}

}  // namespace tme
