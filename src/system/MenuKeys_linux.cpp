#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QWindow>
#include <algorithm>

#include "system/MenuKeys.h"

namespace tme {

MenuKeys::MenuKeys(QMenuBar& bar) : bar_(bar) { qApp->installEventFilter(this); }

bool MenuKeys::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || QApplication::activePopupWidget())
    return QObject::eventFilter(watched, event);
  const auto& key = *static_cast<QKeyEvent*>(event);
  auto* widget = qobject_cast<QWidget*>(watched);
  if (key.key() != Qt::Key_F10 || !widget) return QObject::eventFilter(watched, event);
  if (key.modifiers() == Qt::ShiftModifier) {
    // The window hands it to the focus widget, at its caret.
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, {}, {}, Qt::NoModifier);
    QCoreApplication::sendEvent(widget->window()->windowHandle(), &menu);
    return true;
  }
  if (key.modifiers() != Qt::NoModifier || widget->window() != bar_.window())
    return QObject::eventFilter(watched, event);
  const QList<QAction*> menus = bar_.actions();
  const auto first = std::find_if(menus.begin(), menus.end(), [](const QAction* menu) { return menu->isVisible(); });
  if (first != menus.end()) bar_.setActiveAction(*first);
  return true;
}

}  // namespace tme
