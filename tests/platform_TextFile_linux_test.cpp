#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <algorithm>
#include <fstream>
#include <iterator>

#include "platform/CodePage.h"
#include "platform/TextFile.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

class WriteFile : public testing::Test {
 protected:
  fs::path In(const std::string& name) const { return fs::path(folder_.path().toStdString()) / name; }
  static void Put(const fs::path& path, const std::string& bytes) { std::ofstream(path) << bytes; }
  static std::string Get(const fs::path& path) {
    std::string bytes;
    const auto failure = ReadFileBytes(path, bytes);
    return failure ? "failed: " + failure->reason : bytes;
  }
  static std::string Reason(const std::optional<FileFailure>& failure) { return failure ? failure->reason : "none"; }
  std::ptrdiff_t FilesInFolder() const { return std::distance(fs::directory_iterator(In("")), {}); }

 private:
  QTemporaryDir folder_;
};

/// Fails at the n-th step, after that step has done part of its work. Writes little at a time and is interrupted often.
class FailingSteps : public FileSteps {
 public:
  explicit FailingSteps(int failing_step) : left_(failing_step) {}
  bool HasFailed() const { return left_ <= 0; }

  std::error_code OpenTemporary(const fs::path& path, unsigned mode, FileHandle& handle) override {
    return Fails() ? kFull : FileSteps::OpenTemporary(path, mode, handle);
  }
  std::error_code Write(FileHandle handle, const char* data, std::size_t size, std::size_t& written) override {
    if (interrupted_ = !interrupted_; interrupted_) return std::make_error_code(std::errc::interrupted);
    return Fails() ? kFull : FileSteps::Write(handle, data, std::min<std::size_t>(size, 3), written);
  }
  std::error_code Flush(FileHandle handle) override { return Fails() ? kFull : FileSteps::Flush(handle); }
  std::error_code Close(FileHandle handle) override {
    const std::error_code error = FileSteps::Close(handle);
    EXPECT_FALSE(error) << "closed twice";
    return Fails() ? kFull : error;
  }
  std::error_code Replace(const fs::path& from, const fs::path& to) override {
    return Fails() ? kFull : FileSteps::Replace(from, to);
  }
  std::error_code FlushFolder(const fs::path& folder) override {
    folder_flush_failed = Fails();
    return folder_flush_failed ? kFull : FileSteps::FlushFolder(folder);
  }

  bool folder_flush_failed = false;

 private:
  static inline const std::error_code kFull = std::make_error_code(std::errc::no_space_on_device);
  bool Fails() { return --left_ == 0; }

  int left_;
  bool interrupted_ = false;
};

TEST_F(WriteFile, FailureAtAnyStepLeavesTheOldBytesAndNothingElse) {
  const fs::path path = In("a.ini");
  for (const bool exists : {true, false}) {
    bool done = false;
    for (int step = 1; !done; ++step) {
      SCOPED_TRACE(step);
      fs::remove(path);
      if (exists) Put(path, "old");
      FailingSteps steps(step);
      const auto failure = WriteFileParts(
          path, [](const FilePart& put) { return put("new ") && put("bytes"); }, steps);
      done = !steps.HasFailed();
      const bool written = done || steps.folder_flush_failed;
      EXPECT_EQ(Reason(failure), written ? "none" : "No space left on device");
      EXPECT_EQ(Get(path), written ? "new bytes" : exists ? "old" : "failed: No such file or directory");
      EXPECT_EQ(FilesInFolder(), exists || written ? 1 : 0);
      ASSERT_LT(step, 20);
    }
  }
}

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

TEST(CodePage, IsABijection) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  EXPECT_EQ(Utf8ToCodePage(CodePageToUtf8(bytes)), bytes);
  EXPECT_EQ(CodePageToUtf8("\x80\x8D\x99\xE4"), "\u20AC\u008D\u2122\u00E4");
  EXPECT_EQ(Utf8ToCodePage("\u0080"), std::nullopt) << "its byte is taken by another character";
}

TEST_F(WriteFile, TextInPartsFallsBackToUtf8AsAWhole) {
  struct Row {
    std::string_view first, second, bytes;
    TextEncoding encoding, written;
  };
  using enum TextEncoding;
  const Row rows[] = {
      {"a\u00E9\n", "\u00FC\n", "a\xE9\n\xFC\n", CodePage, CodePage},
      {"a\u00E9\n", "\u0416\n", "a\u00E9\n\u0416\n", CodePage, Utf8},
      {"a\n", "\u00C3\u00A9\n", "a\n\u00C3\u00A9\n", CodePage, Utf8},
      {"a\n", "b\n", "\uFEFFa\nb\n", Utf8Bom, Utf8Bom},
      {"a", "b", std::string_view("\xFE\xFF\0a\0b", 6), Utf16Be, Utf16Be},
  };
  for (const Row& row : rows) {
    TextFormat format{row.encoding, {}};
    const auto produce = [&row](const FilePart& put) { return put(row.first) && put(row.second); };
    EXPECT_EQ(Reason(WriteTextFile(In("text"), format, produce)), "none");
    EXPECT_EQ(Get(In("text")), row.bytes);
    EXPECT_EQ(format.encoding, row.written);
  }
  TextFormat format;
  EXPECT_EQ(Reason(WriteTextFile(In("text"), format, [](const FilePart& put) { return put("x") && false; })),
            "The file was not completed");
  EXPECT_EQ(Get(In("text")), rows[4].bytes);
  EXPECT_EQ(FilesInFolder(), 1);
}

}  // namespace
}  // namespace tme
