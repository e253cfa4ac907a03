#include "shell/AutoSave.h"

#include <QApplication>
#include <QMdiSubWindow>
#include <algorithm>
#include <chrono>
#include <utility>

#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/mdform_TMEditor.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tme {
namespace {

QString SavingTitle() { return AutoSave::tr("%1 - AutoSaving Open Files").arg(kProgramTitle); }

QString WaitingNotice() {
  return AutoSave::tr(
      "AutoSave asks for the name of this document once no key has been pressed for ten seconds. Until "
      "then its content is kept for the case of a crash.");
}

/// A question would be covered by another one, or a document is half read.
bool IsBusy() {
  return QApplication::activeModalWidget() || QApplication::activePopupWidget() || QGuiApplication::overrideCursor();
}

}  // namespace

AutoSave::AutoSave(Global& global, std::chrono::milliseconds quiet) : global_(global), quiet_(quiet) {
  quiet_timer_.setInterval(std::min<std::chrono::milliseconds>(1s, quiet));
  connect(&quiet_timer_, &QTimer::timeout, this, &AutoSave::AskWhenQuiet);
  qApp->installEventFilter(this);
  AutoSaveTimer.setObjectName(u"AutoSaveTimer"_s);
  AutoSaveTimer.setInterval(1min);
  connect(&AutoSaveTimer, &QTimer::timeout, this, &AutoSave::AutoSaveTimer_Timer);
}

void AutoSave::SetAutoSaveTimer(int period) {
  if (period == 0) {
    AutoSaveTimer.stop();
    quiet_timer_.stop();
    for (DocumentWindow* window : std::exchange(waiting_, {})) window->WithdrawNotice(WaitingNotice());
  } else if (!AutoSaveTimer.isActive())
    AutoSaveTimer.start();
}

bool AutoSave::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress || event->type() == QEvent::InputMethod)
    last_key_ = std::chrono::steady_clock::now();
  return QObject::eventFilter(watched, event);
}

void AutoSave::AskWhenQuiet() {
  if (IsBusy() || std::chrono::steady_clock::now() - last_key_ < quiet_) return;
  DocumentWindow* next = nullptr;
  global_.documents.ForEach([&](DocumentWindow& window) {
    if (next || !waiting_.remove(&window)) return;
    window.WithdrawNotice(WaitingNotice());
    // Saved or closed meanwhile, it needs no name any more.
    if (window.IsOpen() && window.File().Path().isEmpty() && window.IsModified()) next = &window;
  });
  if (waiting_.isEmpty()) quiet_timer_.stop();
  if (!next) return;
  global_.area.Activate(*next);  // so that it is seen, too
  global_.frame.setWindowTitle(SavingTitle());
  next->SavePlain({.asked_for = next->File().Title()});
  global_.frame.setWindowTitle(kProgramTitle);
}

void AutoSave::AutoSaveTimer_Timer() {
  const int period = global_.settings.auto_save_period;
  // The minute that is due waits for the next one.
  if (minutes_ + 1 == period && IsBusy()) return;
  if (++minutes_ >= kMaxAutoSavePeriod && minutes_ != period) minutes_ = 0;
  if (minutes_ != period) return;
  minutes_ = 0;
  auto_saving_ = true;
  SaveAllDocuments();
}

void AutoSave::SaveAllDocuments() {
  mdform_TMEditor& frame = global_.frame;
  if (auto_saving_) {
    frame.setWindowTitle(SavingTitle());
    SaveDocuments();
    frame.setWindowTitle(kProgramTitle);
    auto_saving_ = false;
    return;
  }
  const auto each_document = [this](const std::function<void(QMdiSubWindow&)>& visit) {
    global_.documents.ForEachOpen([&](const DocumentWindow& window) { visit(*window.SubWindow()); });
  };
  const DocumentWindow* active = global_.area.ActiveDocument();
  each_document([](QMdiSubWindow& window) { window.showMinimized(); });
  SaveDocuments();
  each_document([](QMdiSubWindow& window) { window.showNormal(); });
  if (active && active->IsOpen()) global_.area.Activate(*active);
  global_.area.ArrangeWindows(0);
}

void AutoSave::SaveDocuments() {
  const SaveRequest request{.caller = auto_saving_ ? SaveRequest::Caller::AutoSave : SaveRequest::Caller::User};
  global_.documents.ForEachOpen([&](DocumentWindow& window) {
    // A mark without an edit is no reason to write a file unasked, but Save All leaves none behind.
    if (!window.IsModified() && (auto_saving_ || !window.File().IsChanged())) return;
    if (!auto_saving_ || !window.File().Path().isEmpty()) {
      window.SavePlain(request);
      return;
    }
    if (waiting_.contains(&window)) return;
    waiting_.insert(&window);
    window.AddNotice(WaitingNotice());
    quiet_timer_.start();
  });
}

}  // namespace tme
