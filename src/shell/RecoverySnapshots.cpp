#include "shell/RecoverySnapshots.h"

#include <algorithm>

#include "history/History.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"

namespace tme {
namespace {

constexpr std::chrono::milliseconds kPollInterval{2000};
constexpr std::chrono::seconds kShortestInterval{5};
/// What keeps the window waiting for a second comes at most every fifty: two per cent of the time. The disk may take a
/// larger share, on its own thread.
constexpr int kWindowFactor = 50;
constexpr int kDiskFactor = 20;
/// A document that is gathered in less need not wait until a large one has made up for its share: at five seconds
/// between its own, it stays far below.
constexpr std::chrono::milliseconds kQuick{10};

}  // namespace

RecoverySnapshots::RecoverySnapshots(Global& global) : global_(global) {
  timer_.setInterval(kPollInterval);
  connect(&timer_, &QTimer::timeout, this, [this] { Poll(Clock::now()); });
}

void RecoverySnapshots::Start() { timer_.start(); }

void RecoverySnapshots::Stop() {
  timer_.stop();
  WaitForDisk();
}

void RecoverySnapshots::Poll(Clock::time_point now) {
  writing_.Collect();
  DocumentWindow* next = nullptr;
  Clock::time_point due_since = Clock::time_point::max();
  global_.documents.ForEach([&](DocumentWindow& window) {
    if (passed_over_.contains(&window)) return;
    // The changed flag alone may stand for a key that changed nothing.
    if (!window.IsOpen() || !window.IsModified()) return Forget(&window);
    auto watched = watched_.find(&window);
    if (watched == watched_.end()) watched = watched_.insert(&window, {SnapshotStore::NewId(), 0, false, {}, {}});
    const bool is_new = !watched->has_snapshot || watched->revision != window.Revision();
    const bool is_due = now >= watched->not_before && (watched->cost <= kQuick || now >= within_share_);
    if (!is_new || !is_due || watched->not_before >= due_since) return;
    due_since = watched->not_before;
    next = &window;
  });
  if (next && !writing_.IsRunning()) Take(*next, watched_[next], now);
}

void RecoverySnapshots::Adopt(DocumentWindow& window, const QString& id) {
  watched_.insert(&window, {id, window.Revision(), true, {}, {}});
}

void RecoverySnapshots::Forget(DocumentWindow* window) {
  const auto found = watched_.find(window);
  if (found == watched_.end()) return;
  if (writing_for_ == window) writing_for_ = nullptr;
  global_.history.snapshots.Forget(found->id);
  watched_.erase(found);
}

void RecoverySnapshots::LeaveForNextStart(DocumentWindow& window) {
  WaitForDisk();
  const Watched watched = watched_.take(&window);
  try {
    global_.history.snapshots.Put(watched.id.isEmpty() ? SnapshotStore::NewId() : watched.id, window.File().Origin(),
                                  window.Content());
  } catch (const std::exception&) {
    return;  // without room for it, the last snapshot has to do
  }
}

void RecoverySnapshots::Take(DocumentWindow& window, Watched& watched, Clock::time_point now) {
  const Clock::time_point start = Clock::now();
  watched.revision = window.Revision();
  watched.has_snapshot = true;
  watched.not_before = now + kShortestInterval;
  try {
    auto write = [this, id = watched.id, origin = window.File().Origin(), content = window.Content()](const auto&) {
      const Clock::time_point begin = Clock::now();
      written_.failure = global_.history.snapshots.Put(id, origin, content);
      written_.took = Clock::now() - begin;
    };
    written_ = {};
    writing_.Start(std::move(write), [this](const std::exception_ptr& thrown) { Finish(thrown); });
    writing_for_ = &window;
  } catch (const std::exception&) {  // no memory, no thread
    watched.has_snapshot = false;
    TellFailure(window, ExceptionText(std::current_exception()));
  }
  watched.cost = Clock::now() - start;
  within_share_ = std::max(within_share_, now) + kWindowFactor * watched.cost;
}

void RecoverySnapshots::Finish(const std::exception_ptr& thrown) {
  DocumentWindow* window = std::exchange(writing_for_, nullptr);
  const bool failed = thrown || written_.failure;
  if (const auto watched = watched_.find(window); watched != watched_.end()) {
    watched->not_before = std::max(watched->not_before, Clock::now() + kDiskFactor * written_.took);
    if (failed) watched->has_snapshot = false;
  }
  if (failed && window)
    TellFailure(*window, thrown ? ExceptionText(thrown) : QString::fromStdString(written_.failure->reason));
  // The next document need not wait for the timer; but if it did not, nobody waits for it here.
  const auto poll = [this] {
    if (timer_.isActive()) Poll(Clock::now());
  };
  QMetaObject::invokeMethod(this, poll, Qt::QueuedConnection);
}

void RecoverySnapshots::TellFailure(DocumentWindow& window, const QString& reason) {
  if (!window.IsOpen() || std::exchange(failure_told_, true)) return;
  window.AddNotice(tr("Unsaved changes cannot be put aside for the case of a crash: %1.").arg(reason));
}

}  // namespace tme
