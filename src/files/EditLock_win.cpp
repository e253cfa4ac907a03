#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cwctype>
#include <iterator>
#include <string>

#include "files/EditLock.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

/// Returns the path without links, of a missing file that of its folder and its name.
std::wstring FinalPathOf(const fs::path& path) {
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = ::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, kShare, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const fs::path folder = path.parent_path();
    return folder.empty() || folder == path ? path.native() : FinalPathOf(folder) + L'\\' + path.filename().native();
  }
  std::wstring name(::GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
  const DWORD size =
      ::GetFinalPathNameByHandleW(file, name.data(), static_cast<DWORD>(name.size()), FILE_NAME_NORMALIZED);
  ::CloseHandle(file);
  if (size == 0 || size >= name.size()) return path.native();
  name.resize(size);
  return name;
}

/// A mutex is named for all sessions, by a number: a path has characters that no name of an object has.
std::wstring MutexName(const std::wstring& path) {
  constexpr std::uint64_t kBasis = 0xCBF29CE484222325, kPrime = 0x100000001B3;  // of the FNV-1a hash
  std::uint64_t hash = kBasis;
  for (const wchar_t unit : path) hash = (hash ^ static_cast<std::uint64_t>(std::towupper(unit))) * kPrime;
  wchar_t name[64];
  std::swprintf(name, std::size(name), L"Global\\TamarindEdit%016llx", static_cast<unsigned long long>(hash));
  return name;
}

}  // namespace

EditLock::~EditLock() {
  if (handle_ == kNoFile) return;
  const auto mutex = reinterpret_cast<HANDLE>(handle_);
  ::ReleaseMutex(mutex);
  ::CloseHandle(mutex);
}

std::optional<FileFailure> EditLock::Take(const fs::path& path, std::chrono::milliseconds wait) {
  const HANDLE mutex = ::CreateMutexW(nullptr, FALSE, MutexName(FinalPathOf(path)).c_str());
  if (mutex == nullptr) return std::nullopt;
  const DWORD result = ::WaitForSingleObject(mutex, static_cast<DWORD>(wait.count()));
  if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED) {
    handle_ = reinterpret_cast<FileHandle>(mutex);
    return std::nullopt;
  }
  ::CloseHandle(mutex);
  if (result != WAIT_TIMEOUT) return std::nullopt;
  return FileFailure{"Another program has held a lock on it for " + std::to_string(wait.count() / 1000) + " seconds"};
}

}  // namespace tme
