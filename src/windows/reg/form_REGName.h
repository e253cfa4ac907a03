#pragma once

#include <QDialog>
#include <functional>

class QLineEdit;

namespace tme {

/// Asks for one line of text. A text that cannot be taken is marked with the reason, and OK stays off meanwhile.
class form_REGName : public QDialog {
  Q_OBJECT

 public:
  /// check: gives the reason against a text, or nothing.
  form_REGName(QWidget* parent, const QString& caption, const QString& label, const QString& text,
               std::function<QString(const QString&)> check);
  QString Text() const;

 private:
  QLineEdit* txt_Name;
};

}  // namespace tme
