#include "shell/DisplayText.h"

#include <QLocale>

#include "base/Utf8.h"

namespace tme {
namespace {

/// Where the byte 0 would be; 0x80 is the first that occurs.
constexpr char16_t kFirstByte = 0xDC00;

}  // namespace

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

QString EditableText(std::string_view text) {
  if (utf8::IsValid(text)) return TextOf(text);
  QString editable;
  while (!text.empty()) {
    std::string_view rest = text;
    if (utf8::TakeCharacter(rest)) {
      editable += TextOf(text.substr(0, text.size() - rest.size()));
    } else {
      editable += QChar(kFirstByte + static_cast<unsigned char>(text.front()));
      rest.remove_prefix(1);
    }
    text = rest;
  }
  return editable;
}

std::string EditedBytes(const QString& text) {
  std::string bytes;
  qsizetype start = 0;
  for (qsizetype at = 0; at < text.size(); ++at) {
    if (text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate()) {
      ++at;
    } else if (text[at] >= QChar(kFirstByte + 0x80) && text[at] <= QChar(kFirstByte + 0xFF)) {
      bytes += text.mid(start, at - start).toStdString();
      bytes.push_back(static_cast<char>(text[at].unicode() & 0xFF));
      start = at + 1;
    }
  }
  return bytes + text.mid(start).toStdString();
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
