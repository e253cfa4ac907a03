#pragma once

#include <chrono>
#include <filesystem>
#include <optional>

#include "files/FileFailure.h"
#include "files/FileSteps.h"

namespace tme {

/// Keeps programs that edit one file from losing what another of them writes: taken before the file is read, held until
/// it is replaced. It binds those alone that take it. The system frees it with the process.
class EditLock {
 public:
  /// Edits take milliseconds; this is for a queue of them.
  static constexpr std::chrono::milliseconds kMostWait{30'000};

  EditLock() = default;
  EditLock(const EditLock&) = delete;
  EditLock& operator=(const EditLock&) = delete;
  ~EditLock();

  /// Waits while another program has the file, or the place where a missing one belongs; a failure when it still does
  /// then. Where the system knows no locks or the file cannot be opened nothing is taken, which is no failure: to
  /// read or write it says more. Once.
  std::optional<FileFailure> Take(const std::filesystem::path& path, std::chrono::milliseconds wait = kMostWait);

 private:
  FileHandle handle_ = kNoFile;
};

}  // namespace tme
