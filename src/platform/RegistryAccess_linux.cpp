#include <sys/stat.h>

#include <QDir>
#include <QEvent>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "platform/FilePath.h"
#include "platform/RegistryAccess.h"
#include "platform/TextFile.h"

namespace tme {

using namespace Qt::StringLiterals;

namespace {

/// In stored names "." begins an escape, so these two can stand beside the names of values.
constexpr QLatin1StringView kKeyMark(".key");
constexpr QLatin1StringView kUnnamedValue(".default");
constexpr QFile::Permissions kOnlyUser = QFile::ReadOwner | QFile::WriteOwner;

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

/// Only the user can read what lies there. False: errno says why.
bool MakeFolder(const QString& folder) {
  QDir().mkpath(QFileInfo(folder).path());
  return ::mkdir(QFile::encodeName(folder).constData(), 0700) == 0 || errno == EEXIST;
}

/// Where the store lies. Folder and file are made here so that nobody but the user can ever read them.
QString PrepareFile() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/TamarindEditor"_L1;
  const QString path = folder + "/registry.ini"_L1;
  if (!QFile::exists(path)) {
    MakeFolder(folder);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly, kOnlyUser)) file.close();
  } else {
    QFile::setPermissions(path, (QFile::permissions(path) & kOnlyUser));
  }
  return path;
}

/// QSettings only says that it did not work. The same bytes once more meet the same cause.
QString CauseOfFailure(const QString& path) {
  if (!MakeFolder(QFileInfo(path).path())) return QString::fromStdString(std::generic_category().message(errno));
  if (QFile missing(path); !missing.exists() && !missing.open(QIODevice::WriteOnly | QIODevice::NewOnly, kOnlyUser))
    return missing.errorString();
  std::string bytes;
  auto failure = ReadFileBytes(FilePath(path), bytes);
  if (!failure) failure = WriteFileBytes(FilePath(path), bytes);
  return failure ? QString::fromStdString(failure->reason) : u"It cannot be written"_s;
}

/// The file's settings; says when the event loop has brought to the file what waited.
class WatchedSettings : public QSettings {
 public:
  WatchedSettings(const QString& path, std::function<void()> written)
      : QSettings(path, QSettings::IniFormat), written_(std::move(written)) {}

 protected:
  bool event(QEvent* event) override {
    const bool is_write = event->type() == QEvent::UpdateRequest;
    const bool is_done = QSettings::event(event);
    if (is_write) written_();
    return is_done;
  }

 private:
  const std::function<void()> written_;
};

}  // namespace

class RegistryAccess::Store {
 public:
  /// What waits goes to the file. False when it did not get there, or what waited before did not.
  bool Write() {
    // The status of a QSettings stays at its first failure; all of one file share what waits.
    QSettings now(settings.fileName(), QSettings::IniFormat);
    now.sync();
    if (now.status() != QSettings::AccessError) {
      if (std::exchange(waits, false)) failure.reset();
      return true;
    }
    failure = {settings.fileName(), CauseOfFailure(settings.fileName())};
    if (tell) std::exchange(tell, {})();
    return false;
  }

  WatchedSettings settings{PrepareFile(), [this] { Write(); }};
  bool waits = false;
  std::optional<StoreFailure> failure;
  std::function<void()> tell;
};

RegistryAccess::RegistryAccess() : store_(std::make_unique<Store>()) {}

RegistryAccess::~RegistryAccess() { store_->settings.sync(); }

std::optional<StoreFailure> RegistryAccess::Flush() {
  store_->Write();
  return store_->failure;
}

void RegistryAccess::OnFailure(std::function<void()> tell) {
  store_->tell = std::move(tell);
  if (store_->tell && store_->failure) std::exchange(store_->tell, {})();
}

bool RegistryAccess::CreateKey(const QString& key) {
  QSettings& settings = store_->settings;
  QStringList added;
  QString path;
  const QStringList groups = GroupsOf(key);
  for (const QString& group : groups) {
    path += group + u'/';
    const QString mark = path + kKeyMark;
    if (settings.contains(mark)) continue;
    settings.setValue(mark, QString());
    added.append(mark);
  }
  store_->waits = store_->waits || !added.isEmpty();
  const bool is_written = store_->Write();
  if (added.isEmpty()) return !groups.isEmpty();
  if (is_written) return true;
  // Marks that reached no file must not make the next call believe in the key.
  for (const QString& mark : std::as_const(added)) settings.remove(mark);
  return false;
}

void RegistryAccess::WriteValue(const QString& key, const QString& name, const QString& /*type*/, const QString& data) {
  store_->waits = true;
  store_->settings.setValue(PathOf(key, name), data);
}

QString RegistryAccess::ReadValue(const QString& key, const QString& name) const {
  if (IsDocumentsFolder(key, name)) return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return store_->settings.value(PathOf(key, name)).toString();
}

void RegistryAccess::DeleteKey(const QString& key) {
  QSettings& settings = store_->settings;
  const QStringList groups = GroupsOf(key);
  if (groups.isEmpty()) return;  // would be the whole tree
  settings.beginGroup(groups.join(u'/'));
  // One by one: removing the group at once would take a value of the same name beside the key along.
  const QStringList names = settings.allKeys();
  for (const QString& name : names) settings.remove(name);
  settings.endGroup();
  store_->waits = true;
  store_->Write();
}

QString RegistryAccess::Location() const { return QFileInfo(store_->settings.fileName()).path(); }

}  // namespace tme
