#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QLockFile>
#include <QString>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "files/FileFailure.h"

namespace tme {

/// The folder of the store on the disk. It exists once the first file is written, only the user can read it, and one
/// process owns it. Names are relative to it. Any thread may call.
class StoreFolder {
  Q_DECLARE_TR_FUNCTIONS(StoreFolder)

 public:
  explicit StoreFolder(QString path);

  const QString& Path() const { return path_; }
  QString PathOf(const QString& name) const { return path_ + u'/' + name; }

  /// Makes the store this process's own for as long as it lives. False while another process has it, one that is still
  /// asking its last questions: its snapshots are its business then, and nothing is removed. True when there is no
  /// store yet.
  bool Claim();

  /// Writes a file whole or not at all; the folders on the way to it are made, and the store is claimed if it is free.
  std::optional<FileFailure> Write(const QString& name, std::string_view bytes);
  /// Returns nothing when the file cannot be read.
  std::optional<std::string> Read(const QString& name) const;
  bool Remove(const QString& name) const;
  /// Removes a file that was written before `settled`. One that is gone stays so: what is written there next is young.
  void RemoveIfSettled(const QString& name, const QDateTime& settled) const;
  /// Removes what killed writes left in a folder of the store before `settled`.
  void RemoveTemporaries(const QString& folder, const QDateTime& settled) const;
  /// Takes away the rights of others that an earlier version or a copy from elsewhere may have left.
  void MakeAllPrivate(const std::stop_token& stop) const;

  /// Runs before each Write and Read; a test throws here.
  std::function<void(const QString& name)> before_access;

 private:
  std::optional<FileFailure> Make(const QString& folder);

  const QString path_;
  std::mutex claim_mutex_;
  QLockFile claim_;
};

}  // namespace tme
