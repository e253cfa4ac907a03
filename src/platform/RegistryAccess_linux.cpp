#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>

#include "platform/RegistryAccess.h"

namespace tme {

using namespace Qt::StringLiterals;

namespace {

/// In stored names "." begins an escape, so these two can stand beside the names of values.
constexpr QLatin1StringView kKeyMark(".key");
constexpr QLatin1StringView kUnnamedValue(".default");

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
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/TamarindEditor"_L1;
  const QString path = folder + "/registry.ini"_L1;
  const QFile::Permissions only_user = QFile::ReadOwner | QFile::WriteOwner;
  if (!QFile::exists(path)) {
    QDir().mkpath(QFileInfo(folder).path());
    ::mkdir(QFile::encodeName(folder).constData(), 0700);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly, only_user)) file.close();
  } else {
    QFile::setPermissions(path, (QFile::permissions(path) & only_user));
  }
  return path;
}

}  // namespace

class RegistryAccess::Store {
 public:
  QSettings settings{PrepareFile(), QSettings::IniFormat};
};

RegistryAccess::RegistryAccess() : store_(std::make_unique<Store>()) {}

RegistryAccess::~RegistryAccess() { store_->settings.sync(); }

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
  settings.sync();
  if (added.isEmpty()) return !groups.isEmpty();
  if (settings.status() != QSettings::AccessError) return true;
  // Marks that reached no file must not make the next call believe in the key.
  for (const QString& mark : std::as_const(added)) settings.remove(mark);
  return false;
}

void RegistryAccess::WriteValue(const QString& key, const QString& name, const QString& /*type*/, const QString& data) {
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
  settings.sync();
}

QString RegistryAccess::Location(const QString& /*key*/) const { return QFileInfo(store_->settings.fileName()).path(); }

}  // namespace tme
