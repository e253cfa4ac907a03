#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include "platform/ShellUtilities.h"

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

QStringList ShellUtilities::CommandLineTexts() const {
  QStringList texts = QCoreApplication::arguments().mid(1);
  for (QString& text : texts) {
    // The running instance that gets this text may stand in another folder.
    const QFileInfo file(text);
    if (file.isFile()) text = file.absoluteFilePath();
  }
  return texts;
}

}  // namespace tme
