#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <system_error>

#include "files/FileSteps.h"

/// What goes wrong at a step, and where.
struct Fault {
  const char* name = "full disk";
  std::errc error = std::errc::no_space_on_device;
  enum class Lasts { Once, FromThenOn } lasts = Lasts::Once;
  enum class Folder { Open, Refuses, KeepsItsFiles } folder = Folder::Open;
};

/// Fails at a step, counted from 1; step 0 is none. Writes are short and interrupted often; nothing waits for the disk.
class FailingSteps : public tme::FileSteps {
 public:
  explicit FailingSteps(int failing_step, const Fault& fault = {}, std::size_t most_written = 48)
      : fault_(fault), failing_step_(failing_step), most_written_(most_written) {}
  /// Steps so far.
  int Count() const { return count_; }
  bool HasFailed() const { return failing_step_ != 0 && count_ >= failing_step_; }

  std::error_code OpenExisting(const std::filesystem::path& path, tme::FileHandle& handle) override {
    const std::error_code error = Next();
    return error ? error : FileSteps::OpenExisting(path, handle);
  }
  std::error_code OpenTemporary(const std::filesystem::path& path, unsigned mode, tme::FileHandle& handle) override {
    if (fault_.folder == Fault::Folder::Refuses) return std::make_error_code(std::errc::permission_denied);
    const std::error_code error = Next();
    return error ? error : FileSteps::OpenTemporary(path, mode, handle);
  }
  std::error_code Write(tme::FileHandle handle, const char* data, std::size_t size, std::size_t& written) override {
    if (interrupted_ = !interrupted_; interrupted_) return std::make_error_code(std::errc::interrupted);
    const std::error_code error = Next();
    return error ? error : FileSteps::Write(handle, data, std::min(size, most_written_), written);
  }
  std::error_code Truncate(tme::FileHandle handle, std::size_t size) override {
    const std::error_code error = Next();
    return error ? error : FileSteps::Truncate(handle, size);
  }
  std::error_code Flush(tme::FileHandle) override { return Next(); }
  std::error_code Close(tme::FileHandle handle) override {
    const std::error_code error = FileSteps::Close(handle), injected = Next();
    EXPECT_FALSE(error) << "closed twice";
    return injected ? injected : error;
  }
  std::error_code Replace(const std::filesystem::path& from, const std::filesystem::path& to) override {
    const std::error_code error = Next();
    if (fault_.folder == Fault::Folder::KeepsItsFiles) return std::make_error_code(std::errc::operation_not_permitted);
    return error ? error : FileSteps::Replace(from, to);
  }
  std::error_code FlushFolder(const std::filesystem::path&) override {
    const std::error_code error = Next();
    folder_flush_failed = error.value() != 0;
    return error;
  }

  bool folder_flush_failed = false;

 private:
  std::error_code Next() {
    ++count_;
    const bool fails = fault_.lasts == Fault::Lasts::Once ? count_ == failing_step_ : count_ >= failing_step_;
    return failing_step_ != 0 && fails ? std::make_error_code(fault_.error) : std::error_code();
  }

  const Fault fault_;
  const int failing_step_;
  const std::size_t most_written_;
  int count_ = 0;
  bool interrupted_ = false;
};
