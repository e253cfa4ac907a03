#include "system/FileDialogFilters.h"

namespace tme {

QString FileDialogWildcard(const QString& wildcard) { return wildcard; }

}  // namespace tme
