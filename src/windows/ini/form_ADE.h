#pragma once

#include "windows/ini/KeyValueDialog.h"

namespace tme {

/// Edits one entry. There is no result beside the boxes: Cancel writes "CANCEL" into the value box and Delete writes
/// "DELETE", so a value typed as exactly that acts like the button. Intended.
class form_ADE : public KeyValueDialog {
  Q_OBJECT

 public:
  static inline const QString kCancelled = QStringLiteral("CANCEL");
  static inline const QString kDelete = QStringLiteral("DELETE");

  enum class DeleteButton { Hidden, Shown };

  form_ADE(QWidget* parent, const QString& caption, DeleteButton delete_button);
  void SetEntry(const QString& key, const QString& value);
};

}  // namespace tme
