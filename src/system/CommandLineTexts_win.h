#pragma once

#include <QString>
#include <QStringList>

namespace tme {

/// What ShellUtilities::CommandLineTexts finds in a raw command line. program: whole path of the executable; a command
/// line that begins with it, blanks and all, has no other name before its texts even without quotation marks.
QStringList CommandLineTexts(const QString& command_line, const QString& program);

}  // namespace tme
