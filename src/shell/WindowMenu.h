#pragma once

#include <QObject>

class QMdiSubWindow;
class QMenu;

namespace tme {

class DocumentArea;
class DocumentTable;

/// The documents at the end of the Window menu, with the folder where names are alike, and the full path as the tool
/// tip of the menu's item and of the document's caption bar.
class WindowMenu : public QObject {
  Q_OBJECT

 public:
  /// The area owns it; the table and the menu must outlive it.
  WindowMenu(DocumentTable& documents, DocumentArea& area, QMenu& menu);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ListDocuments();
  QString CaptionOf(const QMdiSubWindow& child) const;

  DocumentTable& documents_;
  DocumentArea& area_;
  QMenu& menu_;
};

}  // namespace tme
