#include "history/StoreFolder.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include "files/FileBytes.h"
#include "system/FilePath.h"

using namespace Qt::StringLiterals;

namespace tme {

StoreFolder::StoreFolder(QString path) : path_(std::move(path)), claim_(PathOf(u"in-use"_s)) {
  claim_.setStaleLockTime(0);  // only a process that is gone gives it up
}

bool StoreFolder::Claim() {
  const std::scoped_lock lock(claim_mutex_);
  if (claim_.isLocked() || !QFileInfo(path_).isDir()) return true;
  MakePrivate(FilePath(path_));
  // A machine that stopped may leave a claim without a word in it, which never grows stale. The file cannot be taken
  // from a process that lives: the system's own lock is on it.
  const bool is_ours = claim_.tryLock() || (claim_.removeStaleLockFile() && claim_.tryLock());
  if (is_ours) MakePrivate(FilePath(claim_.fileName()));
  return is_ours;
}

std::optional<FileFailure> StoreFolder::Make(const QString& folder) {
  // Of two threads that make the folders on one way, one would fail at a folder that the other has just made.
  static std::mutex one_at_a_time;
  const std::scoped_lock lock(one_at_a_time);
  const std::filesystem::path path = FilePath(folder);
  if (std::error_code error; !QFileInfo(folder).isDir() && (std::filesystem::create_directories(path, error), error))
    return FileFailure{tr("The folder %1 cannot be made: %2")
                           .arg(folder, QString::fromStdString(FailureOf(error).reason))
                           .toStdString()};
  MakePrivate(path);
  return std::nullopt;
}

std::optional<FileFailure> StoreFolder::Write(const QString& name, std::string_view bytes) {
  if (before_access) before_access(name);
  if (auto failure = Make(path_)) return failure;
  Claim();
  for (qsizetype slash = name.indexOf(u'/'); slash >= 0; slash = name.indexOf(u'/', slash + 1))
    if (auto failure = Make(PathOf(name.left(slash)))) return failure;
  return WritePrivateFile(FilePath(PathOf(name)), bytes);
}

std::optional<std::string> StoreFolder::Read(const QString& name) const {
  if (before_access) before_access(name);
  std::string bytes;
  if (ReadFileBytes(FilePath(PathOf(name)), bytes)) return std::nullopt;
  return bytes;
}

bool StoreFolder::Remove(const QString& name) const { return QFile::remove(PathOf(name)); }

void StoreFolder::RemoveIfSettled(const QString& name, const QDateTime& settled) const {
  const QDateTime written = QFileInfo(PathOf(name)).lastModified();
  if (written.isValid() && written < settled) Remove(name);
}

void StoreFolder::RemoveTemporaries(const QString& folder, const QDateTime& settled) const {
  for (const QString& name : QDir(PathOf(folder)).entryList(QDir::Files | QDir::Hidden))
    if (name.startsWith(u".tme-")) RemoveIfSettled(folder + u'/' + name, settled);
}

void StoreFolder::MakeAllPrivate(const std::stop_token& stop) const {
  MakePrivate(FilePath(path_));
  constexpr auto kOthers =
      QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
  constexpr auto kAll = QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot;
  for (QDirIterator entry(path_, kAll, QDirIterator::Subdirectories); entry.hasNext() && !stop.stop_requested();) {
    entry.next();
    if (entry.fileInfo().permissions().testAnyFlags(kOthers)) MakePrivate(FilePath(entry.filePath()));
  }
}

}  // namespace tme
