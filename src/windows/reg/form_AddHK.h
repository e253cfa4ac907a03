#pragma once

#include <QDialog>
#include <QStringList>

class QCheckBox;

namespace tme {

/// Chooses hives to add under the root. Those that are there already cannot be checked.
class form_AddHK : public QDialog {
  Q_OBJECT

 public:
  form_AddHK(QWidget* parent, const QStringList& present);
  /// In the fixed order of the hives; none after the dialog was put away.
  QStringList Checked() const;

 protected:
  void reject() override;

 private:
  QList<QCheckBox*> boxes_;
};

}  // namespace tme
