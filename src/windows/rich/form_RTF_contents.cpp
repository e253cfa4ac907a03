// What form_RTF says about what a file holds besides its text.

#include <algorithm>

#include "files/CodePage.h"
#include "shell/Global.h"
#include "shell/LongWork.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "windows/rich/RtfContentsWindow.h"
#include "windows/rich/RtfImport.h"
#include "windows/rich/form_RTF.h"

namespace tme {
namespace {

/// A file that has none of these holds nothing active: a control word is never parted.
bool MayBeActive(std::string_view bytes) {
  constexpr std::string_view kWords[] = {"\\objdata",   "\\object",  "\\fldinst", "\\template", "\\file", "\\fontfile",
                                         "\\hlinkbase", "\\linkval", "\\mm",      "\\nextfile", "\\sv"};
  return std::ranges::any_of(kWords, [&](std::string_view word) { return bytes.find(word) != std::string_view::npos; });
}

}  // namespace

void form_RTF::AddActiveNotice(std::string_view bytes) {
  if (!MayBeActive(bytes) || !rtf::ListContents(bytes, BytesToUtf8).IsActive()) return;
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
