#include "files/FileSteps.h"
#include "files/NativeFile_win.h"

namespace tme {
namespace {

namespace fs = std::filesystem;
using native::LongPath;
using native::Native;
using native::Portable;
using native::ResultOf;

/// Indexers and virus scanners hold a new file for a moment; for so long a replacement is tried again.
constexpr int kReplaceTries = 20;
constexpr DWORD kPauseMs = 50;

}  // namespace

std::error_code FileSteps::OpenTemporary(const fs::path& path, unsigned /*mode*/, FileHandle& handle) {
  native::File file;
  const std::error_code error = file.Open(path, GENERIC_WRITE, CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
  handle = Portable(file.Release());
  return error;
}

std::error_code FileSteps::OpenExisting(const fs::path& path, FileHandle& handle) {
  native::File file;
  const std::error_code error = file.Open(path, GENERIC_WRITE, OPEN_EXISTING);
  handle = Portable(file.Release());
  return error;
}

std::error_code FileSteps::Truncate(FileHandle handle, std::size_t size) {
  LARGE_INTEGER end{};
  end.QuadPart = static_cast<LONGLONG>(size);
  if (const auto error = ResultOf(::SetFilePointerEx(Native(handle), end, nullptr, FILE_BEGIN))) return error;
  return ResultOf(::SetEndOfFile(Native(handle)));
}

std::error_code FileSteps::Write(FileHandle handle, const char* data, std::size_t size, std::size_t& written) {
  DWORD count = 0;
  const std::error_code error = ResultOf(::WriteFile(Native(handle), data, static_cast<DWORD>(size), &count, nullptr));
  written = count;
  return error;
}

std::error_code FileSteps::Flush(FileHandle handle) { return ResultOf(::FlushFileBuffers(Native(handle))); }

std::error_code FileSteps::Close(FileHandle handle) { return ResultOf(::CloseHandle(Native(handle))); }

std::error_code FileSteps::Replace(const fs::path& from, const fs::path& to) {
  constexpr DWORD kMove = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  const std::wstring replacement = LongPath(from), target = LongPath(to);
  DWORD error = ERROR_SUCCESS;
  for (int attempt = 0; attempt < kReplaceTries; ++attempt) {
    if (attempt > 0) ::Sleep(kPauseMs);
    // ReplaceFile may fail with the old file gone already; what is left to do then is what a new file needs, too.
    const bool done = native::IsThere(target) ? ::ReplaceFileW(target.c_str(), replacement.c_str(), nullptr,
                                                               REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0
                                              : ::MoveFileExW(replacement.c_str(), target.c_str(), kMove) != 0;
    if (done) return {};
    error = ::GetLastError();
    // Of a file that somebody has open, some calls only say that access is denied.
    const bool may_pass = error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
                          error == ERROR_ACCESS_DENIED || error == ERROR_UNABLE_TO_REMOVE_REPLACED ||
                          error == ERROR_UNABLE_TO_MOVE_REPLACEMENT;
    if (!may_pass) break;
  }
  // That number stands for no portable error; the old file is as it was.
  return native::Error(error == ERROR_UNABLE_TO_REMOVE_REPLACED ? ERROR_BUSY : error);
}

/// The file system's journal keeps names, and of a new one Replace has asked with MOVEFILE_WRITE_THROUGH to be on the
/// disk.
std::error_code FileSteps::FlushFolder(const fs::path& /*folder*/) { return {}; }

void FileSteps::Remove(const fs::path& path) { ::DeleteFileW(LongPath(path).c_str()); }

}  // namespace tme
