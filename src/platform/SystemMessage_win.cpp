#include "platform/SystemMessage_win.h"

#include <windows.h>

#include <QString>
#include <array>

namespace tme {

using namespace Qt::StringLiterals;

std::string SystemMessage(unsigned long error) {
  constexpr DWORD kFlags =
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;  // no line breaks
  std::array<wchar_t, 1024> words;
  const DWORD size =
      ::FormatMessageW(kFlags, nullptr, error, 0, words.data(), static_cast<DWORD>(words.size()), nullptr);
  QString text = QString::fromWCharArray(words.data(), static_cast<qsizetype>(size)).trimmed();
  while (text.endsWith(u'.')) text.chop(1);
  if (text.isEmpty()) text = u"System error %1"_s.arg(error);
  return text.toStdString();
}

}  // namespace tme
