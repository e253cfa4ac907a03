#include "windows/text/PadKeys.h"

#include <QKeyEvent>
#include <algorithm>
#include <array>

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

bool IsEnterKey(int key) { return key == Qt::Key_Return || key == Qt::Key_Enter; }

bool IsModifierKey(int key) {
  return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta ||
         key == Qt::Key_AltGr;
}

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
  constexpr std::array kBoundKeys{Qt::Key_Left,   Qt::Key_Right,  Qt::Key_Up,       Qt::Key_Down,      Qt::Key_Home,
                                  Qt::Key_End,    Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Backspace, Qt::Key_Delete,
                                  Qt::Key_Insert, Qt::Key_A,      Qt::Key_Y,        Qt::Key_Z};
  return std::ranges::find(kBoundKeys, key.key()) == kBoundKeys.end();
}

}  // namespace tme
