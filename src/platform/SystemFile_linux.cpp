#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "platform/SystemFile.h"

namespace tme {
namespace {

namespace fs = std::filesystem;
using system_file::Failure;

/// As many as the system follows itself.
constexpr int kMaxLinks = 40;

std::error_code Error(int number) { return {number, std::generic_category()}; }
/// Of the call that failed just now.
std::error_code LastError() { return Error(errno); }
/// Of a call that returns 0 when all is well.
std::error_code ResultOf(int result) { return result == 0 ? std::error_code() : LastError(); }
int Descriptor(FileHandle handle) { return static_cast<int>(handle); }

std::optional<FileFailure> RefuseUnlessRegular(const struct stat& status) {
  if (S_ISREG(status.st_mode)) return std::nullopt;
  if (S_ISDIR(status.st_mode)) return Failure(Error(EISDIR));
  return FileFailure{"Not a regular file"};
}

/// Follows symbolic links by hand, so that a link to a missing file leads to the place where that file belongs.
std::error_code ResolveLinks(fs::path& path) {
  for (int links = 0; links < kMaxLinks; ++links) {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(path, error))) return {};
    const fs::path target = fs::read_symlink(path, error);
    if (error) return error;
    path = path.parent_path() / target;
  }
  return Error(ELOOP);
}

/// Access lists and labels go over as far as the system lets them.
void CopyExtendedAttributes(const fs::path& from, int to) {
  const ssize_t names_size = ::listxattr(from.c_str(), nullptr, 0);
  if (names_size <= 0) return;
  std::vector<char> names(static_cast<std::size_t>(names_size) + 1, '\0');
  if (::listxattr(from.c_str(), names.data(), static_cast<std::size_t>(names_size)) != names_size) return;
  for (const char* name = names.data(); *name != '\0'; name += std::char_traits<char>::length(name) + 1) {
    const ssize_t size = ::getxattr(from.c_str(), name, nullptr, 0);
    if (size < 0) continue;
    std::vector<char> value(static_cast<std::size_t>(size));
    if (::getxattr(from.c_str(), name, value.data(), value.size()) != size) continue;
    ::fsetxattr(to, name, value.data(), value.size(), 0);
  }
}

}  // namespace

std::error_code FileSteps::OpenTemporary(const fs::path& path, unsigned mode, FileHandle& handle) {
  handle = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  return handle != kNoFile ? std::error_code() : LastError();
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
  while (::fsync(Descriptor(handle)) != 0) {
    if (errno == EINVAL) return {};  // a file system that cannot flush
    if (errno != EINTR) return LastError();
  }
  return {};
}

std::error_code FileSteps::Close(FileHandle handle) {
  // After EINTR the handle is closed all the same on this system.
  return ::close(Descriptor(handle)) == 0 || errno == EINTR ? std::error_code() : LastError();
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

std::optional<FileStamp> StampOf(const fs::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return FileStamp{static_cast<std::uint64_t>(status.st_size),
                   status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec,
                   static_cast<std::uint64_t>(status.st_ino)};
}

namespace system_file {

FileFailure Failure(const std::error_code& error) { return FileFailure{error.message()}; }

std::optional<FileFailure> OpenForReading(const fs::path& path, FileHandle& handle, std::uint64_t& size) {
  // Without O_NONBLOCK the open itself would wait for the other end of a pipe.
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) return Failure(LastError());
  struct stat status {};
  std::optional<FileFailure> failure =
      ::fstat(descriptor, &status) != 0 ? Failure(LastError()) : RefuseUnlessRegular(status);
  if (failure) {
    ::close(descriptor);
    return failure;
  }
  handle = descriptor;
  size = static_cast<std::uint64_t>(status.st_size);
  return std::nullopt;
}

std::error_code Read(FileHandle handle, char* to, std::size_t room, std::size_t& count) {
  ssize_t result = 0;
  do {
    result = ::read(Descriptor(handle), to, room);
  } while (result < 0 && errno == EINTR);
  if (result < 0) return LastError();
  count = static_cast<std::size_t>(result);
  return {};
}

void CloseReading(FileHandle handle) { ::close(Descriptor(handle)); }

std::optional<FileFailure> ResolveTarget(const fs::path& path, Target& target) {
  target.path = path;
  if (const auto error = ResolveLinks(target.path)) return Failure(error);
  struct stat status {};
  target.exists = ::stat(target.path.c_str(), &status) == 0;
  if (!target.exists) return errno == ENOENT ? std::nullopt : std::optional(Failure(LastError()));
  if (auto failure = RefuseUnlessRegular(status)) return failure;
  // Putting another file in place needs no right to write this one, so the wish is asked for here.
  if ((status.st_mode & 0222) == 0) return FileFailure{"The file is read-only"};
  if (::faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0) return Failure(LastError());
  return std::nullopt;
}

void TakeOver(const fs::path& target, FileHandle temporary) {
  const int to = Descriptor(temporary);
  struct stat old {};
  if (::stat(target.c_str(), &old) != 0) return;
  mode_t mode = old.st_mode & 07777;
  if (::fchown(to, old.st_uid, old.st_gid) != 0) {
    mode &= 0777;
    // In another group, members get no more than everybody had.
    if (::fchown(to, static_cast<uid_t>(-1), old.st_gid) != 0) mode = (mode & ~mode_t{070}) | ((mode & 07) << 3);
  }
  CopyExtendedAttributes(target, to);
  if (::fchmod(to, mode) != 0) return;
}

}  // namespace system_file
}  // namespace tme
