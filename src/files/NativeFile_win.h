#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "files/FileFailure.h"
#include "files/FileSteps.h"

/// Between the handles, paths and numbers of the system's calls and ours.
namespace tme::native {

inline std::error_code Error(DWORD number) { return {static_cast<int>(number), std::system_category()}; }
/// Of the call that failed just now.
inline std::error_code LastError() { return Error(::GetLastError()); }
/// Of a call that returns nonzero when all is well.
inline std::error_code ResultOf(BOOL result) { return result != 0 ? std::error_code() : LastError(); }
inline std::uint64_t Joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

inline HANDLE Native(FileHandle handle) { return reinterpret_cast<HANDLE>(handle); }
inline FileHandle Portable(HANDLE handle) { return reinterpret_cast<FileHandle>(handle); }

/// Returns the path as the system's calls take it at any length: what would not fit MAX_PATH, with room for a temporary
/// name beside it, becomes a whole path behind "\\?\".
std::wstring LongPath(const std::filesystem::path& path);
/// path: as LongPath gives it.
inline bool IsThere(const std::wstring& path) { return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

/// An open file, closed with this object.
class File {
 public:
  File() = default;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (*this) ::CloseHandle(handle_);
  }

  /// Shares the file with everybody unless told otherwise.
  std::error_code Open(const std::filesystem::path& path, DWORD access, DWORD disposition, DWORD flags = 0,
                       DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
  /// Opens what the path leads to without asking for its bytes, a folder too.
  std::error_code OpenAttributes(const std::filesystem::path& path) {
    return Open(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  }
  /// Gives the path of what was opened, without links.
  std::error_code FinalPath(std::filesystem::path& path) const;
  std::optional<FileFailure> RefuseUnlessRegular(BY_HANDLE_FILE_INFORMATION& info) const;

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Handle() const { return handle_; }
  HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace tme::native
