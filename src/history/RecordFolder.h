#pragma once

#include <QList>
#include <QStringList>

#include "history/KeptVersion.h"
#include "history/StoreFolder.h"

namespace tme {

/// The small files of one folder of the store, each of which names a content: `ID.json`. What a crash left torn, or
/// something else wrote, is passed over. Any thread may call.
class RecordFolder {
 public:
  RecordFolder(StoreFolder& folder, QString name) : folder_(folder), name_(std::move(name)) {}

  /// Begin of an id, which sorts by the time.
  static QString IdPrefix(qint64 ms_since_epoch);
  /// 0 for a name that is no id.
  static qint64 MsOf(const QString& id);

  /// In their order; only those that end in `ending`. Not by a pattern: Qt's threads could end in a crash at one
  /// (EnterProcess of Windows).
  QStringList Ids(const QString& ending = {}) const;
  std::optional<KeptVersion> Read(const QString& id) const;
  /// Those of Ids that can be read. Cut short when it is to stop.
  QList<KeptVersion> ReadAll(const QString& ending = {}, const std::stop_token& stop = {}) const;
  /// Its content lies in the store already.
  std::optional<FileFailure> Write(const KeptVersion& record) const {
    return folder_.Write(FileOf(record.id), Bytes(record));
  }
  void Remove(const QString& id) const { folder_.Remove(FileOf(id)); }
  void RemoveTemporaries(const QDateTime& settled) const { folder_.RemoveTemporaries(name_, settled); }

 private:
  QString FileOf(const QString& id) const;
  static std::string Bytes(const KeptVersion& record);

  StoreFolder& folder_;
  const QString name_;
};

}  // namespace tme
