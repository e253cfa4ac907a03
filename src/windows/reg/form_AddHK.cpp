#include "windows/reg/form_AddHK.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "documents/reg/RegDocument.h"
#include "shell/DisplayText.h"
#include "shell/PlainText.h"

using namespace Qt::StringLiterals;

namespace tme {

form_AddHK::form_AddHK(QWidget* parent, const QStringList& present) : QDialog(parent) {
  setObjectName(u"form_AddHK"_s);
  setWindowTitle(tr("Add Hives"));
  auto* column = new QVBoxLayout(this);
  for (const std::string_view hive : HiveNames) {
    const QString name = TextOf(hive);
    auto* box = new QCheckBox(name, this);
    box->setObjectName(u"cb_"_s + name);
    box->setAccessibleName(name);
    box->setEnabled(!present.contains(name));
    if (!box->isEnabled()) SetTip(*box, tr("This hive is in the file already."));
    column->addWidget(box);
    boxes_.append(box);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName(u"cmd_OK"_s);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  column->addSpacing(column->spacing());
  column->addWidget(buttons);
}

QStringList form_AddHK::Checked() const {
  QStringList names;
  for (const QCheckBox* box : boxes_)
    if (box->isChecked()) names += box->text();
  return names;
}

void form_AddHK::reject() {
  for (QCheckBox* box : boxes_) box->setChecked(false);
  QDialog::reject();
}

}  // namespace tme
