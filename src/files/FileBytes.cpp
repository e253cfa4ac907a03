#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include "files/SystemFile.h"

namespace tme {
namespace {

namespace fs = std::filesystem;
using system_file::Failure;

/// One call never moves more, so that its count fits every type on the way.
constexpr std::size_t kMaxTransfer = std::size_t{1} << 30;
constexpr int kNameAttempts = 16;

/// expected: the size of the file when it was opened; it may be another by now.
std::error_code ReadToEnd(FileHandle handle, std::size_t expected, std::string& bytes) {
  bytes.resize(expected + 1);  // the end shows in one call more, without growing
  std::size_t used = 0;
  while (true) {
    if (used == bytes.size()) bytes.resize(std::min<std::size_t>(2 * used, kMaxFileBytes + 1));
    std::size_t count = 0;
    const std::size_t room = std::min(bytes.size() - used, kMaxTransfer);
    if (const auto error = system_file::Read(handle, bytes.data() + used, room, count)) return error;
    if (count == 0) break;
    used += count;
    if (used > kMaxFileBytes) return std::make_error_code(std::errc::file_too_large);
  }
  bytes.resize(used);
  return {};
}

fs::path TemporaryName(const fs::path& folder) {
  std::random_device random;
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), ".tme-%08x%08x", random(), random());
  return folder / name.data();
}

/// Of the system's characters.
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

/// opened: whether the file may have other bytes now.
std::error_code Overwrite(FileSteps& steps, const fs::path& path, std::string_view bytes, bool& opened) {
  FileHandle handle = kNoFile;
  if (const auto error = steps.OpenExisting(path, handle)) return error;
  opened = true;
  std::error_code error = WriteAll(steps, handle, bytes);
  if (!error) error = steps.Truncate(handle, bytes.size());
  if (!error) error = steps.Flush(handle);
  const std::error_code close_error = steps.Close(handle);
  return error ? error : close_error;
}

/// The temporary file, gone with this object unless it was put in place.
class Temporary {
 public:
  explicit Temporary(FileSteps& steps) : steps_(steps) {}
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  ~Temporary() {
    if (handle_ != kNoFile) steps_.Close(handle_);
    if (!path_.empty()) steps_.Remove(path_);
  }

  std::error_code Open(const fs::path& folder, unsigned mode) {
    std::error_code error;
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
      const fs::path path = TemporaryName(folder);
      error = steps_.OpenTemporary(path, mode, handle_);
      if (!error) path_ = path;
      if (error != std::errc::file_exists) break;
    }
    return error;
  }

  std::error_code Write(std::string_view bytes) { return WriteAll(steps_, handle_, bytes); }

  std::error_code FlushAndClose() {
    const std::error_code flush_error = steps_.Flush(handle_);
    const std::error_code close_error = steps_.Close(handle_);  // a network file system tells of a full disk only here
    handle_ = kNoFile;
    return flush_error ? flush_error : close_error;
  }

  std::error_code Replace(const fs::path& target) {
    const std::error_code error = steps_.Replace(path_, target);
    if (!error) path_.clear();
    return error;
  }

  /// Leaves the file to the user, under a name that is not taken for what a killed save left; that name.
  fs::path Keep(const fs::path& target) {
    fs::path temporary = std::exchange(path_, {}), kept = target;
    kept += temporary.filename();
    std::error_code error;
    fs::rename(temporary, kept, error);
    return error ? temporary : kept;
  }

  FileHandle handle() const { return handle_; }

 private:
  FileSteps& steps_;
  fs::path path_;
  FileHandle handle_ = kNoFile;
};

