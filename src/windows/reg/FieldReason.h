#pragma once

#include <QWidget>

class QLabel;

namespace tme {

/// The line beneath a field that says why what stands in it cannot be taken. While it says something the field is
/// marked, too. The line takes its room whether or not it says anything, so that nothing moves while one types.
class FieldReason : public QWidget {
  Q_OBJECT

 public:
  /// field: outlives this.
  FieldReason(QWidget& field, QWidget* parent);
  /// Empty when all is well.
  void Say(const QString& reason);
  QString Reason() const;

 private:
  QWidget& field_;
  QLabel* sign_;
  QLabel* text_;
};

/// The background of what cannot be taken, for light and dark palettes.
QColor MarkedBase(const QPalette& palette);

}  // namespace tme
