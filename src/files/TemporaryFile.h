#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "files/FileSteps.h"

namespace tme {

/// A new file beside the one that it will replace. It is gone with this object unless Replace or Keep succeeded.
class TemporaryFile {
 public:
  explicit TemporaryFile(FileSteps& steps) : steps_(steps) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  /// mode: as of FileSteps::OpenTemporary.
  std::error_code Open(const std::filesystem::path& folder, unsigned mode);
  std::error_code Write(std::string_view bytes);
  std::error_code FlushAndClose();
  std::error_code Replace(const std::filesystem::path& target);
  /// Leaves the file to the user, under a name that is not taken for what a killed write left. Returns that name.
  std::filesystem::path Keep(const std::filesystem::path& target);
  FileHandle Handle() const { return handle_; }

 private:
  FileSteps& steps_;
  std::filesystem::path path_;
  FileHandle handle_ = kNoFile;
};

/// Removes the temporary files that killed writes left in the folder, and none that a process may still write.
void RemoveLeftTemporaries(const std::filesystem::path& folder);

/// One call moves no more bytes, so that its count fits every type on the way.
inline constexpr std::size_t kMaxTransfer = std::size_t{1} << 30;
/// Writes in as many calls as the system wants, again after an interruption.
std::error_code WriteAll(FileSteps& steps, FileHandle handle, std::string_view bytes);

}  // namespace tme
