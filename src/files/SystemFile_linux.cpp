// What files need of this system: FileSteps.h, FileStamp.h, SystemFile.h.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <map>
#include <string>
#include <utility>

#include "files/FileBytes.h"
#include "files/FileStamp.h"
#include "files/FileSteps.h"
#include "files/SystemFile.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

std::error_code Error(int number) { return {number, std::generic_category()}; }
/// Of the call that failed just now.
std::error_code LastError() { return Error(errno); }
/// Of a call that returns 0 when all is well.
std::error_code ResultOf(int result) { return result == 0 ? std::error_code() : LastError(); }
int Descriptor(FileHandle handle) { return static_cast<int>(handle); }

/// As many as the system follows itself.
constexpr int kMaxLinks = 40;
constexpr int kLeftAfterSeconds = 5;

std::optional<FileFailure> RefuseUnlessRegular(const struct stat& status) {
  if (S_ISREG(status.st_mode)) return std::nullopt;
  if (S_ISDIR(status.st_mode)) return FailureOf(Error(EISDIR));
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

using Attributes = std::map<std::string, std::string>;

// Of a file that may be unreadable, and of an open one.
ssize_t ListNames(const fs::path& path, char* to, std::size_t room) { return ::listxattr(path.c_str(), to, room); }
ssize_t ListNames(int file, char* to, std::size_t room) { return ::flistxattr(file, to, room); }
ssize_t GetValue(const fs::path& path, const char* name, char* to, std::size_t room) {
  return ::getxattr(path.c_str(), name, to, room);
}
ssize_t GetValue(int file, const char* name, char* to, std::size_t room) { return ::fgetxattr(file, name, to, room); }

/// Returns the extended attributes of a file: access lists, labels, what others noted; none on a file system that knows
/// none. Returns null when they cannot be told.
template <typename File>
std::optional<Attributes> ExtendedAttributes(const File& file) {
  const ssize_t names_size = ListNames(file, nullptr, 0);
  if (names_size < 0) return errno == ENOTSUP ? std::optional(Attributes()) : std::nullopt;
  std::string names(static_cast<std::size_t>(names_size), '\0');
  if (ListNames(file, names.data(), names.size()) != names_size) return std::nullopt;
  Attributes attributes;
  for (std::size_t at = 0; at < names.size();) {
    const std::string name = names.c_str() + at;
    at += name.size() + 1;
    const ssize_t size = GetValue(file, name.c_str(), nullptr, 0);
    if (size < 0) return std::nullopt;
    std::string value(static_cast<std::size_t>(size), '\0');
    if (GetValue(file, name.c_str(), value.data(), value.size()) != size) return std::nullopt;
    attributes.emplace(name, std::move(value));
  }
  return attributes;
}

/// Takes away, too, what the new file has and the old one had not: the access list that its folder gave it.
bool TakeOverAttributes(const fs::path& from, int to) {
  const auto wanted = ExtendedAttributes(from), given = ExtendedAttributes(to);
  if (!wanted || !given) return false;
  for (const auto& [name, value] : *given)
    if (!wanted->contains(name) && ::fremovexattr(to, name.c_str()) != 0) return false;
  for (const auto& [name, value] : *wanted) {
    const auto same = given->find(name);
    if (same != given->end() && same->second == value) continue;
    if (::fsetxattr(to, name.c_str(), value.data(), value.size(), 0) != 0) return false;
  }
  return true;
}

/// Whether nobody else holds the file, so that its writer is gone: one that lives has it locked.
bool IsLeft(const fs::path& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
  if (file < 0) return false;
  struct stat status {};
  // Young ones may be open and not locked yet, or closed and not yet in place.
  const bool is_old = ::fstat(file, &status) == 0 && status.st_mtim.tv_sec + kLeftAfterSeconds < ::time(nullptr);
  const bool is_ours = S_ISREG(status.st_mode) && status.st_uid == ::geteuid() && status.st_nlink == 1;
  const bool is_left = is_old && is_ours && ::flock(file, LOCK_EX | LOCK_NB) == 0;
  ::close(file);
  return is_left;
}

}  // namespace

void MakePrivate(const fs::path& path) {
  constexpr mode_t kOthers = 077;
  struct stat status {};
  const bool is_wide = ::lstat(path.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) &&
                       (status.st_mode & kOthers) != 0;
  if (is_wide && ::chmod(path.c_str(), status.st_mode & 07777 & ~kOthers) != 0) return;
}

FileFailure FailureOf(const std::error_code& error) { return FileFailure{error.message()}; }

std::optional<FileStamp> StampOf(const fs::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return FileStamp{static_cast<std::uint64_t>(status.st_size),
                   status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec,
                   static_cast<std::uint64_t>(status.st_ino)};
}

bool IsAbsent(const fs::path& path) {
  struct stat status {};
  const std::error_code error = ResultOf(::stat(path.c_str(), &status));
  return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
}

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

namespace system_file {

std::optional<FileFailure> OpenForReading(const fs::path& path, FileHandle& handle, std::uint64_t& size) {
  // Without O_NONBLOCK the open itself would wait for the other end of a pipe.
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) return FailureOf(LastError());
  struct stat status {};
  std::optional<FileFailure> failure =
      ::fstat(descriptor, &status) != 0 ? FailureOf(LastError()) : RefuseUnlessRegular(status);
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
  if (const auto error = ResolveLinks(target.path)) return FailureOf(error);
  struct stat status {};
  const std::error_code error = ResultOf(::stat(target.path.c_str(), &status));
  if (error == std::errc::no_such_file_or_directory) return std::nullopt;
  if (error) return FailureOf(error);
  target.exists = true;
  if (auto failure = RefuseUnlessRegular(status)) return failure;
  // Putting another file in place needs no right to write this one, so the wish is asked for here.
  if ((status.st_mode & 0222) == 0) return FileFailure{"The file is read-only"};
  if (::faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0) return FailureOf(LastError());
  return std::nullopt;
}

bool TakeOver(const fs::path& target, FileHandle temporary) {
  const int to = Descriptor(temporary);
  struct stat old {
  }, now{};
  bool is_exact = ::stat(target.c_str(), &old) == 0 && ::fstat(to, &now) == 0 && old.st_nlink == 1;
  const bool same_owner = old.st_uid == now.st_uid && old.st_gid == now.st_gid;
  is_exact = is_exact && (same_owner || ::fchown(to, old.st_uid, old.st_gid) == 0);
  is_exact = is_exact && TakeOverAttributes(target, to);
  // Last: a new owner takes bits away, and with an access list the mode is part of it.
  const mode_t mode = old.st_mode & 07777;
  is_exact = is_exact && ::fchmod(to, mode) == 0 && ::fstat(to, &now) == 0 && (now.st_mode & 07777) == mode;
  return is_exact;
}

void RemoveIfLeft(const fs::path& temporary) {
  if (IsLeft(temporary)) ::unlink(temporary.c_str());
}

}  // namespace system_file
}  // namespace tme
