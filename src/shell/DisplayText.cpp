#include "shell/DisplayText.h"

#include <QLocale>

namespace tme {

QString DisplayText(std::string_view text, qsizetype max_characters) {
  // Up to four bytes make a character: no more than these can be shown.
  const auto size = std::min(static_cast<qsizetype>(text.size()), 4 * max_characters);
  QString shown = QString::fromUtf8(text.data(), size);
  if (shown.size() > max_characters || size < static_cast<qsizetype>(text.size())) {
    shown.truncate(max_characters);
    shown += QChar(0x2026);
  }
  for (QChar& character : shown)
    if (character < u' ' && character != u'\t') character = QChar(0x2400 + character.unicode());
  return shown;
}

QString Counted(std::uint64_t count, const QString& one, const QString& many) {
  return count == 1 ? one : many.arg(QLocale().toString(static_cast<qulonglong>(count)));
}

QString TrimBlanks(const QString& text) {
  qsizetype first = 0, end = text.size();
  while (first < end && text[first] == u' ') ++first;
  while (end > first && text[end - 1] == u' ') --end;
  return text.mid(first, end - first);
}

}  // namespace tme
