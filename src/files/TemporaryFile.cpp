#include "files/TemporaryFile.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>
#include <utility>

#include "files/SystemFile.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

constexpr int kNameAttempts = 16;

fs::path TemporaryName(const fs::path& folder) {
  std::random_device random;
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), ".tme-%08x%08x", random(), random());
  return folder / name.data();
}

/// name: of the system's characters.
template <typename Name>
bool IsTemporaryName(const Name& name) {
  constexpr std::string_view kStart = ".tme-", kDigits = "0123456789abcdef";
  constexpr std::size_t kRandomDigits = 16;
  const auto is_digit = [kDigits](auto unit) {
    return std::find(kDigits.begin(), kDigits.end(), unit) != kDigits.end();
  };
  return name.size() == kStart.size() + kRandomDigits && std::equal(kStart.begin(), kStart.end(), name.begin()) &&
         std::all_of(name.begin() + kStart.size(), name.end(), is_digit);
}

}  // namespace

TemporaryFile::~TemporaryFile() {
  if (handle_ != kNoFile) steps_.Close(handle_);
  if (!path_.empty()) steps_.Remove(path_);
}

std::error_code TemporaryFile::Open(const fs::path& folder, unsigned mode) {
  std::error_code error;
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    const fs::path path = TemporaryName(folder);
    error = steps_.OpenTemporary(path, mode, handle_);
    if (!error) path_ = path;
    if (error != std::errc::file_exists) break;
  }
  return error;
}

std::error_code TemporaryFile::Write(std::string_view bytes) { return WriteAll(steps_, handle_, bytes); }

std::error_code TemporaryFile::FlushAndClose() {
  const std::error_code flush_error = steps_.Flush(handle_);
  const std::error_code close_error = steps_.Close(handle_);  // a network file system tells of a full disk only here
  handle_ = kNoFile;
  return flush_error ? flush_error : close_error;
}

std::error_code TemporaryFile::Replace(const fs::path& target) {
  const std::error_code error = steps_.Replace(path_, target);
  if (!error) path_.clear();
  return error;
}

fs::path TemporaryFile::Keep(const fs::path& target) {
  fs::path temporary = std::exchange(path_, {}), kept = target;
  kept += temporary.filename();
  std::error_code error;
  fs::rename(temporary, kept, error);
  return error ? temporary : kept;
}

void RemoveLeftTemporaries(const fs::path& folder) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const fs::path& path = entry->path();
    if (IsTemporaryName(path.filename().native())) system_file::RemoveIfLeft(path);
  }
}

std::error_code WriteAll(FileSteps& steps, FileHandle handle, std::string_view bytes) {
  while (!bytes.empty()) {
    std::size_t written = 0;
    const auto error = steps.Write(handle, bytes.data(), std::min(bytes.size(), kMaxTransfer), written);
    if (error == std::errc::interrupted) continue;
    if (error) return error;
    if (written == 0) return std::make_error_code(std::errc::io_error);
    bytes.remove_prefix(written);
  }
  return {};
}

}  // namespace tme
