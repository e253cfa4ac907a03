#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "files/FileFailure.h"
#include "files/FileSteps.h"

namespace tme {

/// The steps for files that only the user may read, whatever the system gives to new ones.
class PrivateFileSteps : public FileSteps {
 public:
  std::error_code OpenTemporary(const std::filesystem::path& path, unsigned mode, FileHandle& handle) override;
};
/// As WriteFileBytes, for a file of the program's own.
std::optional<FileFailure> WritePrivateFile(const std::filesystem::path& path, std::string_view bytes);
/// Takes away what others may do with a file or folder of the program's own. It does nothing on Windows, whose folders
/// for the user hand down that nobody else may. A failure changes nothing.
void MakePrivate(const std::filesystem::path& path);

}  // namespace tme
