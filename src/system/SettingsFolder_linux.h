#pragma once

#include <QString>

namespace tme {

/// Where the settings store lies; the folder need not exist.
QString SettingsFolder();
/// Makes the folder so that only the user can read what lies there, and those above it as the system would. True when
/// it is there; false: errno says why.
bool MakeOwnFolder(const QString& folder);

}  // namespace tme
