#pragma once

#include <QObject>

class QMenuBar;

namespace tme {

/// The keys that lead to menus in every window: F10 to the frame's menu bar, Shift+F10 to the context menu of what has
/// the focus, as the Menu key does. Where the system itself sends these on, this does nothing.
class MenuKeys : public QObject {
 public:
  /// The bar must outlive it.
  explicit MenuKeys(QMenuBar& bar);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QMenuBar& bar_;
};

}  // namespace tme
