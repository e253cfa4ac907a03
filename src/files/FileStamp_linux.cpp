#include <sys/stat.h>

#include "files/FileStamp.h"
#include "files/NativeFile_linux.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

}  // namespace

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
  const std::error_code error = native::ResultOf(::stat(path.c_str(), &status));
  return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
}

}  // namespace tme
