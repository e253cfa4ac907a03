#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <chrono>

#include "system/SessionEnd.h"

namespace tme {

class mdform_TMEditor;

/// The shutdown at the end of a session: the frame's own, which asks about unsaved changes, but a question may stand
/// for a while only; unanswered, it and all after it count as closed by the user: Cancel, which writes nothing.
class SessionShutdown : public QObject {
  Q_OBJECT

 public:
  /// How long a question may stand.
  static constexpr std::chrono::milliseconds kPatience{10'000};

  /// The frame must outlive it.
  explicit SessionShutdown(mdform_TMEditor& frame, std::chrono::milliseconds patience = kPatience);

  /// Leaves the program as soon as open questions and running work are done with. Questions::Refused: no question may
  /// stand at all. Calling it again changes nothing but that.
  void EndSession(SessionEnd::Questions questions);

 private:
  void Check();
  void CloseWhenLate(QWidget& question);

  mdform_TMEditor& frame_;
  const std::chrono::milliseconds patience_;
  QTimer timer_;
  QPointer<QWidget> question_;
  std::chrono::steady_clock::time_point since_;
  /// Nobody answers: the user is gone, or must not be asked.
  bool nobody_there_ = false;
};

}  // namespace tme
