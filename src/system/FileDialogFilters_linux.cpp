#include "system/FileDialogFilters.h"

namespace tme {

/// "*.[Ii][Nn][Ii]": the desktops' own dialogs compare exactly.
QString FileDialogWildcard(const QString& wildcard) {
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
