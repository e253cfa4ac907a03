#pragma once

#include <QFrame>

class QLabel;

namespace tme {

/// The slim bar at the top of a document window that says what the user should know and need not answer. Hidden while
/// it has nothing to say; the user can put it away.
class NoticeBar : public QFrame {
  Q_OBJECT

 public:
  explicit NoticeBar(QWidget* parent);

  /// Adds a sentence to what stands there and shows the bar. An empty one is ignored, and one that stands there
  /// already.
  void Add(const QString& sentence);
  void Clear();
  QString Text() const;

 private:
  QLabel* label_;
};

}  // namespace tme
