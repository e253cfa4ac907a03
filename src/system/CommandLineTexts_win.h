#pragma once

#include <QString>
#include <QStringList>

namespace tme {

/// The texts that a raw command line asks to be opened: what follows the program's name, and a "--" after it, as one
/// text, or, if that holds quotation marks or all the words in it name files, the arguments as the system splits them.
/// A text that names an existing file is made absolute, since the running instance that gets it may stand in another
/// folder. program: whole path of the executable; a command line that begins with it, blanks and all, has no other name
/// before its texts even without quotation marks.
QStringList CommandLineTexts(const QString& command_line, const QString& program);

}  // namespace tme
