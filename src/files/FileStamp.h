#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace tme {

/// What tells one state of a file from another without reading it.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t modified_ns = 0;  ///< since the system's epoch
  std::uint64_t file_id = 0;
  bool operator==(const FileStamp&) const = default;
};
/// Returns null for what is no regular file, or is not there.
std::optional<FileStamp> StampOf(const std::filesystem::path& path);
/// Returns true only when the system says that the path leads nowhere. A check that failed for another reason says
/// nothing.
bool IsAbsent(const std::filesystem::path& path);

}  // namespace tme
