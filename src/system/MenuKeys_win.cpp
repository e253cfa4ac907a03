#include "system/MenuKeys.h"

namespace tme {

MenuKeys::MenuKeys(QMenuBar& bar) : bar_(bar) {}

bool MenuKeys::eventFilter(QObject* watched, QEvent* event) {
  static_cast<void>(bar_);
  return QObject::eventFilter(watched, event);
}

}  // namespace tme
