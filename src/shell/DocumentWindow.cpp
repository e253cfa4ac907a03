#include "shell/DocumentWindow.h"

#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QVBoxLayout>

#include "platform/Dialogs.h"
#include "shell/Global.h"
#include "shell/NoticeBar.h"
#include "shell/mdform_TMEditor.h"

using namespace Qt::StringLiterals;

namespace tme {

DocumentWindow::DocumentWindow(Global& global, DocumentKind kind, int slot)
    : global_(global), kind_(kind), slot_number_(slot) {}

DocumentSlot& DocumentWindow::Slot() const { return global_.documents.At(kind_, slot_number_); }

QMdiSubWindow* DocumentWindow::SubWindow() const { return qobject_cast<QMdiSubWindow*>(parentWidget()); }

void DocumentWindow::Form_Activate() {
  global_.frame->SetActiveDocument(this);
  global_.frame->RefreshMenus(kind_);
  UpdateCommands();
}

void DocumentWindow::TakeSlot() {
  tag_ = QString::number(slot_number_);
  if (!layout_) {
    layout_ = new QVBoxLayout(this);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(0);
    notice_bar_ = new NoticeBar(this);
    layout_->addWidget(notice_bar_);
    auto* client = new QWidget(this);
    client->setObjectName(u"client"_s);
    layout_->addWidget(client, 1);
    BuildControls(*client);
  }
  ClearNotice();
}

void DocumentWindow::ReleaseSlot() {
  tag_.clear();
  DocumentSlot& slot = Slot();
  slot.path.clear();
  slot.title.clear();
  slot.changed = false;
  if (QWidget* sub_window = SubWindow()) sub_window->hide();
  global_.frame->DocumentClosed(this);
}

void DocumentWindow::ShowInFrame() { global_.frame->ShowDocument(this); }

void DocumentWindow::SetChanged(bool changed) {
  Slot().changed = changed;
  const QLatin1StringView marker(kChangedMarker);
  QString caption = windowTitle();
  if (changed == caption.endsWith(marker)) return;
  if (changed)
    caption += marker;
  else
    caption.chop(marker.size());
  setWindowTitle(caption);
}

void DocumentWindow::AddNotice(const QString& sentence) { notice_bar_->Add(sentence); }

void DocumentWindow::ClearNotice() { notice_bar_->Clear(); }

bool DocumentWindow::ConfirmClose(const std::function<bool()>& save) {
  if (!Slot().changed) return true;
  const QString question = u"Save this file?\r"_s + Slot().path;
  switch (global_.dialogs.MsgBox(question, MsgButtons::YesNoCancel, MsgIcon::Question, u"Document Changed"_s)) {
    case MsgAnswer::Yes:
      if (!save()) return false;
      break;
    case MsgAnswer::No:
      break;
    default:
      return false;
  }
  SetChanged(false);
  return true;
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
  // Hiding the frame's child is the shell's business, once the document is gone.
  event->setAccepted(tag_.isEmpty() || CloseDocument());
}

}  // namespace tme
