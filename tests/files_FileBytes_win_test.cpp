#include <gtest/gtest.h>

#include <windows.h>

#include "WriteFile.h"
#include "files/CodePageTable_win.h"
#include "files/FileStamp.h"
#include "files/FileSteps.h"

namespace tme {
namespace {

/// Null of a file system that has no second streams.
bool PutStream(const fs::path& file) {
  const HANDLE stream =
      ::CreateFileW((file.native() + L":note").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (stream == INVALID_HANDLE_VALUE) return false;
  DWORD written = 0;
  ::WriteFile(stream, "kept", 4, &written, nullptr);
  ::CloseHandle(stream);
  return written == 4;
}

TEST_F(WriteFile, KeepsAttributesAndStreams) {
  const fs::path path = In("file.txt");
  Put(path, "old");
  constexpr DWORD kAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE;
  ASSERT_NE(::SetFileAttributesW(path.c_str(), kAttributes), 0);
  const bool has_streams = PutStream(path);
  const auto before = StampOf(path);
  const auto files = FilesInFolder();
  EXPECT_EQ(Reason(WriteFileBytes(path, "newer")), "none");
  EXPECT_EQ(Get(path), "newer");
  EXPECT_NE(StampOf(path), before);
  EXPECT_EQ(::GetFileAttributesW(path.c_str()) & kAttributes, kAttributes);
  if (has_streams) {
    EXPECT_EQ(Get(path.native() + L":note"), "kept");
  }
  EXPECT_EQ(FilesInFolder(), files);
}

TEST_F(WriteFile, TakesPathsOfAnyLength) {
  fs::path path = In("");
  for (int level = 0; level < 5; ++level) {
    path /= std::wstring(60, L'd') + L"ä三";
    ASSERT_NE(::CreateDirectoryW((LR"(\\?\)" + fs::path(path).make_preferred().native()).c_str(), nullptr), 0);
  }
  path /= L"file.txt";
  for (const char* bytes : {"made", "replaced"}) {
    EXPECT_EQ(Reason(WriteFileBytes(path, bytes)), "none");
    EXPECT_EQ(Get(path), bytes);
  }
  class KeepsTheOldFile : public FileSteps {
    std::error_code Replace(const fs::path& from, const fs::path& /*to*/) override {
      temporary = from;
      return std::make_error_code(std::errc::io_error);
    }

   public:
    fs::path temporary;
  } steps;
  const auto failure = WriteFileParts(
      path, [](const PartSink& put) { return put("lost"); }, steps);
  EXPECT_TRUE(failure && !failure->file_damaged);
  EXPECT_EQ(Get(path), "replaced");
  EXPECT_FALSE(StampOf(steps.temporary));
}

TEST_F(WriteFile, AFileThatOthersHoldMayBeWrittenInPlace) {
  const fs::path path = In("held");
  Put(path, "old");
  const HANDLE held =
      ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  const auto failure = WriteFileBytes(path, "new");
  EXPECT_TRUE(failure && failure->folder_refused && !failure->file_damaged) << Reason(failure);
  FileSteps steps;
  EXPECT_EQ(Reason(WriteFileInPlace(path, "new", "old", steps)), "none");
  ::CloseHandle(held);
  EXPECT_EQ(Get(path), "new");
}

TEST_F(WriteFile, SaysWhyNot) {
  Put(In("read-only"), "old");
  ::SetFileAttributesW(In("read-only").c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(Reason(WriteFileBytes(In("read-only"), "new")), "The file is read-only");
  EXPECT_EQ(Get(In("read-only")), "old");
  ::SetFileAttributesW(In("read-only").c_str(), FILE_ATTRIBUTE_NORMAL);

  EXPECT_EQ(Reason(WriteFileBytes(In(""), "new")), "Is a directory");
  EXPECT_EQ(Get(In("")), "failed: Is a directory");
  for (const wchar_t* device : {L"NUL", L"CON", LR"(\\.\NUL)"}) EXPECT_EQ(Get(device), "failed: Not a regular file");

  Put(In("taken"), "old");
  const HANDLE alone = ::CreateFileW(In("taken").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(alone, INVALID_HANDLE_VALUE);
  const std::string reason = Reason(WriteFileBytes(In("taken"), "new"));
  EXPECT_EQ(Get(In("taken")), "failed: " + reason);
  EXPECT_TRUE(reason.size() > 10 && reason.find_first_of("\r\n") == std::string::npos && !reason.ends_with('.'))
      << reason;
  ::CloseHandle(alone);
  EXPECT_EQ(Get(In("taken")), "old");
  EXPECT_EQ(FilesInFolder(), 2);
}

TEST(CodePageTable, GivesAnyBytesBack) {
  for (const unsigned page : {874U, 932U, 936U, 949U, 950U, 1250U, 1253U, 1255U, 1258U}) {
    SCOPED_TRACE(page);
    const CodePageTable table(page);
    std::string bytes;
    for (int first = 0x80; first < 256; ++first)
      for (int second = 0; second < 256; ++second)
        bytes.append({static_cast<char>(first), static_cast<char>(second), '\n'});
    EXPECT_EQ(table.FromUtf8(table.ToUtf8(bytes)), bytes);
  }
  const CodePageTable greek(1253), japanese(932);
  EXPECT_EQ(greek.ToUtf8("\xE1\xFF"), "\u03B1\u00FF");
  EXPECT_EQ(greek.FromUtf8("\u0391\u00C4"), std::nullopt) << "no best fit";
  EXPECT_EQ(japanese.ToUtf8("\x83\x65\\\xB1"), "\u30C6\\\uFF71");
  const std::string stray = japanese.ToUtf8("\x83\n");
  EXPECT_EQ(japanese.FromUtf8(stray), "\x83\n");
  EXPECT_EQ(japanese.FromUtf8(stray.substr(0, 4) + 'e'), std::nullopt) << "would be read as another character";
}

}  // namespace
}  // namespace tme
