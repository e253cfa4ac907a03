// What files need of this system: FileSteps.h, FileStamp.h, SystemFile.h.
#include <windows.h>

#include <string>
#include <utility>

#include "files/FileBytes.h"
#include "files/FileStamp.h"
#include "files/FileSteps.h"
#include "files/SystemFile.h"
#include "files/SystemMessage_win.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

std::error_code Error(DWORD number) { return {static_cast<int>(number), std::system_category()}; }
/// Of the call that failed just now.
std::error_code LastError() { return Error(::GetLastError()); }
/// Of a call that returns nonzero when all is well.
std::error_code ResultOf(BOOL result) { return result != 0 ? std::error_code() : LastError(); }
std::uint64_t Joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

HANDLE Native(FileHandle handle) { return reinterpret_cast<HANDLE>(handle); }
FileHandle Portable(HANDLE handle) { return reinterpret_cast<FileHandle>(handle); }

/// Returns the path as the system's calls take it at any length: what would not fit MAX_PATH, with room for a temporary
/// name beside it, becomes a whole path behind "\\?\".
std::wstring LongPath(const fs::path& path) {
  constexpr std::size_t kShort = MAX_PATH - 32;
  const std::wstring& given = path.native();
  if (given.starts_with(LR"(\\?\)") || given.starts_with(LR"(\\.\)")) return given;
  const DWORD room = ::GetFullPathNameW(given.c_str(), 0, nullptr, nullptr);
  if (room <= kShort) return given;
  std::wstring whole(room, L'\0');
  const DWORD size = ::GetFullPathNameW(given.c_str(), room, whole.data(), nullptr);
  if (size == 0 || size >= room) return given;
  whole.resize(size);
  return whole.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + whole.substr(1) : LR"(\\?\)" + whole;
}
/// path: as LongPath gives it.
bool IsThere(const std::wstring& path) { return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

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
  std::error_code Open(const fs::path& path, DWORD access, DWORD disposition, DWORD flags = 0,
                       DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE) {
    const std::wstring name = LongPath(path);
    handle_ = ::CreateFileW(name.c_str(), access, share, nullptr, disposition, flags, nullptr);
    return *this ? std::error_code() : LastError();
  }
  /// Opens what the path leads to without asking for its bytes, a folder too.
  std::error_code OpenAttributes(const fs::path& path) {
    return Open(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  }
  /// Gives the path of what was opened, without links.
  std::error_code FinalPath(fs::path& path) const {
    const DWORD room = ::GetFinalPathNameByHandleW(handle_, nullptr, 0, FILE_NAME_NORMALIZED);
    std::wstring target(room, L'\0');
    const DWORD size = ::GetFinalPathNameByHandleW(handle_, target.data(), room, FILE_NAME_NORMALIZED);
    if (size == 0) return LastError();
    if (size >= room) return Error(ERROR_INSUFFICIENT_BUFFER);
    target.resize(size);
    path = target;
    return {};
  }
  std::optional<FileFailure> RefuseUnlessRegular(BY_HANDLE_FILE_INFORMATION& info) const {
    if (::GetFileType(handle_) != FILE_TYPE_DISK) return FileFailure{"Not a regular file"};
    if (const auto error = ResultOf(::GetFileInformationByHandle(handle_, &info))) return FailureOf(error);
    if ((info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return std::nullopt;
    return FailureOf(std::make_error_code(std::errc::is_a_directory));
  }

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Handle() const { return handle_; }
  HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

/// Indexers and virus scanners hold a new file for a moment; for so long a replacement is tried again.
constexpr int kReplaceTries = 20;
constexpr DWORD kPauseMs = 50;

/// Says why a path could not be opened. A device such as CON is told by that, in a program without a console.
FileFailure FailureToOpen(const std::error_code& error) {
  return error == Error(ERROR_INVALID_HANDLE) ? FileFailure{"Not a regular file"} : FailureOf(error);
}

/// Replaces the path by where it leads when it is a link.
std::error_code ResolveLink(const File& opened, fs::path& path) {
  const DWORD attributes = ::GetFileAttributesW(LongPath(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return {};
  return opened.FinalPath(path);
}

/// Replaces a link by the place where the missing file belongs: a file that is made through the link for a moment
/// tells.
std::error_code ResolveDanglingLink(fs::path& path) {
  File made;
  const std::error_code error = made.Open(path, DELETE, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE);
  return error ? error : made.FinalPath(path);
}

}  // namespace

void MakePrivate(const fs::path& /*path*/) {}

FileFailure FailureOf(const std::error_code& error) {
  if (error.category() == std::system_category())
    return FileFailure{SystemMessage(static_cast<unsigned long>(error.value()))};
  return FileFailure{error.message()};
}

std::optional<FileStamp> StampOf(const fs::path& path) {
  constexpr std::int64_t kEpoch = 116'444'736'000'000'000;  // 1970, in the system's units of 100 ns since 1601
  constexpr std::int64_t kUnit = 100;
  File file;
  BY_HANDLE_FILE_INFORMATION info{};
  if (file.OpenAttributes(path) || file.RefuseUnlessRegular(info)) return std::nullopt;
  const FILETIME& time = info.ftLastWriteTime;
  const auto units = static_cast<std::int64_t>(Joined(time.dwHighDateTime, time.dwLowDateTime));
  return FileStamp{Joined(info.nFileSizeHigh, info.nFileSizeLow), (units - kEpoch) * kUnit,
                   Joined(info.nFileIndexHigh, info.nFileIndexLow)};
}

bool IsAbsent(const fs::path& path) {
  const std::error_code error = File().OpenAttributes(path);
  return error == Error(ERROR_FILE_NOT_FOUND) || error == Error(ERROR_PATH_NOT_FOUND);
}

std::error_code FileSteps::OpenTemporary(const fs::path& path, unsigned /*mode*/, FileHandle& handle) {
  File file;
  const std::error_code error = file.Open(path, GENERIC_WRITE, CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
  handle = Portable(file.Release());
  return error;
}

std::error_code FileSteps::OpenExisting(const fs::path& path, FileHandle& handle) {
  File file;
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
    const bool done = IsThere(target) ? ::ReplaceFileW(target.c_str(), replacement.c_str(), nullptr,
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
  return Error(error == ERROR_UNABLE_TO_REMOVE_REPLACED ? ERROR_BUSY : error);
}

/// The file system's journal keeps names, and of a new one Replace has asked with MOVEFILE_WRITE_THROUGH to be on the
/// disk.
std::error_code FileSteps::FlushFolder(const fs::path& /*folder*/) { return {}; }

void FileSteps::Remove(const fs::path& path) { ::DeleteFileW(LongPath(path).c_str()); }

namespace system_file {

std::optional<FileFailure> OpenForReading(const fs::path& path, FileHandle& handle, std::uint64_t& size) {
  // A folder would be refused without its reason.
  File file;
  constexpr DWORD kFlags = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_SEQUENTIAL_SCAN;
  if (const auto error = file.Open(path, GENERIC_READ, OPEN_EXISTING, kFlags)) return FailureToOpen(error);
  BY_HANDLE_FILE_INFORMATION info{};
  if (auto failure = file.RefuseUnlessRegular(info)) return failure;
  size = Joined(info.nFileSizeHigh, info.nFileSizeLow);
  handle = Portable(file.Release());
  return std::nullopt;
}

std::error_code Read(FileHandle handle, char* to, std::size_t room, std::size_t& count) {
  DWORD result = 0;
  const std::error_code error = ResultOf(::ReadFile(Native(handle), to, static_cast<DWORD>(room), &result, nullptr));
  count = result;
  return error;
}

void CloseReading(FileHandle handle) { ::CloseHandle(Native(handle)); }

std::optional<FileFailure> ResolveTarget(const fs::path& path, Target& target) {
  target.path = path;
  File file;
  if (const auto error = file.OpenAttributes(path)) {
    const bool is_missing = error == Error(ERROR_FILE_NOT_FOUND);
    // A link that leads nowhere is there itself.
    if (is_missing && (!IsThere(LongPath(path)) || !ResolveDanglingLink(target.path))) return std::nullopt;
    return FailureToOpen(error);
  }
  BY_HANDLE_FILE_INFORMATION info{};
  if (auto failure = file.RefuseUnlessRegular(info)) return failure;
  if ((info.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) return FileFailure{"The file is read-only"};
  if (const auto error = ResolveLink(file, target.path)) return FailureOf(error);
  // Putting another file in place needs no right to write this one, so the wish is asked for here.
  if (const auto error = File().Open(target.path, GENERIC_WRITE, OPEN_EXISTING)) return FailureOf(error);
  target.exists = true;
  return std::nullopt;
}

/// Replace brings the access list, the alternate streams and the time of creation; hidden and system files stay such.
bool TakeOver(const fs::path& target, FileHandle temporary) {
  File file;
  BY_HANDLE_FILE_INFORMATION old{};
  if (file.OpenAttributes(target) || ::GetFileInformationByHandle(file.Handle(), &old) == 0 || old.nNumberOfLinks > 1)
    return false;
  FILE_BASIC_INFO info{};  // times of 0 stay as they are
  info.FileAttributes = old.dwFileAttributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                                                FILE_ATTRIBUTE_NOT_CONTENT_INDEXED);
  if (info.FileAttributes == 0) info.FileAttributes = FILE_ATTRIBUTE_NORMAL;
  ::SetFileInformationByHandle(Native(temporary), FileBasicInfo, &info, sizeof info);
  return true;
}

/// The file opens alone when nobody else has it open, and so its writer is gone. Young ones may be closed and not yet
/// in place.
void RemoveIfLeft(const fs::path& temporary) {
  constexpr std::uint64_t kLeftAfter = 50'000'000;  // 5 s, in the system's units of 100 ns
  File alone;
  BY_HANDLE_FILE_INFORMATION info{};
  if (alone.Open(temporary, DELETE | FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, 0) ||
      alone.RefuseUnlessRegular(info) || info.nNumberOfLinks != 1)
    return;
  FILETIME now{};
  ::GetSystemTimeAsFileTime(&now);
  const FILETIME& written = info.ftLastWriteTime;
  if (Joined(written.dwHighDateTime, written.dwLowDateTime) + kLeftAfter >
      Joined(now.dwHighDateTime, now.dwLowDateTime))
    return;
  FILE_DISPOSITION_INFO gone{TRUE};
  ::SetFileInformationByHandle(alone.Handle(), FileDispositionInfo, &gone, sizeof gone);
}

}  // namespace system_file
}  // namespace tme
