#pragma once

#include <QApplication>
#include <QToolButton>
#include <string>

#include "Editor.h"
#include "shell/GlobalMenus.h"
#include "shell/NoticeBar.h"
#include "shell/OpenDispatch.h"
#include "windows/rich/RtfPad.h"
#include "windows/rich/form_RTF.h"

namespace tme {

class FormRtf : public Editor {
 protected:
  FormRtf() { Start(); }
  form_RTF& Window(int slot = 0) { return dynamic_cast<form_RTF&>(*global_.documents.At(DocumentKind::Rtf, slot)); }
  form_RTF& Open(const std::string& bytes) {
    OpenPathList(global_, File(QStringLiteral("letter.rtf"), bytes));
    QApplication::processEvents();
    return Window();
  }
  form_RTF& New() {
    NewDocument(global_, DocumentKind::Rtf);
    return Window();
  }
  static RtfPad& PadOf(form_RTF& window) { return static_cast<RtfPad&>(window.EditingArea()); }
  static QString NoticeOf(form_RTF& window) { return window.findChild<NoticeBar*>()->Text(); }
  static void Click(form_RTF& window, const QString& tag) { window.findChild<QToolButton*>(tag)->click(); }
  bool IsChecked(const char* item) { return global_.menus.Action(QLatin1StringView(item))->isChecked(); }
};

}  // namespace tme
