#include "system/ShellUtilities.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include "files/FileBytes.h"
#include "system/FilePath.h"

namespace tme {

using namespace Qt::StringLiterals;

bool ShellUtilities::FileExists(const QString& path) const { return QFileInfo(path).isFile(); }

QString ShellUtilities::ProgramFolder() const {
  return QDir::toNativeSeparators(QCoreApplication::applicationDirPath());
}

QString ShellUtilities::UserDataFolder() const {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/TamarindEditor"_L1;
  QDir().mkpath(folder);
  MakePrivate(FilePath(folder));
  return QDir::toNativeSeparators(folder);
}

QString ShellUtilities::FormatHelpText(QString text) const { return text.replace(u'#', u'\n'); }

}  // namespace tme
