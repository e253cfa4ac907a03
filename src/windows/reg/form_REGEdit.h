#pragma once

#include <QDialog>

class QLineEdit;
class QPlainTextEdit;

namespace tme {

/// Adds or edits one value. There is no result beside the boxes: Cancel writes "CANCEL" into the data box, so data
/// typed as exactly that counts as cancelled. Intended.
class form_REGEdit : public QDialog {
  Q_OBJECT

 public:
  static inline const QString kCancelled = QStringLiteral("CANCEL");

  form_REGEdit(QWidget* parent, const QString& caption);

  /// The family asked for, or another fixed-pitch one.
  void SetDataFont(const QString& family);
  /// Editing: the name stands fast.
  void SetValue(const QString& name, const QString& text);
  QString Name() const;
  /// One line: line breaks of pasted text are left out.
  QString Data() const;

 protected:
  void reject() override;
  /// Enter accepts in the data box too, since data is one line.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void SetData(const QString& text);

  QLineEdit* txt_Name;
  QPlainTextEdit* txt_Data;
};

}  // namespace tme
