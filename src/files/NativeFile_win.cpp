#include "files/NativeFile_win.h"

namespace tme::native {

std::wstring LongPath(const std::filesystem::path& path) {
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

std::error_code File::Open(const std::filesystem::path& path, DWORD access, DWORD disposition, DWORD flags,
                           DWORD share) {
  const std::wstring name = LongPath(path);
  handle_ = ::CreateFileW(name.c_str(), access, share, nullptr, disposition, flags, nullptr);
  return *this ? std::error_code() : LastError();
}

std::error_code File::FinalPath(std::filesystem::path& path) const {
  const DWORD room = ::GetFinalPathNameByHandleW(handle_, nullptr, 0, FILE_NAME_NORMALIZED);
  std::wstring target(room, L'\0');
  const DWORD size = ::GetFinalPathNameByHandleW(handle_, target.data(), room, FILE_NAME_NORMALIZED);
  if (size == 0) return LastError();
  if (size >= room) return Error(ERROR_INSUFFICIENT_BUFFER);
  target.resize(size);
  path = target;
  return {};
}

std::optional<FileFailure> File::RefuseUnlessRegular(BY_HANDLE_FILE_INFORMATION& info) const {
  if (::GetFileType(handle_) != FILE_TYPE_DISK) return FileFailure{"Not a regular file"};
  if (const auto error = ResultOf(::GetFileInformationByHandle(handle_, &info))) return FailureOf(error);
  if ((info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return std::nullopt;
  return FailureOf(std::make_error_code(std::errc::is_a_directory));
}

}  // namespace tme::native
