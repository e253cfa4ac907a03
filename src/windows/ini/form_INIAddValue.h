#pragma once

#include "windows/ini/KeyValueDialog.h"

namespace tme {

/// Asks for one entry that every section gets. An empty key means cancelled.
class form_INIAddValue : public KeyValueDialog {
  Q_OBJECT

 public:
  explicit form_INIAddValue(QWidget* parent);
};

}  // namespace tme
