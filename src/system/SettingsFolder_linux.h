#pragma once

#include <QString>
#include <system_error>

namespace tme {

/// Where the settings store lies; the folder need not exist.
QString SettingsFolder();
/// Makes the folder so that only the user can read what lies there, and those above it as the system would. No
/// error when it is there.
std::error_code MakeOwnFolder(const QString& folder);

}  // namespace tme
