#include "system/CommandLineTexts_win.h"

#include <windows.h>
#include <shellapi.h>

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace tme {

using namespace Qt::StringLiterals;

namespace {

bool IsBlank(QChar character) { return character == u' ' || character == u'\t'; }

bool IsFile(const QString& path) { return QFileInfo(path).isFile(); }

/// How many characters at the start are the program's name: to the second quotation mark if the first character is one,
/// else to the first blank.
qsizetype ProgramNameSize(const QString& line, const QString& program) {
  const bool is_whole =
      line.startsWith(program, Qt::CaseInsensitive) && (line.size() == program.size() || IsBlank(line[program.size()]));
  if (is_whole && !program.isEmpty()) return program.size();
  const bool quoted = line.startsWith(u'"');
  qsizetype end = quoted ? 1 : 0;
  while (end < line.size() && !(quoted ? line[end] == u'"' : IsBlank(line[end]))) ++end;
  return quoted && end < line.size() ? end + 1 : end;
}

QStringList SplitBySystem(const QString& arguments) {
  // The first of a command line is split by other rules, so a name goes before.
  int count = 0;
  wchar_t** const parts = ::CommandLineToArgvW((u"x "_s + arguments).toStdWString().c_str(), &count);
  QStringList texts;
  for (int index = 1; parts && index < count; ++index) texts.append(QString::fromWCharArray(parts[index]));
  ::LocalFree(parts);
  return texts;
}

}  // namespace

QStringList CommandLineTexts(const QString& command_line, const QString& program) {
  const QString rest = command_line.mid(ProgramNameSize(command_line, program));
  QString text = rest.trimmed();
  if (text == "--"_L1 || text.startsWith("-- "_L1)) text = text.mid(2).trimmed();  // what follows is no option
  QStringList texts = text.contains(u'"') ? SplitBySystem(text) : QStringList(text);
  texts.removeAll(QString());
  if (texts.size() == 1 && !IsFile(text)) {
    const QStringList names = text.split(u' ', Qt::SkipEmptyParts);
    if (std::all_of(names.begin(), names.end(), IsFile)) texts = names;
  }
  for (QString& each : texts)
    if (IsFile(each)) each = QDir::toNativeSeparators(QFileInfo(each).absoluteFilePath());
  return texts;
}

}  // namespace tme
