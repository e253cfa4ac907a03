#pragma once

#include <QObject>
#include <QTimer>

class QMainWindow;

namespace tme {

class RegistryAccess;
struct Settings;

/// Keeps where the frame stands: in the settings store, a moment after each change.
class FrameGeometry : public QObject {
  Q_OBJECT

 public:
  /// All of them must outlive it.
  FrameGeometry(QMainWindow& frame, RegistryAccess& registry, const Settings& settings);

  /// Puts the frame where it stood, or into the middle of the screen.
  void Restore();
  /// Writes what still waits; no later change is written.
  void Finish();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ApplyStored();
  void Write();

  QMainWindow& frame_;
  RegistryAccess& registry_;
  const Settings& settings_;
  /// Resize events come in bursts, and before the window knows whether it is maximised.
  QTimer delay_;
};

}  // namespace tme
