#pragma once

#include <QString>
#include <filesystem>

namespace tme {

/// A path as TextFile takes it.
std::filesystem::path FilePath(const QString& path);

}  // namespace tme
