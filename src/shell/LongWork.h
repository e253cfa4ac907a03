#pragma once

#include <QElapsedTimer>
#include <QString>
#include <cstddef>
#include <memory>

class QProgressDialog;
class QWidget;

namespace tme {

/// Work on the thread of the windows that may take long. After half a second a box with a bar and Cancel stands over
/// the frame, and the other documents are drawn on. As with any question, timers and other launches go on meanwhile:
/// whoever works checks afterwards whether its document is still there. Something thrown through it closes the box.
class LongWork {
 public:
  /// what: for people, "Opening letter.rtf". parent: of the box; outlives this.
  LongWork(QWidget* parent, const QString& what);
  ~LongWork();
  LongWork(const LongWork&) = delete;
  LongWork& operator=(const LongWork&) = delete;

  /// Shows how far the work is; called every few hundredths of a second. Returns false once the user has cancelled.
  bool GoOn(std::size_t done, std::size_t total);

  /// Milliseconds without a box; a test makes it 0.
  static inline int quiet_ms = 500;

 private:
  void Show();

  QWidget* parent_;
  const QString what_;
  QElapsedTimer since_start_;
  QElapsedTimer since_shown_;
  std::unique_ptr<QProgressDialog> box_;
};

}  // namespace tme
