#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <system_error>

namespace tme {

/// An open file as the system numbers it: a file descriptor, on Windows a HANDLE.
using FileHandle = std::intptr_t;
inline constexpr FileHandle kNoFile = -1;

/// The steps of a whole-or-nothing write, one virtual each, so that a test can fail at any of them. Each returns what
/// went wrong, as the system numbers it; no error when all is well. After a failed open the handle is kNoFile; after
/// any other failure but that of Close it is open still.
class FileSteps {
 public:
  virtual ~FileSteps() = default;
  virtual std::error_code OpenExisting(const std::filesystem::path& path, FileHandle& handle);
  /// mode: of the new file; Windows gives it what its folder hands down.
  virtual std::error_code OpenTemporary(const std::filesystem::path& path, unsigned mode, FileHandle& handle);
  /// May write fewer bytes than asked for; `written` says how many.
  virtual std::error_code Write(FileHandle handle, const char* data, std::size_t size, std::size_t& written);
  /// Cuts an existing file to what was written into it.
  virtual std::error_code Truncate(FileHandle handle, std::size_t size);
  virtual std::error_code Flush(FileHandle handle);
  virtual std::error_code Close(FileHandle handle);
  /// On Windows it is tried again for about a second, which the caller waits, while another program holds a file,
  /// and a failure may leave `to` gone; `from` is there then. Elsewhere both are as they were after a failure.
  virtual std::error_code Replace(const std::filesystem::path& from, const std::filesystem::path& to);
  virtual std::error_code FlushFolder(const std::filesystem::path& folder);
  virtual void Remove(const std::filesystem::path& path);
};

/// The steps for files that only the user may read, whatever the system gives to new ones.
class PrivateFileSteps : public FileSteps {
 public:
  std::error_code OpenTemporary(const std::filesystem::path& path, unsigned /*mode*/, FileHandle& handle) override {
    return FileSteps::OpenTemporary(path, 0600, handle);
  }
};

}  // namespace tme
