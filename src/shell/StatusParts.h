#pragma once

#include <QToolButton>
#include <cstdint>
#include <functional>

class QLabel;
class QLineEdit;

namespace tme {

/// A part of the status line that can be clicked and reached by keys. Its text is cut in the middle where it does not
/// fit; its name for screen readers has all of it.
class StatusButton : public QToolButton {
  Q_OBJECT

 public:
  StatusButton(const QString& object_name, QWidget* parent);

  /// text: from a file or a path, too. name: for screen readers, who are told each change of it.
  void Say(const QString& text, const QString& name, const QString& tip);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QString text_;
};

/// The field that a line's number is typed into. What is wrong with it stands beside it.
class LineField : public QWidget {
  Q_OBJECT

 public:
  explicit LineField(QWidget* parent);

  /// Shows itself, to ask for a line from 1 to `lines`; it begins with `line`.
  void Ask(std::int64_t line, std::int64_t lines);

 signals:
  void Chosen(qint64 line);
  /// The user leaves it with Escape, or has gone elsewhere.
  void Escaped();
  void LeftBehind();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Check();
  void SayRange();
  void Say(const QString& what);

  QLineEdit* number_;
  QLabel* said_;
  std::int64_t lines_ = 1;
};

}  // namespace tme