std::optional<FileFailure> PutInPlace(Temporary& temporary, const system_file::Target& target) {
  const std::error_code error = temporary.Replace(target.path);
  if (!error) return std::nullopt;
  FileFailure failure = Failure(error);
  if (!target.exists) return failure;
  system_file::Target left;
  if (!system_file::ResolveTarget(target.path, left) && !left.exists) {
    const std::u8string name = temporary.Keep(target.path).filename().u8string();
    failure.reason += " (what was written is in " + std::string(name.begin(), name.end()) + " beside it)";
    failure.file_damaged = true;
    return failure;
  }
  // A file that may be written but not deleted or renamed (someone else's in a folder like /tmp, on Windows one whose
  // access list says so), one that is a mount of its own or that another program holds: its bytes may be all the same.
  failure.folder_refused = error == std::errc::operation_not_permitted || error == std::errc::permission_denied ||
                           error == std::errc::device_or_resource_busy;
  return failure;
}

}  // namespace

std::optional<FileFailure> ReadFileBytes(const fs::path& path, std::string& bytes) {
  bytes.clear();
  FileHandle handle = kNoFile;
  std::uint64_t size = 0;
  if (auto failure = system_file::OpenForReading(path, handle, size)) return failure;
  auto error = std::make_error_code(std::errc::file_too_large);
  try {
    if (size <= kMaxFileBytes) error = ReadToEnd(handle, static_cast<std::size_t>(size), bytes);
  } catch (const std::bad_alloc&) {
    error = std::make_error_code(std::errc::not_enough_memory);
  } catch (const std::length_error&) {
    error = std::make_error_code(std::errc::not_enough_memory);
  }
  system_file::CloseReading(handle);
  if (!error) return std::nullopt;
  std::string().swap(bytes);
  return Failure(error);
}

std::optional<FileFailure> WriteFileInPlace(const fs::path& path, std::string_view bytes, std::string_view old_bytes,
                                            FileSteps& steps) {
  bool opened = false;
  const std::error_code error = Overwrite(steps, path, bytes, opened);
  if (!error) return std::nullopt;
  FileFailure failure = Failure(error);
  failure.file_damaged = opened && Overwrite(steps, path, old_bytes, opened);
  return failure;
}

std::error_code PrivateFileSteps::OpenTemporary(const fs::path& path, unsigned /*mode*/, FileHandle& handle) {
  return FileSteps::OpenTemporary(path, 0600, handle);
}

std::optional<FileFailure> WritePrivateFile(const fs::path& path, std::string_view bytes) {
  PrivateFileSteps steps;
  MakePrivate(path);
  return WriteFileParts(
      path, [bytes](const FilePart& put) { return put(bytes); }, steps);
}

void RemoveLeftTemporaries(const fs::path& folder) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const fs::path& path = entry->path();
    if (IsTemporaryName(path.filename().native())) system_file::RemoveIfLeft(path);
  }
}

std::optional<FileFailure> WriteFileParts(const fs::path& path, const PartProducer& produce, FileSteps& steps) {
  system_file::Target target;
  if (auto failure = system_file::ResolveTarget(path, target)) return failure;

  const fs::path folder = target.path.has_parent_path() ? target.path.parent_path() : fs::path(".");
  Temporary temporary(steps);
  // The old file's mode comes after its owner; until then nobody else may open it.
  std::error_code error = temporary.Open(folder, target.exists ? 0600 : 0666);
  if (error == std::errc::permission_denied || error == std::errc::read_only_file_system ||
      error == std::errc::operation_not_permitted) {
    return FileFailure{"The folder cannot be written: " + Failure(error).reason, true};
  }
  if (error) return Failure(error);
  if (target.exists && !system_file::TakeOver(target.path, temporary.handle())) {
    return FileFailure{"A new file cannot have the owner, the access rights and the links of the old one", true};
  }

  const bool complete = produce([&temporary, &error](std::string_view bytes) {
    error = temporary.Write(bytes);
    return !error;
  });
  if (!complete && !error) return FileFailure{"The file was not completed"};
  if (!error) error = temporary.FlushAndClose();
  if (error) return Failure(error);
  if (auto failure = PutInPlace(temporary, target)) return failure;
  // The new bytes are in place and readable; whether the folder's entry outlives a power cut is all that is open.
  steps.FlushFolder(folder);
  return std::nullopt;
}

}  // namespace tme
