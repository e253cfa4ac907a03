#pragma once

#include <QTimer>

#include "shell/BackgroundWork.h"

namespace tme {

struct Global;

/// Prunes the history on a thread of its own, when the program has started and every hour after that.
class HistoryPruning : public QObject {
  Q_OBJECT

 public:
  explicit HistoryPruning(Global& global);

  void Start();
  /// Ends a pruning that runs; waits for a file at most.
  void Stop();

 private:
  void Prune();
  void TellFailure(const QString& reason);

  Global& global_;
  QTimer timer_;
  bool failure_told_ = false;
  BackgroundWork pruning_;
};

}  // namespace tme
