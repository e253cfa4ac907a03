#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string>
#include <thread>

#include "files/EditLock.h"
#include "files/SystemFile.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

enum class LockAttempt : std::uint8_t { Taken, Busy, Impossible };

bool IsSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool Locks(int file) { return ::flock(file, LOCK_EX | LOCK_NB) == 0; }

/// Whether the program that started this one has the lock and handed it down, as flock(1) does.
bool IsHandedDown(const struct stat& wanted) {
  constexpr int kFirst = 3, kEnd = 64;  // what shells use
  for (int file = kFirst; file < kEnd; ++file) {
    struct stat status {};
    const int flags = ::fcntl(file, F_GETFD);  // those of this program are not handed on
    if (flags < 0 || (flags & FD_CLOEXEC) != 0) continue;
    if (::fstat(file, &status) == 0 && IsSameFile(status, wanted) && Locks(file)) return true;
  }
  return false;
}

/// The folder that a missing file belongs into, wherever links lead.
int OpenFolderOf(const fs::path& path) {
  system_file::Target target;
  if (system_file::ResolveTarget(path, target)) return -1;
  const fs::path folder = target.path.has_parent_path() ? target.path.parent_path() : fs::path(".");
  return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

LockAttempt LockOpened(int file, const struct stat& opened) {
  if (Locks(file)) return LockAttempt::Taken;
  const bool is_held = errno == EWOULDBLOCK || errno == EINTR;
  return is_held && !IsHandedDown(opened) ? LockAttempt::Busy : LockAttempt::Impossible;
}

LockAttempt TryToLock(const fs::path& path, FileHandle& handle) {
  int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  const bool is_missing = file < 0 && errno == ENOENT;
  if (is_missing) file = OpenFolderOf(path);
  if (file < 0) return LockAttempt::Impossible;
  struct stat opened {
  }, named{};
  LockAttempt attempt = ::fstat(file, &opened) == 0 ? LockOpened(file, opened) : LockAttempt::Impossible;
  // The file may have been replaced, or made, while this waited for what it was, or for its folder.
  const bool is_there = ::stat(path.c_str(), &named) == 0;
  const bool is_it = is_missing ? !is_there : is_there && IsSameFile(opened, named);
  if (attempt == LockAttempt::Taken && !is_it) attempt = LockAttempt::Busy;
  if (attempt == LockAttempt::Taken)
    handle = file;
  else
    ::close(file);
  return attempt;
}

}  // namespace

EditLock::~EditLock() {
  if (handle_ != kNoFile) ::close(static_cast<int>(handle_));
}

std::optional<FileFailure> EditLock::Take(const fs::path& path, std::chrono::milliseconds wait) {
  constexpr std::chrono::milliseconds kLongestPause{16};
  const auto end = std::chrono::steady_clock::now() + wait;
  for (std::chrono::milliseconds pause{1};; pause = std::min(2 * pause, kLongestPause)) {
    if (TryToLock(path, handle_) != LockAttempt::Busy) return std::nullopt;
    if (std::chrono::steady_clock::now() >= end) break;
    std::this_thread::sleep_for(pause);
  }
  return FileFailure{"Another program has held a lock on it for " + std::to_string(wait.count() / 1000) + " seconds"};
}

}  // namespace tme
