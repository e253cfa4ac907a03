#pragma once

#include <QObject>

class QMdiArea;
class QMdiSubWindow;
class QMenu;

namespace tme {

struct Global;

/// The documents at the end of the Window menu, and what tells apart those of the same name: the folder behind the
/// name, and the full path as the tool tip of the menu's item and of the document's caption bar.
class WindowMenu : public QObject {
  Q_OBJECT

 public:
  /// The area and the menu must outlive it.
  WindowMenu(Global& global, QMdiArea& area, QMenu& menu);

  /// Gives a document's caption bar its tool tip.
  void Watch(QMdiSubWindow& child);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ListDocuments();
  QString CaptionOf(const QMdiSubWindow& child) const;

  Global& global_;
  QMdiArea& area_;
  QMenu& menu_;
};

}  // namespace tme
