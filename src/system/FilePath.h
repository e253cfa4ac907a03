#pragma once

#include <QString>
#include <filesystem>

namespace tme {

/// A path as the file layer takes it. Never fails: except on Windows, a lone U+DC80 to U+DCFF stands for a byte of a
/// name that is no UTF-8, and any other lone surrogate for its three bytes.
std::filesystem::path FilePath(const QString& path);

}  // namespace tme
