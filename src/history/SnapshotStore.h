#pragma once

#include <QHash>

#include "history/ContentStore.h"
#include "history/RecordFolder.h"

namespace tme {

/// Recovery snapshots: the content of open documents with unsaved changes, so that a crash does not take it; one record
/// each in `aside/`. Any thread may call, and none waits for a content that another one writes, but for two snapshots.
class SnapshotStore {
 public:
  SnapshotStore(StoreFolder& folder, ContentStore& contents)
      : folder_(folder), contents_(contents), records_(folder, QStringLiteral("aside")) {}

  static QString NewId();
  /// Writes the snapshot of an id (NewId) in place of its former one, whose content goes when nothing else of this
  /// process has it. One that is forgotten before it was done, or before it began, did not happen.
  std::optional<FileFailure> Put(const QString& id, const ContentOrigin& origin, std::string_view content,
                                 const QDateTime& time = QDateTime::currentDateTimeUtc());
  /// Removes a snapshot for good, whatever another thread is about to put under its id.
  void Forget(const QString& id);
  /// Oldest first. Cut short when it is to stop.
  QList<KeptVersion> List(const std::stop_token& stop = {}) const { return records_.ReadAll({}, stop); }
  const RecordFolder& Records() const { return records_; }

  /// A snapshot is about to be opened again. Returns at how many starts, up to the last one, the program ended over it.
  int BeginReopening(const QString& id);
  /// All are open.
  void EndReopening();

 private:
  StoreFolder& folder_;
  ContentStore& contents_;
  const RecordFolder records_;
  /// Over the whole of a Put; taken before mutex_.
  std::mutex put_mutex_;
  /// Over what follows; never while a content is written.
  std::mutex mutex_;
  /// By id, the content that was written for this snapshot and that no other one names.
  QHash<QString, QByteArray> sole_;
  /// Every id that was: a snapshot's thread may not have begun when its document is saved.
  QSet<QString> forgotten_;
  /// What the last start was opening again when it ended, and at how many starts it did.
  struct Reopening {
    QString id;
    int attempts = 0;
  };
  std::optional<Reopening> ended_over_;
};

}  // namespace tme
