#include <QCoreApplication>
#include <QPrinterInfo>

#include "system/CommonDialog.h"

namespace tme {

/// Without a printer, the system's dialog does not come up and does not say so.
QString CommonDialog::PrintObstacle() const {
  if (!QPrinterInfo::availablePrinterNames().isEmpty()) return {};
  return QCoreApplication::translate(
      "CommonDialog",
      "Nothing can be printed: Windows has no printer, or its print service does not run.\r\r"
      "A printer is added in the settings of Windows; \"Microsoft Print to PDF\" makes PDF files.");
}

QString CommonDialog::AnyCase(const QString& wildcard) { return wildcard; }

}  // namespace tme
