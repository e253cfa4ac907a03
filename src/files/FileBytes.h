#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/Parts.h"
#include "files/FileFailure.h"

namespace tme {

class FileSteps;

/// Documents are held in memory; a larger file is refused with a reason.
inline constexpr std::uint64_t kMaxFileBytes = std::uint64_t{1} << 31;

/// Reads a whole file into `bytes` (replaced). A directory, a pipe or a device is a failure, and so is a file over
/// kMaxFileBytes. `bytes` is empty after a failure.
std::optional<FileFailure> ReadFileBytes(const std::filesystem::path& path, std::string& bytes);

/// Writes whole or not at all: a temporary file in the same folder gets all that the target has beside its bytes
/// (owner, rights, labels, streams), is flushed to disk and put in place. Links are followed; a read-only target is
/// refused, and so is one of which a new file cannot have all that. After a failure, or when the producer gives up, the
/// target is as it was and no temporary file is left.
std::optional<FileFailure> WriteFileParts(const std::filesystem::path& path, const PartProducer& produce,
                                          FileSteps& steps);
/// Writes over the bytes of an existing file, for a folder that allows no temporary file. After a failure the old bytes
/// are written back; a crash midway leaves a mixture, so they must be safe elsewhere.
std::optional<FileFailure> WriteFileInPlace(const std::filesystem::path& path, std::string_view bytes,
                                            std::string_view old_bytes, FileSteps& steps);
std::optional<FileFailure> WriteFileBytes(const std::filesystem::path& path, std::string_view bytes);

/// As WriteFileBytes, for a file of the program's own.
std::optional<FileFailure> WritePrivateFile(const std::filesystem::path& path, std::string_view bytes);
/// Takes away what others may do with a file or folder of the program's own. It does nothing on Windows, whose folders
/// for the user hand down that nobody else may. A failure changes nothing.
void MakePrivate(const std::filesystem::path& path);

}  // namespace tme
