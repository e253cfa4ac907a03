#include "history/VersionStore.h"

#include <algorithm>

namespace tme {
namespace {

/// End of the ids of an origin's versions, so that they are found without reading the others.
QString OriginMark(const ContentOrigin& origin) {
  const QByteArray text = OriginKey(origin).toUtf8();
  return QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Blake2b_160).toHex().left(12));
}

}  // namespace

std::optional<FileFailure> VersionStore::Keep(const ContentOrigin& origin, KeptReason reason, std::string_view content,
                                              const QDateTime& time) {
  KeptVersion record{{}, time, reason, origin, ContentStore::DigestOf(content), static_cast<qint64>(content.size())};
  contents_.Pin(record.digest);
  if (auto failure = contents_.Write(content, record.digest)) return failure;
  const std::optional<KeptVersion> newest = Newest(origin);
  const bool is_there = newest && newest->digest == record.digest && newest->origin.holding == origin.holding;
  // An old one could soon go for its age; it becomes the newest again.
  if (is_there && newest->time.daysTo(time) < 1) return std::nullopt;
  record.id = NextId(origin);
  auto failure = records_.Write(record);
  if (!failure && is_there) Remove(newest->id);
  return failure;
}

QList<KeptVersion> VersionStore::List(const std::optional<QString>& path, const std::stop_token& stop) const {
  QList<KeptVersion> versions = records_.ReadAll(path ? OriginMark({DocumentKind::Txt, *path, {}}) : QString(), stop);
  if (path) versions.removeIf([&](const KeptVersion& version) { return version.origin.path != *path; });
  std::reverse(versions.begin(), versions.end());
  return versions;
}

std::optional<KeptVersion> VersionStore::Newest(const ContentOrigin& origin) const {
  const QStringList ids = records_.Ids(OriginMark(origin));
  for (auto id = ids.crbegin(); id != ids.crend(); ++id)
    if (std::optional<KeptVersion> record = records_.Read(*id); record && SameOrigin(record->origin, origin))
      return record;
  return std::nullopt;
}

QString VersionStore::NextId(const ContentOrigin& origin) {
  const std::scoped_lock lock(id_mutex_);
  if (last_ms_ == 0)
    if (const QStringList ids = records_.Ids(); !ids.isEmpty()) last_ms_ = RecordFolder::MsOf(ids.last());
  last_ms_ = std::max(QDateTime::currentMSecsSinceEpoch(), last_ms_ + 1);
  return RecordFolder::IdPrefix(last_ms_) + OriginMark(origin);
}

}  // namespace tme
