#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QSet>

#include "history/StoreFolder.h"

namespace tme {

/// Contents under their digests, each once, in `blobs/`. A content lies here before what names it is written. Any
/// thread may call, and none waits for a content that another one writes.
class ContentStore {
 public:
  explicit ContentStore(StoreFolder& folder) : folder_(folder) {}

  static constexpr auto kDigest = QCryptographicHash::Blake2b_256;
  /// In hex.
  static QByteArray DigestOf(std::string_view content);

  /// Stores a content, or makes the one that is there as young as a new one, lest RemoveUnnamed take it before it is
  /// named. One that was damaged is written anew.
  std::optional<FileFailure> Write(std::string_view content, const QByteArray& digest);
  /// Returns nothing when the content is gone or was damaged on the disk.
  std::optional<std::string> Read(const QByteArray& digest) const;
  bool Has(const QByteArray& digest) const;

  /// From now on Drop leaves the content alone, whether it is here or yet to come.
  void Pin(const QByteArray& digest);
  /// Removes a content unless it is pinned. An empty digest is none.
  void Drop(const QByteArray& digest);
  /// Removes the contents that are not in `named` and were written before `settled`.
  void RemoveUnnamed(const QSet<QByteArray>& named, const QDateTime& settled, const std::stop_token& stop);

 private:
  /// False when it is not there.
  bool MakeYoung(const QString& name);

  StoreFolder& folder_;
  /// Over the pins and each removal of a content; never while one is written.
  std::mutex mutex_;
  QSet<QByteArray> pinned_;
};

}  // namespace tme
