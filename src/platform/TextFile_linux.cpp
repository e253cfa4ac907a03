#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "platform/TextFile.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

/// One call never moves more, so that its count fits every type on the way.
constexpr std::size_t kMaxTransfer = std::size_t{1} << 30;
/// As many as the system follows itself.
constexpr int kMaxLinks = 40;
constexpr int kNameAttempts = 16;

FileFailure Failure(int error) { return FileFailure{std::generic_category().message(error)}; }

std::optional<FileFailure> RefuseUnlessRegular(const struct stat& status) {
  if (S_ISREG(status.st_mode)) return std::nullopt;
  if (S_ISDIR(status.st_mode)) return Failure(EISDIR);
  return FileFailure{"Not a regular file"};
}

/// expected: the size of the file when it was opened; it may be another by now. Returns 0 or an errno value.
int ReadToEnd(int handle, std::size_t expected, std::string& bytes) {
  bytes.resize(expected + 1);  // the end shows in one call more, without growing
  std::size_t used = 0;
  while (true) {
    if (used == bytes.size()) bytes.resize(std::min<std::size_t>(2 * used, kMaxFileBytes + 1));
    const ssize_t count = ::read(handle, bytes.data() + used, std::min(bytes.size() - used, kMaxTransfer));
    if (count < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (count == 0) break;
    used += static_cast<std::size_t>(count);
    if (used > kMaxFileBytes) return EFBIG;
  }
  bytes.resize(used);
  return 0;
}

/// Follows symbolic links by hand, so that a link to a missing file leads to the place where that file belongs.
/// Returns 0 or an errno value.
int ResolveLinks(fs::path& path) {
  for (int links = 0; links < kMaxLinks; ++links) {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(path, error))) return 0;
    const fs::path target = fs::read_symlink(path, error);
    if (error) return error.value();
    path = path.parent_path() / target;
  }
  return ELOOP;
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

/// Nothing here stops a save: a file system without owners or modes has none to keep.
void TakeOver(const fs::path& from, const struct stat& old, int to) {
  mode_t mode = old.st_mode & 07777;
  if (::fchown(to, old.st_uid, old.st_gid) != 0) {
    mode &= 0777;
    // In another group, members get no more than everybody had.
    if (::fchown(to, static_cast<uid_t>(-1), old.st_gid) != 0) mode = (mode & ~mode_t{070}) | ((mode & 07) << 3);
  }
  CopyExtendedAttributes(from, to);
  if (::fchmod(to, mode) != 0) return;
}

fs::path TemporaryName(const fs::path& folder) {
  std::random_device random;
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), ".tme-%08x%08x", random(), random());
  return folder / name.data();
}

/// Returns 0 or an errno value.
int WriteAll(FileSteps& steps, int handle, std::string_view bytes) {
  while (!bytes.empty()) {
    int error = 0;
    const long count = steps.Write(handle, bytes.data(), std::min(bytes.size(), kMaxTransfer), error);
    if (count < 0 && error == EINTR) continue;
    if (count < 0) return error;
    if (count == 0) return EIO;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

/// Returns 0 or an errno value; opened: whether the file may have other bytes now.
int Overwrite(FileSteps& steps, const fs::path& path, std::string_view bytes, bool& opened) {
  int handle = -1;
  if (const int error = steps.OpenExisting(path, handle); error != 0) return error;
  opened = true;
  int error = WriteAll(steps, handle, bytes);
  if (error == 0) error = steps.Truncate(handle, bytes.size());
  if (error == 0) error = steps.Flush(handle);
  const int close_error = steps.Close(handle);
  return error != 0 ? error : close_error;
}

/// The temporary file, gone with this object unless it was put in place.
class Temporary {
 public:
  explicit Temporary(FileSteps& steps) : steps_(steps) {}
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  ~Temporary() {
    if (handle_ >= 0) steps_.Close(handle_);
    if (!path_.empty()) steps_.Remove(path_);
  }

  int Open(const fs::path& folder, unsigned mode) {
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
      const fs::path path = TemporaryName(folder);
      const int error = steps_.OpenTemporary(path, mode, handle_);
      if (error == 0) path_ = path;
      if (error != EEXIST) return error;
    }
    return EEXIST;
  }

  int Write(std::string_view bytes) { return WriteAll(steps_, handle_, bytes); }

  int FlushAndClose() {
    const int flush_error = steps_.Flush(handle_);
    const int close_error = steps_.Close(handle_);  // a network file system tells of a full disk only here
    handle_ = -1;
    return flush_error != 0 ? flush_error : close_error;
  }

  int Replace(const fs::path& target) {
    const int error = steps_.Replace(path_, target);
    if (error == 0) path_.clear();
    return error;
  }

  int handle() const { return handle_; }

 private:
  FileSteps& steps_;
  fs::path path_;
  int handle_ = -1;
};

}  // namespace

