#include "windows/ini/form_INIAddValue.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace tme {

form_INIAddValue::form_INIAddValue(QWidget* parent) : KeyValueDialog(parent) {
  setObjectName(u"form_INIAddValue"_s);
  setWindowTitle(tr("Add Key to All Sections"));
  AddButton("cmd_Add", tr("&Add"), {});
  SetCancelButton(AddButton("cmd_Cancel", tr("Cancel"), [this] { txt_Key->clear(); }));
}

}  // namespace tme
