#include "history/SnapshotStore.h"

#include <QUuid>

namespace tme {
namespace {

/// Holds the id of what is being opened again, and how often that was begun.
const QString kReopening = QStringLiteral("reopening");

}  // namespace

QString SnapshotStore::NewId() {
  return RecordFolder::IdPrefix(QDateTime::currentMSecsSinceEpoch()) +
         QUuid::createUuid().toString(QUuid::Id128).left(8);
}

std::optional<FileFailure> SnapshotStore::Put(const QString& id, const ContentOrigin& origin, std::string_view content,
                                              const QDateTime& time) {
  const std::scoped_lock one_at_a_time(put_mutex_);
  const KeptVersion record{
      id, time, KeptReason::Rescued, origin, ContentStore::DigestOf(content), static_cast<qint64>(content.size())};
  const QByteArray& digest = record.digest;
  bool is_sole = false;
  {
    const std::scoped_lock lock(mutex_);
    if (forgotten_.contains(id)) return std::nullopt;
    is_sole = sole_.value(id) == digest || !contents_.Has(digest);
    sole_.removeIf(
        [&](std::pair<const QString&, QByteArray&> other) { return other.first != id && other.second == digest; });
  }
  auto failure = contents_.Write(content, digest);
  if (!failure) failure = records_.Write(record);
  const std::scoped_lock lock(mutex_);
  if (forgotten_.contains(id)) {
    records_.Remove(id);
    if (is_sole) contents_.Drop(digest);
    return std::nullopt;
  }
  if (failure) return failure;
  const QByteArray before = sole_.take(id);
  if (is_sole) sole_.insert(id, digest);
  if (before != digest) contents_.Drop(before);
  return std::nullopt;
}

void SnapshotStore::Forget(const QString& id) {
  const std::scoped_lock lock(mutex_);
  forgotten_.insert(id);
  records_.Remove(id);
  contents_.Drop(sole_.take(id));
}

int SnapshotStore::BeginReopening(const QString& id) {
  if (!ended_over_) {
    const QString text = QString::fromStdString(folder_.Read(kReopening).value_or(std::string()));
    ended_over_ = Reopening{text.section(u' ', 0, 0), text.section(u' ', 1).toInt()};
  }
  const int attempts = ended_over_->id == id ? ended_over_->attempts : 0;
  folder_.Write(kReopening, (id + u' ' + QString::number(attempts + 1)).toStdString());
  return attempts;
}

void SnapshotStore::EndReopening() { folder_.Remove(kReopening); }

}  // namespace tme