int FileSteps::OpenTemporary(const fs::path& path, unsigned mode, int& handle) {
  handle = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  return handle >= 0 ? 0 : errno;
}

int FileSteps::OpenExisting(const fs::path& path, int& handle) {
  handle = ::open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
  return handle >= 0 ? 0 : errno;
}

int FileSteps::Truncate(int handle, std::size_t size) {
  return ::ftruncate(handle, static_cast<off_t>(size)) == 0 ? 0 : errno;
}

long FileSteps::Write(int handle, const char* data, std::size_t size, int& error) {
  const ssize_t count = ::write(handle, data, size);
  if (count < 0) error = errno;
  return count;
}

int FileSteps::Flush(int handle) {
  while (::fsync(handle) != 0) {
    if (errno == EINVAL) return 0;  // a file system that cannot flush
    if (errno != EINTR) return errno;
  }
  return 0;
}

int FileSteps::Close(int handle) {
  // After EINTR the handle is closed all the same on this system.
  return ::close(handle) == 0 || errno == EINTR ? 0 : errno;
}

int FileSteps::Replace(const fs::path& from, const fs::path& to) {
  return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int FileSteps::FlushFolder(const fs::path& folder) {
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return errno;
  const int error = ::fsync(handle) == 0 ? 0 : errno;
  ::close(handle);
  return error;
}

void FileSteps::Remove(const fs::path& path) { ::unlink(path.c_str()); }

std::optional<FileFailure> ReadFileBytes(const fs::path& path, std::string& bytes) {
  bytes.clear();
  // Without O_NONBLOCK the open itself would wait for the other end of a pipe.
  const int handle = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (handle < 0) return Failure(errno);

  std::optional<FileFailure> failure;
  struct stat status {};
  if (::fstat(handle, &status) != 0) {
    failure = Failure(errno);
  } else if (failure = RefuseUnlessRegular(status); !failure) {
    const auto size = static_cast<std::uint64_t>(status.st_size);
    int error = EFBIG;
    try {
      if (size <= kMaxFileBytes) error = ReadToEnd(handle, static_cast<std::size_t>(size), bytes);
    } catch (const std::bad_alloc&) {
      error = ENOMEM;
    } catch (const std::length_error&) {
      error = ENOMEM;
    }
    if (error != 0) failure = Failure(error);
  }
  ::close(handle);
  if (failure) std::string().swap(bytes);
  return failure;
}

std::optional<FileStamp> StampOf(const fs::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return FileStamp{static_cast<std::uint64_t>(status.st_size),
                   status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec,
                   static_cast<std::uint64_t>(status.st_ino)};
}

std::optional<FileFailure> WriteFileInPlace(const fs::path& path, std::string_view bytes, std::string_view old_bytes,
                                            FileSteps& steps) {
  bool opened = false;
  const int error = Overwrite(steps, path, bytes, opened);
  if (error == 0) return std::nullopt;
  FileFailure failure = Failure(error);
  failure.file_damaged = opened && Overwrite(steps, path, old_bytes, opened) != 0;
  return failure;
}

std::optional<FileFailure> WriteFileParts(const fs::path& path, const PartProducer& produce, FileSteps& steps) {
  fs::path target = path;
  if (const int error = ResolveLinks(target); error != 0) return Failure(error);

  struct stat old {};
  const bool exists = ::stat(target.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) return Failure(errno);
  if (exists) {
    if (auto failure = RefuseUnlessRegular(old)) return failure;
    // Putting another file in place needs no right to write this one, so the wish is asked for here.
    if ((old.st_mode & 0222) == 0) return FileFailure{"The file is read-only"};
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return Failure(errno);
  }

  const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
  Temporary temporary(steps);
  // The old file's mode comes after its owner; until then nobody else may open it.
  int error = temporary.Open(folder, exists ? 0600 : 0666);
  if (error == EACCES || error == EROFS || error == EPERM) {
    return FileFailure{"The folder cannot be written: " + Failure(error).reason, true};
  }
  if (error != 0) return Failure(error);
  if (exists) TakeOver(target, old, temporary.handle());

  const bool complete = produce([&temporary, &error](std::string_view bytes) {
    error = temporary.Write(bytes);
    return error == 0;
  });
  if (!complete && error == 0) return FileFailure{"The file was not completed"};
  if (error == 0) error = temporary.FlushAndClose();
  if (error == 0) error = temporary.Replace(target);
  if (error != 0) return Failure(error);
  // The new bytes are in place and readable; whether the folder's entry outlives a power cut is all that is open.
  steps.FlushFolder(folder);
  return std::nullopt;
}

}  // namespace tme
