#include "shell/BackgroundWork.h"

#include <QCoreApplication>
#include <new>
#include <utility>

namespace tme {

void BackgroundWork::Start(Work work, Done done) {
  has_ended_ = false;
  thrown_ = nullptr;
  thread_ = std::jthread([this, work = std::move(work)](const std::stop_token& stop) {
    try {
      work(stop);
    } catch (...) {
      thrown_ = std::current_exception();
    }
    has_ended_ = true;
    QMetaObject::invokeMethod(this, &BackgroundWork::Collect, Qt::QueuedConnection);
  });
  done_ = std::move(done);
}

void BackgroundWork::Collect() {
  if (has_ended_) Wait();
}

void BackgroundWork::Wait() {
  if (!IsRunning()) return;
  thread_.join();
  std::exchange(done_, nullptr)(std::exchange(thrown_, nullptr));
}

void BackgroundWork::Stop() { thread_ = {}; }

QString ExceptionText(const std::exception_ptr& thrown) {
  try {
    std::rethrow_exception(thrown);
  } catch (const std::bad_alloc&) {
    return QCoreApplication::translate("BackgroundWork", "There is not enough memory");
  } catch (const std::exception& error) {
    return QString::fromLocal8Bit(error.what());
  } catch (...) {
    return QCoreApplication::translate("BackgroundWork", "Unknown error");
  }
}

}  // namespace tme
