// What form_RTF says about what a file holds besides its text.

#include "files/CodePage.h"
#include "shell/Global.h"
#include "shell/LongWork.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "windows/rich/RtfContentsWindow.h"
#include "windows/rich/RtfImport.h"
#include "windows/rich/form_RTF.h"

namespace tme {

/// Takes less than half as long as reading the text.
void form_RTF::AddActiveNotice(std::string_view bytes) {
  if (!rtf::ListContents(bytes, BytesToUtf8).IsActive()) return;
  AddNotice(tr("Other programs may run or fetch something that this file holds. This editor does not."),
            {{tr("Show What It Contains"), [this] { ShowContents(); }}}, NoticeLife::Document);
}

void form_RTF::ShowContents() {
  const WaitCursor wait_cursor;
  LongWork work(&global_.frame, tr("Looking through %1").arg(file_.Title()));
  const rtf::Contents contents = rtf::ListContents(Content(), BytesToUtf8, StepOf(work));
  if (contents.is_complete) (new RtfContentsWindow(contents, file_.Title(), &global_.frame))->show();
}

}  // namespace tme
