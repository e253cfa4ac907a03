#include "windows/text/PadKeys.h"

#include <QKeyEvent>

namespace tme {
namespace {

/// 0: none.
char32_t FirstCharacter(const QString& text) {
  if (text.isEmpty()) return 0;
  if (text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate())
    return QChar::surrogateToUcs4(text[0], text[1]);
  return text[0].unicode();
}

}  // namespace

bool TypesText(const QKeyEvent& key) {
  const char32_t first = FirstCharacter(key.text());
  const QChar::Category category = QChar::category(first);
  const Qt::KeyboardModifiers held = key.modifiers();
  if (category == QChar::Other_Control || category == QChar::Other_Surrogate) return false;
  if (held.testFlag(Qt::MetaModifier)) return false;
  if (category == QChar::Other_Format) return true;
  return held.testFlag(Qt::ControlModifier) == held.testFlag(Qt::AltModifier);
}

bool IsUnboundKey(const QKeyEvent& key) {
  if (TypesText(key)) return false;
  if (key.modifiers().testFlag(Qt::MetaModifier)) return true;
  if (!key.modifiers().testFlag(Qt::ControlModifier)) return false;
  switch (key.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
    case Qt::Key_Insert:
    case Qt::Key_A:
    case Qt::Key_Y:
    case Qt::Key_Z:
      return false;
    default:
      return true;
  }
}

}  // namespace tme
