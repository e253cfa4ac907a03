#include "shell/HistoryPruning.h"

#include <chrono>
#include <system_error>

#include "history/History.h"
#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"

namespace tme {

HistoryPruning::HistoryPruning(Global& global) : global_(global) {
  timer_.setInterval(std::chrono::hours(1));
  connect(&timer_, &QTimer::timeout, this, &HistoryPruning::Prune);
}

void HistoryPruning::Start() {
  timer_.start();
  Prune();
}

void HistoryPruning::Stop() {
  timer_.stop();
  pruning_.Stop();
}

void HistoryPruning::Prune() {
  if (pruning_.IsRunning()) return;
  const auto prune = [&pruner = global_.history.pruner](const std::stop_token& stop) {
    pruner.Prune(QDateTime::currentDateTimeUtc(), stop);
  };
  const auto done = [this](const std::exception_ptr& thrown) {
    if (thrown) TellFailure(ExceptionText(thrown));
  };
  try {
    pruning_.Start(prune, done);
  } catch (const std::system_error&) {
    return;  // no thread: the next hour will do
  }
}

void HistoryPruning::TellFailure(const QString& reason) {
  DocumentWindow* window = global_.area.ActiveDocument();
  if (!window || std::exchange(failure_told_, true)) return;
  window->AddNotice(tr("Old versions could not be removed from the history: %1.").arg(reason));
}

}  // namespace tme
