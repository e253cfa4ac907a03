#include "shell/CrashRecovery.h"

#include <QLocale>

#include "files/FileBytes.h"
#include "files/FileStamp.h"
#include "history/History.h"
#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/RecoverySnapshots.h"
#include "system/Dialogs.h"
#include "system/FilePath.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// A content over which the program ended that often must not end it at every start.
constexpr int kMostAttempts = 2;

}  // namespace

void CrashRecovery::Run() {
  SnapshotStore& store = global_.history.snapshots;
  if (!global_.history.folder.Claim()) return;
  for (const KeptVersion& snapshot : store.List()) {
    const int attempts = store.BeginReopening(snapshot.id);
    std::optional<std::string> content = global_.history.contents.Read(snapshot.digest);
    // One that cannot be read stays where it is, for whoever can repair it.
    if (!content) continue;
    if (attempts < kMostAttempts || !KeepAsVersion(snapshot, *content)) {
      Reopen(snapshot, std::move(*content));
      continue;
    }
    global_.dialogs.MsgBox(
        tr("The unsaved changes of %1 could not be opened again: the program ended over it, at %2 starts. "
           "Tools, File History has them.")
            .arg(snapshot.origin.title, QString::number(kMostAttempts)),
        MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
  }
  store.EndReopening();
  if (!reopened_.isEmpty()) global_.area.CascadeAfterOpening();
}

bool CrashRecovery::KeepAsVersion(const KeptVersion& snapshot, const std::string& content) {
  if (global_.history.versions.Keep(snapshot.origin, KeptReason::Rescued, content, snapshot.time)) return false;
  global_.history.snapshots.Forget(snapshot.id);
  return true;
}

void CrashRecovery::Reopen(const KeptVersion& snapshot, std::string content) {
  const ContentOrigin& origin = snapshot.origin;
  std::string in_file;
  const bool is_saved = !origin.path.isEmpty() && !ReadFileBytes(FilePath(origin.path), in_file) && in_file == content;
  // The crash came between the save and the poll after it.
  if (is_saved) return global_.history.snapshots.Forget(snapshot.id);
  const int slot = global_.documents.FindFreeSlot(origin.kind);
  if (slot < 0) {
    if (KeepAsVersion(snapshot, content)) TellNoRoom(origin.kind);
    return;
  }
  DocumentWindow& window = *global_.documents.At(origin.kind, slot);
  window.ShowKept(origin, std::move(content));
  window.AddNotice(tr("Rescued: the program ended before these changes were saved; they were kept at %1.")
                       .arg(QLocale().toString(snapshot.time.toLocalTime(), QLocale::ShortFormat)));
  constexpr std::int64_t kNanosecondsInMs = 1'000'000;
  const std::optional<FileStamp> stamp = StampOf(FilePath(origin.path));
  if (!origin.path.isEmpty() && stamp && stamp->modified_ns / kNanosecondsInMs > snapshot.time.toMSecsSinceEpoch())
    window.AddNotice(tr("The file on the disk is newer. A save replaces that content; Tools, File History keeps it."));
  snapshots_.Adopt(window, snapshot.id);
  reopened_.insert(&window);
}

void CrashRecovery::TellNoRoom(DocumentKind kind) {
  for (DocumentWindow* window : reopened_)
    if (window->Kind() == kind)
      window->AddNotice(tr("More documents were rescued than there are windows: Tools, File History has them."));
}

}  // namespace tme
