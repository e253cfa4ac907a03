#include "system/CommonDialog.h"

namespace tme {

/// Without a printer, the dialog offers to print into a file.
QString CommonDialog::PrintObstacle() const { return {}; }

/// "*.[Ii][Nn][Ii]": the desktops' own dialogs compare exactly.
QString CommonDialog::AnyCase(const QString& wildcard) {
  QString result;
  for (const QChar character : wildcard) {
    const QChar upper = character.toUpper();
    const QChar lower = character.toLower();
    if (upper == lower) {
      result += character;
    } else {
      result += u'[';
      result += upper;
      result += lower;
      result += u']';
    }
  }
  return result;
}

}  // namespace tme
