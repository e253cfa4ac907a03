#include <sys/stat.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QMap>
#include <QObject>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>
#include <cerrno>
#include <chrono>
#include <string>
#include <system_error>
#include <utility>

#include "files/FileBytes.h"
#include "system/FilePath.h"
#include "system/RegistryAccess.h"
#include "system/SettingsFolder_linux.h"

namespace tme {

using namespace Qt::StringLiterals;

namespace {

/// In stored names "." begins an escape, so these two can stand beside the names of values.
constexpr QLatin1StringView kKeyMark(".key");
constexpr QLatin1StringView kUnnamedValue(".default");
constexpr QFile::Permissions kOnlyUser = QFile::ReadOwner | QFile::WriteOwner;
/// Some thousand times what the program writes; as much is read in a moment.
constexpr qint64 kMostBytes = 4'000'000;
constexpr qint64 kBytesInMb = 1'000'000;
constexpr qint64 kMostLockBytes = 10'000;
/// A write takes some milliseconds. Who holds its lock for longer has died with it, perhaps on another machine, or will
/// last: QSettings takes it away after half a minute.
constexpr std::chrono::milliseconds kLockPatience{1000};
constexpr std::chrono::seconds kLockPause{10};

/// Slashes of either kind would be taken for a level of the tree.
QString Escaped(QString part) { return part.replace(u'.', ".."_L1).replace(u'/', ".s"_L1).replace(u'\\', ".b"_L1); }

/// A separator at the end or a doubled one adds no level.
QStringList GroupsOf(const QString& key) {
  QStringList groups;
  const QStringList parts = key.split(u'\\', Qt::SkipEmptyParts);
  for (const QString& part : parts) groups.append(Escaped(part));
  return groups;
}

QString PathOf(const QString& key, const QString& name) {
  return GroupsOf(key).join(u'/') + u'/' + (name.isEmpty() ? QString(kUnnamedValue) : Escaped(name));
}

bool IsDocumentsFolder(const QString& key, const QString& name) {
  return name == "Personal"_L1 &&
         key == "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"_L1;
}

/// Where the store lies. Folder and file are made here so that nobody but the user can ever read them.
QString PrepareFile() {
  const QString folder = SettingsFolder();
  const QString path = folder + "/registry.ini"_L1;
  if (!QFile::exists(path)) {
    MakeOwnFolder(folder);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly, kOnlyUser)) file.close();
  } else if (QFileInfo(path).isFile()) {
    QFile::setPermissions(path, (QFile::permissions(path) & kOnlyUser));
  }
  return path;
}

QString Tr(const char* text) { return QCoreApplication::translate("RegistryAccess", text); }

/// Why the file must not even be opened, which might last for ever; empty when it may, or is missing.
QString ReadObstacle(const QString& path) {
  const QFileInfo file(path);
  if (!file.exists()) return {};
  if (file.isDir()) return Tr("It is a folder, so that nothing was read from it either");
  if (!file.isFile()) return Tr("It is a pipe or a device and no file, so that nothing was read from it either");
  if (file.size() > kMostBytes)
    return Tr("It is larger than %1 MB, so that nothing was read from it either").arg(kMostBytes / kBytesInMb);
  return {};
}

/// Waits a little for another process that writes. Its words are those of QSettings, which would wait without an end.
QString LockObstacle(const QString& path) {
  const QFileInfo file(path + ".lock"_L1);
  if (file.exists() && (!file.isFile() || file.size() > kMostLockBytes))
    return Tr("%1 is in the way, which is no lock of the editor's").arg(file.fileName());
  QLockFile lock(file.filePath());
  if (lock.tryLock(static_cast<int>(kLockPatience.count())) || lock.error() != QLockFile::LockFailedError) return {};
  qint64 process = 0;
  QString host;
  QString program;
  if (!lock.getLockInfo(&process, &host, &program)) return Tr("%1 is in the way").arg(file.fileName());
  return Tr("Process %1 of %2 has locked it (%3)").arg(QString::number(process), host, file.fileName());
}

/// QSettings only says that it did not work. The same bytes once more meet the same cause.
QString CauseOfFailure(const QString& path) {
  if (const auto error = MakeOwnFolder(QFileInfo(path).path())) return QString::fromStdString(error.message());
  if (QFile missing(path); !missing.exists() && !missing.open(QIODevice::WriteOnly | QIODevice::NewOnly, kOnlyUser))
    return missing.errorString();
  std::string bytes;
  auto failure = ReadFileBytes(FilePath(path), bytes);
  if (!failure) failure = WriteFileBytes(FilePath(path), bytes);
  return failure ? QString::fromStdString(failure->reason) : Tr("It cannot be written");
}

}  // namespace

QString SettingsFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/TamarindEditor"_L1;
}

std::error_code MakeOwnFolder(const QString& folder) {
  QDir().mkpath(QFileInfo(folder).path());
  const QByteArray path = QFile::encodeName(folder);
  const int error = ::mkdir(path.constData(), 0700) == 0 ? 0 : errno;
  return error == EEXIST ? std::error_code() : std::error_code(error, std::generic_category());
}

