#include "platform/FilePath.h"

namespace tme {

std::filesystem::path FilePath(const QString& path) { return path.toStdU16String(); }

}  // namespace tme
