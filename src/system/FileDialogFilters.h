#pragma once

#include <QString>
#include <QStringList>

namespace tme {

/// The pairs of CommonDialog::filter ("INI File|*.INI|Other (*.*)|*.*") as name filters of QFileDialog, in their order.
QStringList FileDialogFilters(const QString& filter);

/// One wildcard as the system's file dialog needs it to match without regard to letter case.
QString FileDialogWildcard(const QString& wildcard);

}  // namespace tme
