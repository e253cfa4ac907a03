#include "shell/Rescue.h"

#include <QLocale>
#include <algorithm>
#include <exception>
#include <new>
#include <system_error>

#include "files/FileBytes.h"
#include "files/FileStamp.h"
#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "system/Dialogs.h"
#include "system/FilePath.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

using std::chrono::seconds;

constexpr std::chrono::milliseconds kLookInterval{2000};
constexpr seconds kShortestInterval{5};
/// What keeps the window waiting for a second comes at most every fifty: two per cent of the time. The disk may take a
/// larger share, on its own thread.
constexpr int kWindowFactor = 50;
constexpr int kDiskFactor = 20;
/// A document that is gathered in less need not wait until a large one has made up for its share: at five seconds
/// between its own, it stays far below.
constexpr std::chrono::milliseconds kQuick{10};
constexpr std::chrono::hours kPruneInterval{1};
/// A content over which the program ended that often must not end it at every start.
constexpr int kMostAttempts = 2;

}  // namespace

Rescue::Rescue(Global& global) : global_(global) {
  timer_.setInterval(kLookInterval);
  connect(&timer_, &QTimer::timeout, this, [this] { Look(Clock::now()); });
}

Rescue::~Rescue() { WaitForDisk(); }

void Rescue::Start() {
  timer_.start();
  PruneWhenDue(Clock::now());
}

void Rescue::PruneWhenDue(Clock::time_point now) {
  if (now < prune_at_) return;
  prune_at_ = now + kPruneInterval;
  if (pruning_.valid() && pruning_.wait_for(seconds(0)) != std::future_status::ready) return;
  try {
    pruning_ = std::async(std::launch::async, [&history = global_.history] { history.pruner.Prune(); });
  } catch (const std::system_error&) {
    return;  // no thread: the next time will do
  }
}

void Rescue::Stop() {
  timer_.stop();
  WaitForDisk();
}

void Rescue::ReopenAfterCrash() {
  if (!global_.history.folder.Claim()) return;
  for (const KeptVersion& aside : global_.history.snapshots.List()) {
    const int attempts = global_.history.snapshots.BeginReopening(aside.id);
    std::optional<std::string> content = global_.history.contents.Read(aside.digest);
    // One that cannot be read stays where it is, for whoever can repair it.
    if (!content) continue;
    if (attempts < kMostAttempts || !KeepInstead(aside, *content)) Reopen(aside, std::move(*content));
  }
  global_.history.snapshots.EndReopening();
  if (!watched_.isEmpty()) global_.area.CascadeAfterOpening();
}

