#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

#include "files/FileFailure.h"
#include "files/FileSteps.h"

/// What reading and writing whole files needs of the system, beside FileSteps.
namespace tme::system_file {

/// Opens a regular file of this size, to be read from its start and closed by CloseReading.
std::optional<FileFailure> OpenForReading(const std::filesystem::path& path, FileHandle& handle, std::uint64_t& size);
/// count: of the bytes that were read, 0 at the end of the file.
std::error_code Read(FileHandle handle, char* to, std::size_t room, std::size_t& count);
void CloseReading(FileHandle handle);

/// Where a write goes.
struct Target {
  std::filesystem::path path;  ///< what the links lead to
  bool exists = false;         ///< as a regular file that this process may write
};
/// Follows links and refuses what is no regular file or must not be written.
std::optional<FileFailure> ResolveTarget(const std::filesystem::path& path, Target& target);

/// Gives the file that will replace a target what the target has beside its bytes (owner, group, mode, access list,
/// labels), as far as Replace does not see to it, and nothing else. Returns false when that cannot be done exactly, or
/// the target has several names: then it has to be written in place.
bool TakeOver(const std::filesystem::path& target, FileHandle temporary);

/// Removes a temporary file of ours unless a process may still write it.
void RemoveIfLeft(const std::filesystem::path& temporary);

}  // namespace tme::system_file
