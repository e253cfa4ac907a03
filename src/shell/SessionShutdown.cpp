#include "shell/SessionShutdown.h"

#include <QApplication>
#include <QThread>
#include <algorithm>

#include "shell/mdform_TMEditor.h"

namespace tme {
namespace {

constexpr std::chrono::milliseconds kBetweenChecks{100};

}  // namespace

SessionShutdown::SessionShutdown(mdform_TMEditor& frame, std::chrono::milliseconds patience)
    : frame_(frame), patience_(patience) {
  timer_.setInterval(std::min(kBetweenChecks, patience));
  // Queued: a timer does not fire again while its own call lasts, and leaving may last.
  connect(&timer_, &QTimer::timeout, this, &SessionShutdown::Check, Qt::QueuedConnection);
}

void SessionShutdown::EndSession(SessionEnd::Questions questions) {
  if (questions == SessionEnd::Questions::Refused) {
    nobody_there_ = true;
    frame_.LeaveUnattended();
  }
  if (timer_.isActive()) return;
  timer_.start();
  Check();
}

void SessionShutdown::Check() {
  if (QWidget* question = QApplication::activeModalWidget()) return CloseWhenLate(*question);
  question_.clear();
  if (QWidget* popup = QApplication::activePopupWidget()) {
    popup->close();
    return;
  }
  // Never from within something else that goes on: its documents would be gone when it does.
  const bool idle = QThread::currentThread()->loopLevel() <= 1 && !QGuiApplication::overrideCursor();
  if (idle && !frame_.HasLeft()) frame_.ExitApplication();
}

void SessionShutdown::CloseWhenLate(QWidget& question) {
  const auto now = std::chrono::steady_clock::now();
  if (question_ != &question) {
    question_ = &question;
    since_ = now;
  }
  if (!nobody_there_ && now - since_ < patience_) return;
  nobody_there_ = true;
  frame_.LeaveUnattended();
  question.close();
}

}  // namespace tme