bool Rescue::KeepInstead(const KeptVersion& aside, const std::string& content) {
  if (global_.history.versions.Keep(aside.origin, KeptReason::Rescued, content, aside.time)) return false;
  global_.history.snapshots.Forget(aside.id);
  global_.dialogs.MsgBox(
      tr("The unsaved changes of %1 could not be opened again: the program ended over it, at %2 starts. "
         "Tools, File History has them.")
          .arg(aside.origin.title)
          .arg(kMostAttempts),
      MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
  return true;
}

void Rescue::Reopen(const KeptVersion& aside, std::string content) {
  std::string in_file;
  const bool is_saved =
      !aside.origin.path.isEmpty() && !ReadFileBytes(FilePath(aside.origin.path), in_file) && in_file == content;
  // The crash came between the save and the look after it.
  if (is_saved) return global_.history.snapshots.Forget(aside.id);
  const int slot = global_.documents.FindFreeSlot(aside.origin.kind);
  if (slot < 0) {
    if (global_.history.versions.Keep(aside.origin, KeptReason::Rescued, content, aside.time)) return;
    global_.history.snapshots.Forget(aside.id);
    const auto tell = [&](DocumentSlot& shown) {
      if (watched_.contains(shown.window) && shown.window->Kind() == aside.origin.kind)
        shown.window->AddNotice(
            tr("More documents were rescued than there are windows: Tools, File History has them."));
    };
    return global_.documents.ForEach(tell);
  }
  DocumentWindow* window = global_.documents.At(aside.origin.kind, slot).window;
  window->ShowKept(aside.origin, std::move(content));
  window->AddNotice(tr("Rescued: the program ended before these changes were saved; they were kept at %1.")
                        .arg(QLocale().toString(aside.time.toLocalTime(), QLocale::ShortFormat)));
  constexpr std::int64_t kNanosecondsInMs = 1'000'000;
  const std::optional<FileStamp> stamp = StampOf(FilePath(aside.origin.path));
  if (!aside.origin.path.isEmpty() && stamp && stamp->modified_ns / kNanosecondsInMs > aside.time.toMSecsSinceEpoch())
    window->AddNotice(tr("The file on the disk is newer. A save replaces that content; Tools, File History keeps it."));
  watched_.insert(window, {aside.id, window->Revision(), true, {}, {}});
}

void Rescue::Look(Clock::time_point now) {
  Finished();
  DocumentWindow* next = nullptr;
  Clock::time_point due_since = Clock::time_point::max();
  global_.documents.ForEach([&](DocumentSlot& slot) {
    if (passed_over_.contains(slot.window)) return;
    // The changed flag alone may stand for a key that changed nothing.
    const bool unsaved = !slot.window->Tag().isEmpty() && slot.window->IsTouched();
    if (!unsaved) return Forget(slot.window);
    auto watched = watched_.find(slot.window);
    if (watched == watched_.end()) watched = watched_.insert(slot.window, {SnapshotStore::NewId(), 0, false, {}, {}});
    const bool is_new = !watched->is_aside || watched->revision != slot.window->Revision();
    const bool is_due = now >= watched->not_before && (watched->cost <= kQuick || now >= within_share_);
    if (!is_new || !is_due || watched->not_before >= due_since) return;
    due_since = watched->not_before;
    next = slot.window;
  });
  if (next && !writing_.valid()) PutAside(*next, watched_[next], now);
  PruneWhenDue(now);
}

void Rescue::Forget(DocumentWindow* window) {
  const auto found = watched_.find(window);
  if (found == watched_.end()) return;
  if (writing_for_ == window) writing_for_ = nullptr;
  global_.history.snapshots.Forget(found->id);
  watched_.erase(found);
}

void Rescue::LeaveForNextStart(DocumentWindow& window) {
  WaitForDisk();
  const auto found = watched_.constFind(&window);
  const QString id = found != watched_.constEnd() ? found->id : SnapshotStore::NewId();
  watched_.remove(&window);
  try {
    // Without room for it, what the last look put aside has to do.
    global_.history.snapshots.Put(id, window.Origin(), window.Content());
  } catch (const std::bad_alloc&) {
    return;
  }
}

void Rescue::PutAside(DocumentWindow& window, Watched& watched, Clock::time_point now) {
  const Clock::time_point start = Clock::now();
  watched.revision = window.Revision();
  watched.is_aside = true;
  watched.not_before = now + kShortestInterval;
  try {
    auto write = [this, number = ++last_write_, id = watched.id, origin = window.Origin(),
                  gathered = window.Content()]() mutable {
      const Clock::time_point begin = Clock::now();
      const std::string content = std::move(gathered);  // so that its memory is given back on this thread
      std::optional<FileFailure> failure;
      try {
        failure = global_.history.snapshots.Put(id, origin, content);
      } catch (const std::bad_alloc& error) {
        failure = FileFailure{error.what()};
      }
      // The next document need not wait for the timer; but if it did not, nobody waits for it here.
      const auto go_on = [this, number] {
        if (number != last_write_) return;
        WaitForDisk();
        if (timer_.isActive()) Look(Clock::now());
      };
      QMetaObject::invokeMethod(this, go_on, Qt::QueuedConnection);
      return Written{std::move(failure), Clock::now() - begin};
    };
    writing_ = std::async(std::launch::async, std::move(write));
    writing_for_ = &window;
  } catch (const std::exception& error) {  // no memory, no thread
    watched.is_aside = false;
    TellFailure(window, error.what());
  }
  watched.cost = Clock::now() - start;
  within_share_ = std::max(within_share_, now) + kWindowFactor * watched.cost;
}

void Rescue::Finished() {
  if (!writing_.valid() || writing_.wait_for(seconds(0)) != std::future_status::ready) return;
  const Written written = writing_.get();
  DocumentWindow* window = std::exchange(writing_for_, nullptr);
  if (const auto watched = watched_.find(window); watched != watched_.end()) {
    watched->not_before = std::max(watched->not_before, Clock::now() + kDiskFactor * written.took);
    if (written.failure) watched->is_aside = false;
  }
  if (written.failure && window) TellFailure(*window, written.failure->reason);
}

void Rescue::TellFailure(DocumentWindow& window, const std::string& reason) {
  if (window.Tag().isEmpty() || std::exchange(failure_told_, true)) return;
  window.AddNotice(
      tr("Unsaved changes cannot be put aside for the case of a crash: %1.").arg(QString::fromStdString(reason)));
}

void Rescue::WaitForDisk() {
  if (!writing_.valid()) return;
  writing_.wait();
  Finished();
}

}  // namespace tme
