#include "system/RecordQueue.h"

#include <QGuiApplication>
#include <QTimer>
#include <chrono>
#include <utility>

namespace tme {
namespace {

/// After it, whether the wait cursor has gone is asked again.
constexpr std::chrono::milliseconds kPause{50};

}  // namespace

void RecordQueue::Add(CopyData record, std::function<void()> done) {
  waiting_.push_back({std::move(record), std::move(done)});
}

void RecordQueue::Deliver() {
  if (delivering_ || waiting_.empty()) return;
  const std::shared_ptr<RecordQueue> alive = shared_from_this();
  if (QGuiApplication::overrideCursor()) return QTimer::singleShot(kPause, qApp, [alive] { alive->Deliver(); });
  delivering_ = true;
  while (!waiting_.empty()) {
    const Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    receive_(next.record);
    next.done();
  }
  delivering_ = false;
}

void RecordQueue::DeliverLater() {
  QMetaObject::invokeMethod(
      qApp, [alive = shared_from_this()] { alive->Deliver(); }, Qt::QueuedConnection);
}

}  // namespace tme
