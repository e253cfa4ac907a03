#include "system/CommonDialog.h"

namespace tme {

/// Without a printer, the dialog offers to print into a file.
QString CommonDialog::PrintObstacle() const { return {}; }

}  // namespace tme
