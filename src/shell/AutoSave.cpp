#include "shell/AutoSave.h"

#include <QApplication>
#include <QMdiSubWindow>
#include <QScopedValueRollback>
#include <algorithm>
#include <chrono>
#include <utility>

#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/mdform_TMEditor.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tme {
namespace {

QString SavingTitle() { return kProgramTitle + u" - AutoSaving Open Files"_s; }

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
  looks_.setInterval(std::min<std::chrono::milliseconds>(1s, quiet));
  connect(&looks_, &QTimer::timeout, this, &AutoSave::AskWhenQuiet);
  qApp->installEventFilter(this);
  AutoSaveTimer.setObjectName(u"AutoSaveTimer"_s);
  AutoSaveTimer.setInterval(1min);
  connect(&AutoSaveTimer, &QTimer::timeout, this, &AutoSave::AutoSaveTimer_Timer);
}

void AutoSave::SetAutoSaveTimer(int period) {
  if (period == 0) {
    AutoSaveTimer.stop();
    looks_.stop();
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
  global_.documents.ForEach([&](const DocumentSlot& slot) {
    if (next || !waiting_.remove(slot.window)) return;
    slot.window->WithdrawNotice(WaitingNotice());
    // Saved or closed meanwhile, it needs no name any more.
    if (!slot.window->Tag().isEmpty() && slot.path.isEmpty() && slot.window->IsTouched()) next = slot.window;
  });
  if (waiting_.isEmpty()) looks_.stop();
  if (!next) return;
  global_.area.Activate(*next);  // so that it is seen, too
  global_.frame.setWindowTitle(SavingTitle());
  global_.asked_for = next->Origin().title;
  SaveDocument(*next);
  global_.asked_for.clear();
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
    global_.documents.ForEach([&](const DocumentSlot& slot) {
      if (!slot.window->Tag().isEmpty()) visit(*slot.window->SubWindow());
    });
  };
  const DocumentWindow* active = global_.area.ActiveDocument();
  each_document([](QMdiSubWindow& window) { window.showMinimized(); });
  SaveDocuments();
  each_document([](QMdiSubWindow& window) { window.showNormal(); });
  if (active && !active->Tag().isEmpty()) global_.area.Activate(*active);
  global_.area.ArrangeWindows(0);
}

void AutoSave::SaveDocuments() {
  const QScopedValueRollback unasked(global_.saving_unasked, auto_saving_);
  global_.documents.ForEach([this](const DocumentSlot& slot) {
    DocumentWindow& window = *slot.window;
    if (window.Tag().isEmpty()) return;
    // A mark without an edit is no reason to write a file unasked, but Save All leaves none behind.
    if (!window.IsTouched() && (auto_saving_ || !slot.changed)) return;
    if (!auto_saving_ || !slot.path.isEmpty()) return SaveDocument(window);
    if (waiting_.contains(&window)) return;
    waiting_.insert(&window);
    window.AddNotice(WaitingNotice());
    looks_.start();
  });
}

void AutoSave::SaveDocument(DocumentWindow& window) {
  SendCommand(global_, window, window.Kind() == DocumentKind::Reg ? "FileSaveRegular" : "SaveFile");
}

}  // namespace tme
