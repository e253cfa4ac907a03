#include "files/FileBytes.h"
#include "files/FileStamp.h"
#include "files/NativeFile_win.h"
#include "files/SystemFile.h"
#include "files/SystemMessage_win.h"

namespace tme {
namespace {

namespace fs = std::filesystem;
using native::Joined;
using native::LongPath;
using native::Native;
using native::ResultOf;

/// Says why a path could not be opened. A device such as CON is told by that, in a program without a console.
FileFailure FailureToOpen(const std::error_code& error) {
  return error == native::Error(ERROR_INVALID_HANDLE) ? FileFailure{"Not a regular file"} : FailureOf(error);
}

/// Replaces the path by where it leads when it is a link.
std::error_code ResolveLink(const native::File& opened, fs::path& path) {
  const DWORD attributes = ::GetFileAttributesW(LongPath(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return {};
  return opened.FinalPath(path);
}

/// Replaces a link by the place where the missing file belongs: a file that is made through the link for a moment
/// tells.
std::error_code ResolveDanglingLink(fs::path& path) {
  native::File made;
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

namespace system_file {

std::optional<FileFailure> OpenForReading(const fs::path& path, FileHandle& handle, std::uint64_t& size) {
  // A folder would be refused without its reason.
  native::File file;
  constexpr DWORD kFlags = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_SEQUENTIAL_SCAN;
  if (const auto error = file.Open(path, GENERIC_READ, OPEN_EXISTING, kFlags)) return FailureToOpen(error);
  BY_HANDLE_FILE_INFORMATION info{};
  if (auto failure = file.RefuseUnlessRegular(info)) return failure;
  size = Joined(info.nFileSizeHigh, info.nFileSizeLow);
  handle = native::Portable(file.Release());
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
  native::File file;
  if (const auto error = file.OpenAttributes(path)) {
    const bool is_missing = error == native::Error(ERROR_FILE_NOT_FOUND);
    // A link that leads nowhere is there itself.
    if (is_missing && (!native::IsThere(LongPath(path)) || !ResolveDanglingLink(target.path))) return std::nullopt;
    return FailureToOpen(error);
  }
  BY_HANDLE_FILE_INFORMATION info{};
  if (auto failure = file.RefuseUnlessRegular(info)) return failure;
  if ((info.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) return FileFailure{"The file is read-only"};
  if (const auto error = ResolveLink(file, target.path)) return FailureOf(error);
  // Putting another file in place needs no right to write this one, so the wish is asked for here.
  if (const auto error = native::File().Open(target.path, GENERIC_WRITE, OPEN_EXISTING)) return FailureOf(error);
  target.exists = true;
  return std::nullopt;
}

/// Replace brings the access list, the alternate streams and the time of creation; hidden and system files stay such.
bool TakeOver(const fs::path& target, FileHandle temporary) {
  native::File file;
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
  native::File alone;
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
