#include "system/FilePath.h"

namespace tme {

/// Unit by unit: a name here may hold lone surrogates.
std::filesystem::path FilePath(const QString& path) { return path.toStdWString(); }

}  // namespace tme
