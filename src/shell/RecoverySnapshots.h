#pragma once

#include <QHash>
#include <QSet>
#include <QTimer>
#include <chrono>

#include "files/FileFailure.h"
#include "shell/BackgroundWork.h"

namespace tme {

class DocumentWindow;
struct Global;

/// Takes recovery snapshots of documents with unsaved changes, so that a crash loses no more than a few seconds of work
/// (CrashRecovery opens them). A document's content is gathered on the window's thread and written on another one.
class RecoverySnapshots : public QObject {
  Q_OBJECT

 public:
  using Clock = std::chrono::steady_clock;

  explicit RecoverySnapshots(Global& global);

  /// From now on polls all documents every two seconds.
  void Start();
  /// Polls no more and waits for the disk: before the windows go.
  void Stop();
  /// Takes a snapshot of the document that changed and is due longest; forgets those of documents that are saved or
  /// closed. The next one follows when the disk is done.
  void Poll(Clock::time_point now);
  void WaitForDisk() { writing_.Wait(); }
  /// The snapshot of this id holds what the document shows now.
  void Adopt(DocumentWindow& window, const QString& id);
  /// Takes a snapshot at once and leaves it: the next start opens it, unless the document goes on here.
  void LeaveForNextStart(DocumentWindow& window);
  /// The document is done with, whatever becomes of it, but stays in sight: Poll ignores it from now on.
  void PassOver(DocumentWindow& window) { passed_over_.insert(&window); }
  /// The document needs no snapshot any more. Waits for nothing; what is on its way to the disk is dropped there.
  void Forget(DocumentWindow* window);

 private:
  struct Watched {
    QString id;
    std::uint64_t revision = 0;  ///< of the content that the snapshot has
    bool has_snapshot = false;
    Clock::time_point not_before;
    Clock::duration cost{};  ///< what the last snapshot kept the window waiting
  };
  struct Written {
    std::optional<FileFailure> failure;
    Clock::duration took{};
  };
  void Take(DocumentWindow& window, Watched& watched, Clock::time_point now);
  void Finish(const std::exception_ptr& thrown);
  void TellFailure(DocumentWindow& window, const QString& reason);

  Global& global_;
  QTimer timer_;
  QHash<DocumentWindow*, Watched> watched_;
  QSet<DocumentWindow*> passed_over_;
  /// When all snapshots so far are within their share of the time.
  Clock::time_point within_share_;
  bool failure_told_ = false;
  DocumentWindow* writing_for_ = nullptr;  ///< null, too, once its document needs no snapshot
  Written written_;                        ///< the thread's, while one is written
  BackgroundWork writing_;                 ///< last, so that it ends before what it uses goes; nothing is told then
};

}  // namespace tme
