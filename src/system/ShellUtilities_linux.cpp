#include <QDir>
#include <QFileInfo>

#include "system/ShellUtilities.h"

namespace tme {

using namespace Qt::StringLiterals;

QString ShellUtilities::LastResortFolder() const { return QDir::homePath(); }

QString ShellUtilities::WindowsDirectory() const {
  const QString prefix = qEnvironmentVariable("WINEPREFIX");
  const QString folder = (prefix.isEmpty() ? QDir::homePath() + "/.wine"_L1 : prefix) + "/drive_c/windows"_L1;
  return QFileInfo(folder).isDir() ? folder : QString();
}

bool ShellUtilities::IsRooted(const QString& path) const {
  return path.startsWith("\\\\"_L1) || path.mid(1, 2) == ":\\"_L1 || path.startsWith(u'/');
}

QStringList ShellUtilities::CommandLineTexts(const QStringList& paths) const {
  QStringList texts = paths;
  texts.removeAll(QString());
  for (QString& text : texts) {
    // The running instance that gets this text may stand in another folder. Joined by hand: to Qt, a name that begins
    // with a colon is none of the file system's.
    const QString whole = text.startsWith(u'/') ? text : QDir::currentPath() + u'/' + text;
    if (QFileInfo::exists(whole)) text = QDir::cleanPath(whole);
  }
  return texts;
}

}  // namespace tme
