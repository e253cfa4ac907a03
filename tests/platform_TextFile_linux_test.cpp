#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "WriteFile.h"

namespace tme {
namespace {

TEST_F(WriteFile, KeepsModeAndLinks) {
  Put(In("file"), "old");
  ::chmod(In("file").c_str(), 0754);
  fs::create_directory(In("sub"));
  fs::create_symlink("../file", In("sub/link"));
  fs::create_symlink("sub/link", In("link"));
  EXPECT_EQ(Reason(WriteFileBytes(In("link"), "new")), "none");
  EXPECT_TRUE(fs::is_symlink(In("link")) && fs::is_symlink(In("sub/link")));
  EXPECT_EQ(Get(In("file")), "new");
  EXPECT_EQ(fs::status(In("file")).permissions(), fs::perms{0754});

  fs::create_symlink("sub/missing", In("dangling"));
  const mode_t old_mask = ::umask(027);
  EXPECT_EQ(Reason(WriteFileBytes(In("dangling"), "made")), "none");
  ::umask(old_mask);
  EXPECT_EQ(Get(In("sub/missing")), "made");
  EXPECT_EQ(fs::status(In("sub/missing")).permissions(), fs::perms{0640});
}

TEST_F(WriteFile, SaysWhyNot) {
  Put(In("read-only"), "old");
  ::chmod(In("read-only").c_str(), 0444);
  EXPECT_EQ(Reason(WriteFileBytes(In("read-only"), "new")), "The file is read-only");
  EXPECT_EQ(Get(In("read-only")), "old");

  fs::create_symlink("loop", In("loop"));
  ASSERT_EQ(::mkfifo(In("pipe").c_str(), 0600), 0);  // nobody writes: opening it must not wait
  const std::pair<const char*, std::string> cases[] = {{"", "Is a directory"},
                                                       {"missing/file", "No such file or directory"},
                                                       {"loop", "Too many levels of symbolic links"},
                                                       {"pipe", "Not a regular file"}};
  for (const auto& [name, reason] : cases) {
    EXPECT_EQ(Reason(WriteFileBytes(In(name), "new")), reason) << name;
    EXPECT_EQ(Get(In(name)), "failed: " + reason) << name;
  }
  class NoTemporary : public FileSteps {
    std::error_code OpenTemporary(const fs::path& /*path*/, unsigned /*mode*/, FileHandle& /*handle*/) override {
      return std::make_error_code(std::errc::permission_denied);
    }
  } steps;
  const auto put_new = [](const FilePart& put) { return put("new"); };
  EXPECT_EQ(Reason(WriteFileParts(In("new"), put_new, steps)), "The folder cannot be written: Permission denied");

  EXPECT_NE(Get("/proc/self/cmdline"), "") << "larger than its size says";
  Put(In("huge"), "");
  fs::resize_file(In("huge"), kMaxFileBytes + 1);
  EXPECT_EQ(Get(In("huge")), "failed: File too large");
}

}  // namespace
}  // namespace tme
