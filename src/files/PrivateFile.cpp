#include "files/PrivateFile.h"

#include "files/FileBytes.h"

namespace tme {

std::error_code PrivateFileSteps::OpenTemporary(const std::filesystem::path& path, unsigned /*mode*/,
                                                FileHandle& handle) {
  return FileSteps::OpenTemporary(path, 0600, handle);
}

std::optional<FileFailure> WritePrivateFile(const std::filesystem::path& path, std::string_view bytes) {
  PrivateFileSteps steps;
  MakePrivate(path);
  return WriteFileParts(
      path, [bytes](const PartSink& put) { return put(bytes); }, steps);
}

}  // namespace tme
