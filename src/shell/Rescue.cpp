#include "shell/Rescue.h"

#include <QLocale>
#include <algorithm>
#include <exception>
#include <new>

#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/mdform_TMEditor.h"

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

}  // namespace

Rescue::Rescue(Global& global) : global_(global) {
  timer_.setInterval(kLookInterval);
  connect(&timer_, &QTimer::timeout, this, [this] { Look(Clock::now()); });
}

Rescue::~Rescue() { WaitForDisk(); }

void Rescue::Start() {
  timer_.start();
  pruning_ = std::async(std::launch::async, [&history = global_.history] { history.Prune(); });
}

void Rescue::Stop() {
  timer_.stop();
  WaitForDisk();
}

void Rescue::ReopenAfterCrash() {
  if (!global_.history.Claim()) return;
  for (const AsideContent& aside : global_.history.Aside()) {
    // One that cannot be read stays where it is, for whoever can repair it.
    if (std::optional<std::string> content = global_.history.Content(aside.digest)) Reopen(aside, std::move(*content));
  }
  if (!watched_.isEmpty()) global_.frame->CascadeAfterOpening();
}

void Rescue::Reopen(const AsideContent& aside, std::string content) {
  std::string in_file;
  const bool is_saved =
      !aside.origin.path.isEmpty() && !ReadFileBytes(FilePath(aside.origin.path), in_file) && in_file == content;
  // The crash came between the save and the look after it.
  if (is_saved) return global_.history.ForgetAside(aside.id);
  const int slot = global_.documents.FindFreeSlot(static_cast<int>(TraitsOf(aside.origin.kind).slot_code));
  if (slot < 0) {
    if (global_.history.Keep(aside.origin, KeptReason::Rescued, content, aside.time)) return;
    global_.history.ForgetAside(aside.id);
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
  watched_.insert(window, {aside.id, window->Revision(), true, {}});
}

void Rescue::Look(Clock::time_point now) {
  Finished();
  global_.documents.ForEach([&](DocumentSlot& slot) {
    if (passed_over_.contains(slot.window)) return;
    // The changed flag alone may stand for a key that changed nothing.
    const bool unsaved = !slot.window->Tag().isEmpty() && slot.window->IsTouched();
    const auto found = watched_.find(slot.window);
    if (!unsaved) {
      if (slot.window != writing_for_) Forget(slot.window);
      return;
    }
    Watched& watched =
        found != watched_.end() ? *found : *watched_.insert(slot.window, {History::NewId(), 0, false, {}});
    const bool is_new = !watched.is_aside || watched.revision != slot.window->Revision();
    if (is_new && now >= watched.not_before && !writing_.valid()) PutAside(*slot.window, watched, now);
  });
}

void Rescue::Forget(DocumentWindow* window) {
  if (writing_for_ == window) WaitForDisk();
  const auto found = watched_.find(window);
  if (found == watched_.end()) return;
  global_.history.ForgetAside(found->id);
  watched_.erase(found);
}

void Rescue::LeaveForNextStart(DocumentWindow& window) {
  WaitForDisk();
  const auto found = watched_.constFind(&window);
  const QString id = found != watched_.constEnd() ? found->id : History::NewId();
  watched_.remove(&window);
  try {
    // Without room for it, what the last look put aside has to do.
    global_.history.PutAside(id, window.Origin(), window.Content());
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
    auto write = [this, id = watched.id, origin = window.Origin(), content = window.Content()] {
      const Clock::time_point begin = Clock::now();
      auto failure = global_.history.PutAside(id, origin, content);
      // The next document need not wait for the timer.
      QMetaObject::invokeMethod(
          this,
          [this] {
            WaitForDisk();
            if (timer_.isActive()) Look(Clock::now());
          },
          Qt::QueuedConnection);
      return Written{std::move(failure), Clock::now() - begin};
    };
    writing_ = std::async(std::launch::async, std::move(write));
    writing_for_ = &window;
  } catch (const std::exception& error) {  // no memory, no thread
    watched.is_aside = false;
    TellFailure(window, error.what());
  }
  watched.not_before = std::max(watched.not_before, now + kWindowFactor * (Clock::now() - start));
}

void Rescue::Finished() {
  if (!writing_.valid() || writing_.wait_for(seconds(0)) != std::future_status::ready) return;
  const Written written = writing_.get();
  DocumentWindow* window = std::exchange(writing_for_, nullptr);
  if (const auto watched = watched_.find(window); watched != watched_.end()) {
    watched->not_before = std::max(watched->not_before, Clock::now() + kDiskFactor * written.took);
    if (written.failure) watched->is_aside = false;
  }
  if (written.failure) TellFailure(*window, written.failure->reason);
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
