// How RtfPad shows the beginning of a large document while the rest is made.

#include <QGuiApplication>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextCursor>
#include <QThread>
#include <QTimer>
#include <utility>

#include "shell/LongWork.h"
#include "windows/rich/RtfBeginning.h"
#include "windows/rich/RtfFilling.h"
#include "windows/rich/RtfPad.h"

namespace tme {
namespace {

constexpr std::chrono::milliseconds kProgressInterval{250};
constexpr std::chrono::milliseconds kRetryInterval{50};
constexpr unsigned long kPauseMs = 2;

}  // namespace

void RtfPad::Fill(rtf::RtfDocument&& read, std::function<void(const rtf::RtfDocument&)> note) {
  SetRtf(BeginningOf(read));
  setReadOnly(true);
  filling_ = std::make_shared<RtfFilling>(std::move(read), std::move(note));
  filling_->Start([this](const std::exception_ptr& thrown) {
    fill_failure_ = thrown;
    ShowFilled(Swap::WhenFree);
  });
  ReportFilling();
}

void RtfPad::ReportFilling() {
  if (!IsFilling()) return;
  emit FillingWentOn();
  QTimer::singleShot(kProgressInterval, this, &RtfPad::ReportFilling);
}

double RtfPad::PartFilled() const {
  return filling_ ? static_cast<double>(filling_->Done()) / static_cast<double>(filling_->Total()) : 1;
}

bool RtfPad::Complete() const {
  // The document may be closed, and another one opened, while the user waits.
  const std::shared_ptr<RtfFilling> filling = filling_;
  if (!filling) return true;
  LongWork work(window(), tr("Opening the rest of the document"));
  while (filling_ == filling && filling->IsRunning()) {
    filling->Collect();
    if (filling_ != filling || !filling->IsRunning()) break;
    if (!work.GoOn(filling->Done(), filling->Total())) return false;
    QThread::msleep(kPauseMs);
  }
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): what is shown is what the pad has held all the time.
  if (filling_ == filling) const_cast<RtfPad*>(this)->ShowFilled(Swap::Now);
  return !filling_;
}

void RtfPad::StopFilling() {
  filling_.reset();
  fill_failure_ = nullptr;
  setReadOnly(false);
}

void RtfPad::ShowFilled(Swap when) {
  if (!filling_ || filling_->IsRunning()) return;
  // A selection that is being drawn with the mouse goes on first.
  if (when == Swap::WhenFree && QGuiApplication::mouseButtons() != Qt::NoButton) {
    QTimer::singleShot(kRetryInterval, this, [this] { ShowFilled(Swap::WhenFree); });
    return;
  }
  // It goes later: it may be what calls this.
  const std::shared_ptr<RtfFilling> filling = std::exchange(filling_, nullptr);
  QTimer::singleShot(0, this, [filling] {});
  setReadOnly(false);
  RtfFilling::View view = filling->TakeView();
  if (const std::exception_ptr failure = std::exchange(fill_failure_, nullptr); failure || !view.text) {
    emit FillingFailed(failure ? ExceptionText(failure) : QString());
    return;
  }
  const int anchor = textCursor().anchor(), caret = textCursor().position();
  const int left = horizontalScrollBar()->value(), first = FirstShown();
  const auto top_of = [this](int position) {
    QTextCursor cursor(document());
    cursor.setPosition(position);
    return cursorRect(cursor).top();
  };
  const int offset = top_of(first);
  const std::uint64_t revision = revision_;
  {
    // It is the same document.
    const QSignalBlocker blocker(this);
    store_ = std::move(view.store);
    Show(std::move(view.text));
    QTextCursor cursor(document());
    cursor.setPosition(anchor);
    cursor.setPosition(caret, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    verticalScrollBar()->setValue(verticalScrollBar()->value() + top_of(first) - offset);
    horizontalScrollBar()->setValue(left);
  }
  revision_ = revision;
  emit Filled(view.simplified);
}

}  // namespace tme