/// The file's values, and above them what has not reached the file yet. QSettings gets to the file only when nothing
/// there can make it wait.
class RegistryAccess::Store {
 public:
  Store() {
    if (ReadObstacle(path_).isEmpty()) file_ = std::make_unique<QSettings>(path_, QSettings::IniFormat);
  }

  QString Path() const { return path_; }
  const std::optional<StoreFailure>& Failure() const { return failure_; }

  bool Contains(const QString& name) const { return IsWaiting(name) || (file_ && file_->contains(name)); }
  /// Set, but not in the file.
  bool IsWaiting(const QString& name) const {
    const auto waiting = waiting_.constFind(name);
    return waiting != waiting_.cend() && waiting->has_value();
  }
  QString Value(const QString& name) const {
    if (const auto waiting = waiting_.constFind(name); waiting != waiting_.cend()) return waiting->value_or(QString());
    return file_ ? file_->value(name).toString() : QString();
  }
  /// Names that begin so, removed ones perhaps among them.
  QStringList NamesBelow(const QString& beginning) const {
    QStringList names = file_ ? file_->allKeys() : QStringList();
    names += waiting_.keys();
    names.removeIf([&beginning](const QString& name) { return !name.startsWith(beginning); });
    return names;
  }

  /// Null removes.
  void Set(const QString& name, const std::optional<QString>& value) {
    waiting_.insert(name, value);
    if (std::exchange(write_is_due_, true)) return;
    QMetaObject::invokeMethod(
        &turn_, [this] { Write(); }, Qt::QueuedConnection);
  }

  /// What waits goes to the file. False when it did not get there.
  bool Write() {
    write_is_due_ = false;
    if (waiting_.isEmpty()) return true;
    if (!retry_at_.hasExpired()) return false;
    QString obstacle = ReadObstacle(path_);
    if (obstacle.isEmpty() && !(obstacle = LockObstacle(path_)).isEmpty()) retry_at_.setRemainingTime(kLockPause);
    if (obstacle.isEmpty() && !Put()) obstacle = CauseOfFailure(path_);
    if (obstacle.isEmpty()) {
      waiting_.clear();
      failure_.reset();
      return true;
    }
    failure_ = {path_, obstacle};
    if (tell_) std::exchange(tell_, {})();
    return false;
  }

  void OnFailure(std::function<void()> tell) {
    tell_ = std::move(tell);
    if (tell_ && failure_) std::exchange(tell_, {})();
  }

 private:
  bool Put() {
    // The status of a QSettings stays at its first failure; all of one file share their values.
    QSettings now(path_, QSettings::IniFormat);
    for (auto value = waiting_.cbegin(); value != waiting_.cend(); ++value) {
      if (*value)
        now.setValue(value.key(), **value);
      else
        now.remove(value.key());
    }
    now.sync();
    return now.status() != QSettings::AccessError;
  }

  const QString path_ = PrepareFile();
  std::unique_ptr<QSettings> file_;  ///< to read from; null when that must not be
  QMap<QString, std::optional<QString>> waiting_;
  QObject turn_;
  bool write_is_due_ = false;
  QDeadlineTimer retry_at_{0};
  std::optional<StoreFailure> failure_;
  std::function<void()> tell_;
};

RegistryAccess::RegistryAccess() : store_(std::make_unique<Store>()) {}

RegistryAccess::~RegistryAccess() { store_->Write(); }

std::optional<StoreFailure> RegistryAccess::Flush() {
  store_->Write();
  return store_->Failure();
}

void RegistryAccess::OnFailure(std::function<void()> tell) { store_->OnFailure(std::move(tell)); }

bool RegistryAccess::CreateKey(const QString& key) {
  QString path;
  bool waits = false;
  const QStringList groups = GroupsOf(key);
  for (const QString& group : groups) {
    path += group + u'/';
    const QString mark = path + kKeyMark;
    if (!store_->Contains(mark)) store_->Set(mark, QString());
    waits = waits || store_->IsWaiting(mark);
  }
  // A mark that reached no file must not make the next call believe in the key.
  const bool is_written = store_->Write();
  return !groups.isEmpty() && (is_written || !waits);
}

void RegistryAccess::WriteValue(const QString& key, const QString& name, const QString& data) {
  store_->Set(PathOf(key, name), data);
}

QString RegistryAccess::ReadValue(const QString& key, const QString& name) const {
  if (IsDocumentsFolder(key, name)) return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return store_->Value(PathOf(key, name));
}

void RegistryAccess::DeleteKey(const QString& key) {
  const QStringList groups = GroupsOf(key);
  if (groups.isEmpty()) return;  // would be the whole tree
  // One by one: removing the group at once would take a value of the same name beside the key along.
  const QStringList names = store_->NamesBelow(groups.join(u'/') + u'/');
  for (const QString& name : names) store_->Set(name, std::nullopt);
  store_->Write();
}

QString RegistryAccess::Location() const { return QFileInfo(store_->Path()).path(); }

}  // namespace tme
