#pragma once

#include <QString>
#include <filesystem>

namespace tme {

/// A path as TextFile takes it. Never fails: elsewhere than on Windows, U+DC80 to U+DCFF alone stand for a byte of a
/// name that is no UTF-8, and any other lone surrogate for its three bytes, which name no file that has another path.
std::filesystem::path FilePath(const QString& path);

}  // namespace tme
