#pragma once

#include <QObject>
#include <QStringList>
#include <functional>

class QMimeData;
class QWidget;

namespace tme {

/// Opens files that are dropped anywhere on the frame, its documents included. Everything else that is dropped, text
/// and pictures, is left to the control under the mouse.
class FileDrop : public QObject {
  Q_OBJECT

 public:
  using Open = std::function<void(const QStringList& paths)>;

  /// The frame must outlive it.
  FileDrop(QWidget& frame, Open open);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget& frame_;
  const Open open_;
};

/// The paths of a drop that consists of local files only; empty for any other.
QStringList DroppedFiles(const QMimeData& data);

}  // namespace tme
