#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>
#include <chrono>
#include <future>

#include "files/FileFailure.h"
#include "history/History.h"

namespace tme {

class DocumentWindow;
struct Global;

/// Puts the content of documents with unsaved changes aside, so that a crash loses no more than a few seconds of work,
/// and opens what an earlier run left there. The disk is written on a thread of its own; a document's content is
/// gathered on the window's.
class Rescue : public QObject {
  Q_OBJECT

 public:
  using Clock = std::chrono::steady_clock;

  explicit Rescue(Global& global);
  ~Rescue() override;

  /// Opens each document that the last run left with unsaved changes, as it was, marked changed. What is put aside
  /// stays so until the document is saved or closed. Windows of a kind that are all taken, or a content that ended the
  /// program at two starts: it becomes a version of the history, which a message says.
  void ReopenAfterCrash();
  /// From now on a look at all documents every two seconds.
  void Start();
  /// No look any more, and nothing on its way to the disk: before the windows go.
  void Stop();
  /// One look: puts aside the document that changed and is due longest, forgets what is saved or closed. The next one
  /// follows when the disk is done.
  void Look(Clock::time_point now);
  /// Waits for the disk.
  void WaitForDisk();
  /// Puts the document aside at once, and leaves it so: the next start opens it again, unless it goes on here.
  void LeaveForNextStart(DocumentWindow& window);
  /// The document is done with, whatever becomes of it, and stays in sight all the same: no look at it any more.
  void PassOver(DocumentWindow& window) { passed_over_.insert(&window); }
  /// The document needs no rescue any more. Waits for nothing; what is on its way to the disk is dropped there.
  void Forget(DocumentWindow* window);

 private:
  struct Watched {
    QString id;
    std::uint64_t revision = 0;  ///< of the content that is aside
    bool is_aside = false;
    Clock::time_point not_before;
    Clock::duration cost{};  ///< what the last snapshot kept the window waiting
  };
  /// Makes it a version and says so; false when it could not.
  bool KeepInstead(const KeptVersion& aside, const std::string& content);
  /// Opens the content that is aside, or sees to it that it is found in the history.
  void Reopen(const KeptVersion& aside, std::string content);
  void PutAside(DocumentWindow& window, Watched& watched, Clock::time_point now);
  void Finished();
  void PruneWhenDue(Clock::time_point now);
  void TellFailure(DocumentWindow& window, const std::string& reason);

  Global& global_;
  QTimer timer_;
  QHash<DocumentWindow*, Watched> watched_;
  struct Written {
    std::optional<FileFailure> failure;
    Clock::duration took{};
  };
  /// The one content on its way to the disk, with its window.
  std::future<Written> writing_;
  std::uint64_t last_write_ = 0;           ///< number of the last one that began
  DocumentWindow* writing_for_ = nullptr;  ///< null, too, once its document needs no rescue
  /// When all snapshots so far are within their share of the time.
  Clock::time_point within_share_;
  std::future<void> pruning_;
  Clock::time_point prune_at_;
  QSet<DocumentWindow*> passed_over_;
  bool failure_told_ = false;
};

}  // namespace tme
