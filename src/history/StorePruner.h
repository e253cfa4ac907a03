#pragma once

#include "history/SnapshotStore.h"
#include "history/VersionStore.h"

namespace tme {

/// The one place for the limits of the store. Newer versions have the first claim on the room that there is; snapshots
/// never go.
struct HistoryLimits {
  int versions_per_file = 40;
  int days = 90;  ///< between a version of a file and its newest one; the newest five never go for their age
  qint64 total_bytes = qint64{1} << 30;
};

/// Removes what is over the limits, contents that nothing names and what a crash left half written. Of the last two,
/// what is younger than an hour stays, since it may still be on its way. Other threads may use the store meanwhile.
class StorePruner {
 public:
  StorePruner(StoreFolder& folder, ContentStore& contents, VersionStore& versions, const SnapshotStore& snapshots,
              HistoryLimits limits)
      : folder_(folder), contents_(contents), versions_(versions), snapshots_(snapshots), limits_(limits) {}

  /// Only in a store that can be claimed. Ends soon after it is to stop, with less removed.
  void Prune(const QDateTime& now = QDateTime::currentDateTimeUtc(), const std::stop_token& stop = {});

 private:
  /// Adds the digests of the versions that stay to `named`.
  void PruneVersions(QSet<QByteArray>& named, const std::stop_token& stop);

  StoreFolder& folder_;
  ContentStore& contents_;
  VersionStore& versions_;
  const SnapshotStore& snapshots_;
  const HistoryLimits limits_;
};

}  // namespace tme
