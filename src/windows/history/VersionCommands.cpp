#include "windows/history/VersionCommands.h"

#include <QFileInfo>

#include "files/FileFailure.h"
#include "history/History.h"
#include "shell/BackgroundWork.h"
#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/FileMessages.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"
#include "shell/SaveDialog.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "windows/history/VersionComparison.h"
#include "windows/history/VersionList.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// A file's own bytes can be held whole by a window that holds its document so; anything else comes back as it was.
Holding HoldingFor(const KeptVersion& version, const DocumentWindow& window) {
  return version.reason == KeptReason::BeforeSave && window.File().HeldAs() == Holding::Whole ? Holding::Whole
                                                                                              : version.origin.holding;
}

}  // namespace

void VersionCommands::Say(const QString& text) {
  global_.dialogs.MsgBox(text, MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

std::optional<std::string> VersionCommands::ContentOf(const KeptVersion& version) {
  try {
    if (std::optional<std::string> content = global_.history.contents.Read(version.digest)) return content;
    Say(Summary({}, version, global_.history.folder.Path()));
  } catch (const std::exception&) {
    Say(tr("This version could not be read: %1.").arg(ExceptionText(std::current_exception())));
  }
  return std::nullopt;
}

DocumentWindow* VersionCommands::WindowOf(const KeptVersion& version) const {
  DocumentWindow* found = nullptr;
  global_.documents.ForEachOpen([&](DocumentWindow& window) {
    const bool same = !version.origin.path.isEmpty() && window.File().Path() == version.origin.path &&
                      window.Kind() == version.origin.kind;
    // Of two documents of one file, it is about the one that the user looks at.
    if (same && (!found || &window == global_.area.ActiveDocument())) found = &window;
  });
  return found;
}

std::optional<std::string> VersionCommands::UnsavedOf(DocumentWindow* window) {
  // What a save would write may leave out what the file has: without edits, the file counts.
  const bool in_file = window && !window->IsModified() && QFileInfo::exists(window->File().Path());
  if (!window || in_file) return std::nullopt;
  return window->Content();
}

std::optional<std::string> VersionCommands::UnsavedNow(const KeptVersion& version) const {
  return UnsavedOf(WindowOf(version));
}

bool VersionCommands::OpenAsNew(const KeptVersion& version) {
  std::optional<std::string> content = ContentOf(version);
  DocumentWindow* window = content ? NewDocument(global_, version.origin.kind) : nullptr;
  if (!window) return false;
  window->PutContent(std::move(*content), HoldingFor(version, *window));
  window->AddNotice(tr("This is %1 as it was kept at %2.").arg(ShownName(version.origin), ShownTime(version.time)));
  return true;
}

QString VersionCommands::AskForCopyPath(const ContentOrigin& origin) {
  const QFileInfo name(origin.title);
  QString ending = origin.path.isEmpty() ? QString::fromLatin1(NameOf(origin.kind)) : name.suffix();
  if (!ending.isEmpty()) ending.prepend(u'.');
  // What a rich-text save writes goes by the entry that its own dialog had.
  const int filter_index = global_.common_dialog.filter_index;
  QString path = AskForSavePath(global_, {tr("Save a Copy"), tr("All Files") + u"|*.*"_s, ending,
                                          name.completeBaseName() + tr(" (kept)") + ending});
  global_.common_dialog.filter_index = filter_index;
  return path;
}

void VersionCommands::SaveCopy(const KeptVersion& version) {
  const std::optional<std::string> content = ContentOf(version);
  const QString path = content ? AskForCopyPath(version.origin) : QString();
  if (path.isEmpty()) return;
  const ContentOrigin target{version.origin.kind, path, QFileInfo(path).fileName()};
  if (const auto failure = global_.history.files.Replace(target, *content))
    Say(tr("The copy could not be written to %1: %2.  %3")
            .arg(path, QString::fromStdString(failure->reason), FileMessages::WhatIsSafe(path, *failure)));
  else
    RememberLastSaveFolder(global_.registry, QFileInfo(path).absolutePath());
}

bool VersionCommands::Restore(const KeptVersion& version) {
  std::optional<std::string> content = ContentOf(version);
  if (!content) return false;
  DocumentWindow* window = WindowOf(version);
  const int slot = global_.documents.FindFreeSlot(version.origin.kind);
  if (!window && slot < 0) {
    ShowNoFreeSlot(global_, version.origin.kind);
    return false;
  }
  const std::optional<std::string> now = window ? std::optional(window->Content()) : std::nullopt;
  if (now == content) return false;  // pressed twice
  const auto failure = now ? global_.history.versions.Keep(version.origin, KeptReason::BeforeRestore, *now)
                           : global_.history.files.KeepFile(version.origin, KeptReason::BeforeRestore);
  if (failure) {
    Say(tr("What stands there now could not be kept: %1.  Nothing was restored.")
            .arg(QString::fromStdString(failure->reason)));
    return false;
  }
  // A file that is not open need not be there any more: its document comes back without it.
  if (window)
    window->PutContent(std::move(*content), HoldingFor(version, *window));
  else
    global_.documents.At(version.origin.kind, slot)->ShowKept(version.origin, std::move(*content));
  return true;
}

}  // namespace tme
