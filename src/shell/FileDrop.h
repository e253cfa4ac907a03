#pragma once

#include <QObject>

class QMimeData;

namespace tme {

struct Global;

/// Opens files that are dropped anywhere on the frame, its documents included. Everything else that is dropped, text
/// and pictures, is left to the control under the mouse.
class FileDrop : public QObject {
  Q_OBJECT

 public:
  explicit FileDrop(Global& global);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  Global& global_;
};

/// The paths of a drop that consists of local files only; empty for any other.
QStringList DroppedFiles(const QMimeData& data);

}  // namespace tme
