#pragma once

#include <QDialog>

class QDialogButtonBox;
class QLineEdit;
class QPushButton;

namespace tme {

/// A small modal dialog with a key box and a value box. What each button does to the boxes is the dialog's own affair;
/// the caller reads the boxes afterwards.
class KeyValueDialog : public QDialog {
  Q_OBJECT

 public:
  QString Key() const;
  QString Value() const;

 protected:
  explicit KeyValueDialog(QWidget* parent);
  /// A button with its control name; the first one is the default. `press` runs before the dialog hides.
  QPushButton* AddButton(const char* name, const QString& caption, std::function<void()> press);
  /// Escape and the close box do what this button does.
  void SetCancelButton(QPushButton* button) { cancel_button_ = button; }

  void reject() override;
  /// Enter accepts only with a key.
  bool eventFilter(QObject* watched, QEvent* event) override;

  QLineEdit* txt_Key;
  QLineEdit* txt_value;

 private:
  QDialogButtonBox* buttons_;
  QPushButton* cancel_button_ = nullptr;
};

/// Edits one entry. By the rules there is no result beside the boxes: Cancel writes "CANCEL" into the value box and
/// Delete writes "DELETE", so a value typed as exactly that acts like the button. Intended.
class form_ADE : public KeyValueDialog {
  Q_OBJECT

 public:
  static inline const QString kCancelled = QStringLiteral("CANCEL");
  static inline const QString kDelete = QStringLiteral("DELETE");

  enum class DeleteButton { Hidden, Shown };
  enum class Outcome { Accepted, Cancelled, Deleted };

  form_ADE(QWidget* parent, const QString& caption, DeleteButton delete_button);
  void SetEntry(const QString& key, const QString& value);

  Outcome ByText() const;
  /// What was pressed, whatever the value is.
  Outcome ByButton() const { return by_button_; }

 private:
  Outcome by_button_ = Outcome::Accepted;
};

/// Asks for one entry that every section gets. An empty key means cancelled.
class form_INIAddValue : public KeyValueDialog {
  Q_OBJECT

 public:
  explicit form_INIAddValue(QWidget* parent);
};

}  // namespace tme
