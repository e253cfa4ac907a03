#include "shell/FileDrop.h"

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

namespace tme {

QStringList DroppedFiles(const QMimeData& data) {
  QStringList paths;
  for (const QUrl& url : data.urls()) {
    if (!url.isLocalFile()) return {};
    paths += QDir::toNativeSeparators(url.toLocalFile());
  }
  return paths;
}

FileDrop::FileDrop(QWidget& frame, Open open) : frame_(frame), open_(std::move(open)) {
  frame.setAcceptDrops(true);
  // A control that takes drops of its own is asked before the frame, so the frame alone would not see them all.
  qApp->installEventFilter(this);
}

bool FileDrop::eventFilter(QObject* watched, QEvent* event) {
  const bool drops = event->type() == QEvent::Drop;
  if (!drops && event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove) return false;
  const auto* widget = qobject_cast<const QWidget*>(watched);
  if (!widget || widget->window() != &frame_) return false;
  auto* drop = static_cast<QDropEvent*>(event);
  const QStringList paths = DroppedFiles(*drop->mimeData());
  if (paths.isEmpty()) return false;
  if (QApplication::activeModalWidget() || QGuiApplication::overrideCursor()) {
    drop->ignore();
    return true;
  }
  drop->setDropAction(Qt::CopyAction);
  drop->accept();
  if (!drops) return true;
  // Later: where the files come from waits for the end of the drop, and opening may ask.
  QMetaObject::invokeMethod(
      this, [this, paths] { open_(paths); }, Qt::QueuedConnection);
  return true;
}

}  // namespace tme
