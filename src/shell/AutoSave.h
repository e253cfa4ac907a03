#pragma once

#include <QTimer>

namespace tme {

struct Global;

/// Saves every open document: once every so many minutes, and when the user asks for it.
class AutoSave : public QObject {
  Q_OBJECT

 public:
  explicit AutoSave(Global& global);

  /// period: minutes, 1 to 99, which start the timer; 0 stops it. The one that counts is the setting's. Minutes counted
  /// so far stay counted, and a save comes when the count equals the period; intended. The count goes round after 99,
  /// so it always comes.
  void SetAutoSaveTimer(int period);
  bool IsRunning() const { return AutoSaveTimer.isActive(); }

  /// Sends every document that was edited since it was read or written its save command. Chosen from the menu: also
  /// those only marked as changed; the windows are minimised meanwhile, then restored and cascaded. By the timer: only
  /// the frame's caption tells.
  void SaveAllDocuments();

 private:
  void AutoSaveTimer_Timer();
  void SaveDocuments();

  Global& global_;
  QTimer AutoSaveTimer{this};
  int minutes_ = 0;
  bool auto_saving_ = false;
};

}  // namespace tme
