#pragma once

#include "history/ContentStore.h"
#include "history/RecordFolder.h"

namespace tme {

/// Kept versions of files and documents, one record each in `versions/`. Any thread may call.
class VersionStore {
 public:
  VersionStore(StoreFolder& folder, ContentStore& contents)
      : contents_(contents), records_(folder, QStringLiteral("versions")) {}

  /// Keeps a content. One that equals the newest version of the same origin makes no second version, and no failure.
  std::optional<FileFailure> Keep(const ContentOrigin& origin, KeptReason reason, std::string_view content,
                                  const QDateTime& time = QDateTime::currentDateTimeUtc());
  /// Newest first. path: of this file only. Cut short when it is to stop.
  QList<KeptVersion> List(const std::optional<QString>& path = {}, const std::stop_token& stop = {}) const;
  /// Its content stays.
  void Remove(const QString& id) const { records_.Remove(id); }
  const RecordFolder& Records() const { return records_; }

 private:
  std::optional<KeptVersion> Newest(const ContentOrigin& origin) const;
  /// Sorts after every version in the store, even when the clock was put back.
  QString NextId(const ContentOrigin& origin);

  ContentStore& contents_;
  const RecordFolder records_;
  std::mutex id_mutex_;
  qint64 last_ms_ = 0;  ///< of the newest id; 0 before it was asked for
};

}  // namespace tme
