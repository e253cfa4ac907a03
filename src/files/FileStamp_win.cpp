#include "files/FileStamp.h"
#include "files/NativeFile_win.h"

namespace tme {
namespace {

namespace fs = std::filesystem;
using native::Joined;

}  // namespace

std::optional<FileStamp> StampOf(const fs::path& path) {
  constexpr std::int64_t kEpoch = 116'444'736'000'000'000;  // 1970, in the system's units of 100 ns since 1601
  constexpr std::int64_t kUnit = 100;
  native::File file;
  BY_HANDLE_FILE_INFORMATION info{};
  if (file.OpenAttributes(path) || file.RefuseUnlessRegular(info)) return std::nullopt;
  const FILETIME& time = info.ftLastWriteTime;
  const auto units = static_cast<std::int64_t>(Joined(time.dwHighDateTime, time.dwLowDateTime));
  return FileStamp{Joined(info.nFileSizeHigh, info.nFileSizeLow), (units - kEpoch) * kUnit,
                   Joined(info.nFileIndexHigh, info.nFileIndexLow)};
}

bool IsAbsent(const fs::path& path) {
  const std::error_code error = native::File().OpenAttributes(path);
  return error == native::Error(ERROR_FILE_NOT_FOUND) || error == native::Error(ERROR_PATH_NOT_FOUND);
}

}  // namespace tme
