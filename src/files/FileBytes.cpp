#include "files/FileBytes.h"

#include <algorithm>

#include "files/FileSteps.h"
#include "files/ReadToEnd.h"
#include "files/SystemFile.h"
#include "files/TemporaryFile.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

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

std::optional<FileFailure> PutInPlace(TemporaryFile& temporary, const system_file::Target& target) {
  const std::error_code error = temporary.Replace(target.path);
  if (!error) return std::nullopt;
  FileFailure failure = FailureOf(error);
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

std::optional<FileFailure> WriteWhole(const fs::path& path, std::string_view bytes, FileSteps& steps) {
  const auto produce = [bytes](const PartSink& put) { return put(bytes); };
  return WriteFileParts(path, produce, steps);
}

}  // namespace

std::optional<FileFailure> ReadFileBytes(const fs::path& path, std::string& bytes) {
  bytes.clear();
  FileHandle handle = kNoFile;
  std::uint64_t size = 0;
  if (auto failure = system_file::OpenForReading(path, handle, size)) return failure;
  const auto read = [handle](char* place, std::size_t room, std::size_t& count) {
    return system_file::Read(handle, place, std::min(room, kMaxTransfer), count);
  };
  std::optional<FileFailure> failure = FailureOf(std::make_error_code(std::errc::file_too_large));
  if (size <= kMaxFileBytes) failure = ReadToEnd(read, static_cast<std::size_t>(size), bytes);
  system_file::CloseReading(handle);
  return failure;
}

std::optional<FileFailure> WriteFileInPlace(const fs::path& path, std::string_view bytes, std::string_view old_bytes,
                                            FileSteps& steps) {
  bool opened = false;
  const std::error_code error = Overwrite(steps, path, bytes, opened);
  if (!error) return std::nullopt;
  FileFailure failure = FailureOf(error);
  failure.file_damaged = opened && Overwrite(steps, path, old_bytes, opened);
  return failure;
}

std::optional<FileFailure> WriteFileParts(const fs::path& path, const PartProducer& produce, FileSteps& steps) {
  system_file::Target target;
  if (auto failure = system_file::ResolveTarget(path, target)) return failure;

  const fs::path folder = target.path.has_parent_path() ? target.path.parent_path() : fs::path(".");
  TemporaryFile temporary(steps);
  // The old file's mode comes after its owner; until then nobody else may open it.
  std::error_code error = temporary.Open(folder, target.exists ? 0600 : 0666);
  if (error == std::errc::permission_denied || error == std::errc::read_only_file_system ||
      error == std::errc::operation_not_permitted) {
    return FileFailure{"The folder cannot be written: " + FailureOf(error).reason, true};
  }
  if (error) return FailureOf(error);
  if (target.exists && !system_file::TakeOver(target.path, temporary.Handle())) {
    return FileFailure{"A new file cannot have the owner, the access rights and the links of the old one", true};
  }

  const bool complete = produce([&temporary, &error](std::string_view bytes) {
    error = temporary.Write(bytes);
    return !error;
  });
  if (!complete && !error) return FileFailure{"The file was not completed"};
  if (!error) error = temporary.FlushAndClose();
  if (error) return FailureOf(error);
  if (auto failure = PutInPlace(temporary, target)) return failure;
  // The new bytes are in place and readable; whether the folder's entry outlives a power cut is all that is open.
  steps.FlushFolder(folder);
  return std::nullopt;
}

std::optional<FileFailure> WriteFileBytes(const fs::path& path, std::string_view bytes) {
  FileSteps steps;
  return WriteWhole(path, bytes, steps);
}

std::optional<FileFailure> WritePrivateFile(const fs::path& path, std::string_view bytes) {
  PrivateFileSteps steps;
  MakePrivate(path);
  return WriteWhole(path, bytes, steps);
}

}  // namespace tme
