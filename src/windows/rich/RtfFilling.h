#pragma once

#include <QTextDocument>
#include <atomic>
#include <functional>
#include <memory>

#include "shell/BackgroundWork.h"
#include "windows/rich/RtfImport.h"

namespace tme {

/// Makes the view of a large document on a thread of its own, so that nobody waits for it.
class RtfFilling {
 public:
  /// Told on that thread what the view gives back before any edit.
  using Note = std::function<void(const rtf::RtfDocument& exported)>;
  struct View {
    std::unique_ptr<RtfStore> store;
    std::unique_ptr<QTextDocument> text;
    RtfSimplified simplified;
  };

  RtfFilling(rtf::RtfDocument&& read, Note note);

  /// As BackgroundWork::Start; where there is no thread, does all at once. Destroyed before it has ended, it stops.
  void Start(const BackgroundWork::Done& done);
  void Collect() { work_.Collect(); }
  bool IsRunning() const { return work_.IsRunning(); }
  /// Bytes of the text that are in the view.
  std::size_t Done() const { return done_; }
  std::size_t Total() const { return total_; }
  /// What was made, once; belongs to the thread that made this.
  View TakeView() { return std::move(view_); }

 private:
  void Run(const std::stop_token& stop);

  rtf::RtfDocument read_;
  const Note note_;
  const std::size_t total_;
  std::atomic<std::size_t> done_ = 0;
  View view_;
  BackgroundWork work_;  ///< last, so that it ends before what it uses goes
};

}  // namespace tme
