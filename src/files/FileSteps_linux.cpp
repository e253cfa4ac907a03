#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>

#include "files/FileSteps.h"
#include "files/NativeFile_linux.h"

namespace tme {
namespace {

namespace fs = std::filesystem;
using native::Descriptor;
using native::LastError;
using native::ResultOf;

}  // namespace

std::error_code FileSteps::OpenTemporary(const fs::path& path, unsigned mode, FileHandle& handle) {
  handle = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  if (handle == kNoFile) return LastError();
  // The lock tells RemoveIfLeft of another process that somebody writes the file. Where there are no locks, none is
  // ever removed.
  ::flock(Descriptor(handle), LOCK_EX | LOCK_NB);
  return {};
}

std::error_code FileSteps::OpenExisting(const fs::path& path, FileHandle& handle) {
  handle = ::open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
  return handle != kNoFile ? std::error_code() : LastError();
}

std::error_code FileSteps::Truncate(FileHandle handle, std::size_t size) {
  return ResultOf(::ftruncate(Descriptor(handle), static_cast<off_t>(size)));
}

std::error_code FileSteps::Write(FileHandle handle, const char* data, std::size_t size, std::size_t& written) {
  const ssize_t count = ::write(Descriptor(handle), data, size);
  written = count > 0 ? static_cast<std::size_t>(count) : 0;
  return count >= 0 ? std::error_code() : LastError();
}

std::error_code FileSteps::Flush(FileHandle handle) {
  std::error_code error;
  do {
    error = ResultOf(::fsync(Descriptor(handle)));
  } while (error == std::errc::interrupted);
  if (error == std::errc::invalid_argument) return {};  // a file system that cannot flush
  return error;
}

std::error_code FileSteps::Close(FileHandle handle) {
  const std::error_code error = ResultOf(::close(Descriptor(handle)));
  // After an interruption the handle is closed all the same on this system.
  return error == std::errc::interrupted ? std::error_code() : error;
}

std::error_code FileSteps::Replace(const fs::path& from, const fs::path& to) {
  return ResultOf(::rename(from.c_str(), to.c_str()));
}

std::error_code FileSteps::FlushFolder(const fs::path& folder) {
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return LastError();
  const std::error_code error = ResultOf(::fsync(handle));
  ::close(handle);
  return error;
}

void FileSteps::Remove(const fs::path& path) { ::unlink(path.c_str()); }

}  // namespace tme
