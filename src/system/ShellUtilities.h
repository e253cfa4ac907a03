#pragma once

#include <QString>
#include <QStringList>

namespace tme {

/// What the desktop knows of files and folders.
class ShellUtilities {
 public:
  /// A file, hidden and system files included; not a folder.
  bool FileExists(const QString& path) const;
  /// Folder that holds the program's executable, without a separator at the end.
  QString ProgramFolder() const;
  /// The folder of per-user data, created if missing.
  QString UserDataFolder() const;
  /// The Windows folder; elsewhere "drive_c/windows" of the Wine prefix (WINEPREFIX, else ~/.wine) if there is one.
  /// Empty when there is none.
  QString WindowsDirectory() const;
  /// Where a file dialog starts when nothing better is known: the first drive's root; elsewhere the user's home.
  QString LastResortFolder() const;
  /// True for a network path ("\\...") or a drive path ("x:\..."); elsewhere than on Windows also for "/...".
  bool IsRooted(const QString& path) const;
  /// This process's command line as the texts that are opened one by one: each of `paths`, the arguments that are no
  /// options. On Windows instead the raw text after the program's name and a first "--", as one; if it holds quotation
  /// marks or nothing but names of files, the arguments as the system splits them. What names an existing file (or
  /// folder, but not on Windows) is made absolute.
  QStringList CommandLineTexts(const QStringList& paths) const;
  /// A help text as it is shown: one line break for each "#".
  QString FormatHelpText(QString text) const;
};

}  // namespace tme
