#include "windows/ini/form_ADE.h"

#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace tme {

form_ADE::form_ADE(QWidget* parent, const QString& caption, DeleteButton delete_button) : KeyValueDialog(parent) {
  setObjectName(u"form_ADE"_s);
  setWindowTitle(caption);
  AddButton("cmd_Exit", tr("OK"), {});
  SetCancelButton(AddButton("cmd_Cancel", tr("Cancel"), [this] { txt_value->setText(kCancelled); }));
  QPushButton* cmd_Delete = AddButton("cmd_Delete", tr("&Delete"), [this] { txt_value->setText(kDelete); });
  cmd_Delete->setVisible(delete_button == DeleteButton::Shown);
}

void form_ADE::SetEntry(const QString& key, const QString& value) {
  txt_Key->setText(key);
  txt_value->setText(value);
  txt_value->setFocus();
  txt_value->selectAll();
}

}  // namespace tme
