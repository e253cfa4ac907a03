#include <windows.h>

#include <QCoreApplication>
#include <QDir>
#include <QString>
#include <string>

#include "system/CommandLineTexts_win.h"
#include "system/ShellUtilities.h"

namespace tme {

using namespace Qt::StringLiterals;

QString ShellUtilities::LastResortFolder() const {
  constexpr unsigned kDrives = 26;
  const DWORD present = ::GetLogicalDrives();
  for (unsigned drive = 0; drive < kDrives; ++drive) {
    if ((present >> drive & 1) == 0) continue;
    const QString root = QChar(u'A' + drive) + u":\\"_s;
    // Not one whose disk may have to be put in first.
    if (::GetDriveTypeW(root.toStdWString().c_str()) == DRIVE_FIXED) return root;
  }
  return QDir::toNativeSeparators(QDir::rootPath());
}

QString ShellUtilities::WindowsDirectory() const {
  std::wstring folder(MAX_PATH, L'\0');
  while (true) {
    const UINT size = ::GetWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
    if (size < folder.size()) return QString::fromWCharArray(folder.data(), static_cast<qsizetype>(size));
    folder.resize(size);
  }
}

bool ShellUtilities::IsRooted(const QString& path) const {
  return path.startsWith("\\\\"_L1) || path.mid(1, 2) == ":\\"_L1;
}

QStringList ShellUtilities::CommandLineTexts(const QStringList& /*paths*/) const {
  return tme::CommandLineTexts(QString::fromWCharArray(::GetCommandLineW()),
                               QDir::toNativeSeparators(QCoreApplication::applicationFilePath()));
}

}  // namespace tme
