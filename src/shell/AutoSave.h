#pragma once

#include <QSet>
#include <QTimer>
#include <chrono>

namespace tme {

class DocumentWindow;
struct Global;

/// Saves every open document: once every so many minutes, and when the user asks for it.
class AutoSave : public QObject {
  Q_OBJECT

 public:
  /// How long no key may have been pressed before a dialog comes up unasked.
  static constexpr std::chrono::milliseconds kQuiet{10'000};

  explicit AutoSave(Global& global, std::chrono::milliseconds quiet = kQuiet);

  /// period: minutes, 1 to 99, which start the timer; 0 stops it. The one that counts is the setting's. Minutes counted
  /// so far stay counted, and a save comes when the count equals the period; intended. The count goes round after 99,
  /// so it always comes.
  void SetAutoSaveTimer(int period);
  bool IsRunning() const { return AutoSaveTimer.isActive(); }

  /// Saves every document that was edited since it was read or written. Chosen from the menu: also those only marked as
  /// changed; the windows are minimised meanwhile. By the timer: a document without a path says in a notice that its
  /// dialog waits until nobody types.
  void SaveAllDocuments();

  /// Sees every key that is pressed.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void AutoSaveTimer_Timer();
  void SaveDocuments();
  /// One dialog for a document that waits, once it is quiet.
  void AskWhenQuiet();

  Global& global_;
  QTimer AutoSaveTimer{this};
  int minutes_ = 0;
  bool auto_saving_ = false;
  const std::chrono::milliseconds quiet_;
  std::chrono::steady_clock::time_point last_key_;
  QTimer quiet_timer_{this};  ///< runs while documents wait
  QSet<DocumentWindow*> waiting_;
};

}  // namespace tme
