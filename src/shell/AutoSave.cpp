#include "shell/AutoSave.h"

#include <QApplication>
#include <QMdiSubWindow>
#include <QScopedValueRollback>
#include <chrono>

#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/mdform_TMEditor.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tme {
namespace {

/// A question would be covered by another one, or a document is half read.
bool IsBusy() {
  return QApplication::activeModalWidget() || QApplication::activePopupWidget() || QGuiApplication::overrideCursor();
}

}  // namespace

AutoSave::AutoSave(Global& global) : global_(global) {
  AutoSaveTimer.setObjectName(u"AutoSaveTimer"_s);
  AutoSaveTimer.setInterval(1min);
  connect(&AutoSaveTimer, &QTimer::timeout, this, &AutoSave::AutoSaveTimer_Timer);
}

void AutoSave::SetAutoSaveTimer(int period) {
  if (period == 0)
    AutoSaveTimer.stop();
  else if (!AutoSaveTimer.isActive())
    AutoSaveTimer.start();
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
  mdform_TMEditor& frame = *global_.frame;
  if (auto_saving_) {
    frame.setWindowTitle(kProgramTitle + u" - AutoSaving Open Files"_s);
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
  const DocumentWindow* active = frame.ActiveDocument();
  each_document([](QMdiSubWindow& window) { window.showMinimized(); });
  SaveDocuments();
  each_document([](QMdiSubWindow& window) { window.showNormal(); });
  if (active && !active->Tag().isEmpty()) frame.Activate(*active);
  frame.ArrangeWindows(0);
}

void AutoSave::SaveDocuments() {
  const QScopedValueRollback unasked(global_.saving_unasked, auto_saving_);
  global_.documents.ForEach([this](const DocumentSlot& slot) {
    DocumentWindow& window = *slot.window;
    if (window.Tag().isEmpty()) return;
    // A mark without an edit is no reason to write a file unasked, but Save All leaves none behind.
    if (!window.IsTouched() && (auto_saving_ || !slot.changed)) return;
    SendCommand(global_, window, window.Kind() == DocumentKind::Reg ? "FileSaveRegular" : "SaveFile");
  });
}

}  // namespace tme
