#include "history/StorePruner.h"

namespace tme {
namespace {

/// So many of the newest versions of a file never go for their age.
constexpr int kAlwaysYoung = 5;

/// What nothing names yet may be on its way: only what is older goes.
constexpr qint64 kSettledSeconds = 3600;

}  // namespace

void StorePruner::Prune(const QDateTime& now, const std::stop_token& stop) {
  if (!folder_.Claim()) return;
  folder_.MakeAllPrivate(stop);
  const QDateTime settled = now.addSecs(-kSettledSeconds);
  versions_.Records().RemoveTemporaries(settled);
  snapshots_.Records().RemoveTemporaries(settled);
  QSet<QByteArray> named;
  for (const KeptVersion& snapshot : snapshots_.List(stop)) named.insert(snapshot.digest);
  PruneVersions(named, stop);
  // Only when all that names a content was seen.
  if (!stop.stop_requested()) contents_.RemoveUnnamed(named, settled, stop);
}

void StorePruner::PruneVersions(QSet<QByteArray>& named, const std::stop_token& stop) {
  const QList<KeptVersion> versions = versions_.List({}, stop);
  const QString newest = versions.isEmpty() ? QString() : versions.first().id;
  QHash<QString, int> of_file;
  QHash<QString, QDateTime> latest_of;
  qint64 total = 0;
  for (const KeptVersion& version : versions) {
    if (stop.stop_requested()) return;
    const qint64 bytes = named.contains(version.digest) ? 0 : version.bytes;
    const QString key = OriginKey(version.origin);
    const int number = ++of_file[key];
    if (number == 1) latest_of.insert(key, version.time);
    // Beside each other, not by the clock, which may be wrong today.
    const bool is_young = number <= kAlwaysYoung || version.time.daysTo(latest_of[key]) <= limits_.days;
    const bool within = number <= limits_.versions_per_file && is_young && total + bytes <= limits_.total_bytes;
    // What goes, for whatever reason, takes no room from what is older.
    if (within) total += bytes;
    // The newest stays, however large: it was kept for a reason a moment ago.
    if (within || version.id == newest)
      named.insert(version.digest);
    else
      versions_.Remove(version.id);
  }
}

}  // namespace tme
