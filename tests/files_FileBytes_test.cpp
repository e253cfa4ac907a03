#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>

#include "FailingSteps.h"
#include "WriteFile.h"
#include "files/FileSteps.h"
#include "files/TemporaryFile.h"
#include "files/TextEncoding.h"
#include "files/TextFile.h"

namespace tme {
namespace {

TEST_F(WriteFile, FailureAtAnyStepLeavesTheOldBytesAndNothingElse) {
  const fs::path path = In("a.ini");
  for (const bool exists : {true, false}) {
    bool done = false;
    for (int step = 1; !done; ++step) {
      SCOPED_TRACE(step);
      fs::remove(path);
      if (exists) Put(path, "old");
      FailingSteps steps(step, {}, 3);
      const auto failure = WriteFileParts(
          path, [](const PartSink& put) { return put("new ") && put("bytes"); }, steps);
      done = !steps.HasFailed();
      const bool written = done || steps.folder_flush_failed;
      EXPECT_EQ(Reason(failure), written ? "none" : "No space left on device");
      EXPECT_EQ(Get(path), written ? "new bytes" : exists ? "old" : Get(In("missing")));
      EXPECT_EQ(FilesInFolder(), exists || written ? 1 : 0);
      ASSERT_LT(step, 20);
    }
  }
}

TEST_F(WriteFile, OfAnOldFileThatIsGoneTheNewBytesStay) {
  class TakesTheOldFileAway : public FileSteps {
    std::error_code Replace(const fs::path& /*from*/, const fs::path& to) override {
      fs::remove(to);
      return std::make_error_code(std::errc::io_error);
    }
  } steps;
  Put(In("a.ini"), "old");
  const auto failure = WriteFileParts(
      In("a.ini"), [](const PartSink& put) { return put("new"); }, steps);
  ASSERT_TRUE(failure && failure->file_damaged);
  ASSERT_EQ(FilesInFolder(), 1);
  EXPECT_EQ(Get(*fs::directory_iterator(In(""))), "new");
}

TEST_F(WriteFile, WhatAKilledWriteLeftGoesOnceNobodyWritesIt) {
  const fs::path left = In(".tme-0123456789abcdef"), young = In(".tme-0123456789abcde0"), other = In(".tme-kept"),
                 locked = In(".tme-0123456789abcde1");
  for (const fs::path& path : {left, young, other}) Put(path, "x");
  FileSteps steps;
  FileHandle handle = kNoFile;
  ASSERT_FALSE(steps.OpenTemporary(locked, 0600, handle));
  for (const fs::path& path : {left, other, locked})
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::minutes(1));
  RemoveLeftTemporaries(In(""));
  EXPECT_EQ(FilesInFolder(), 3);
  EXPECT_FALSE(fs::exists(left));
  steps.Close(handle);
  RemoveLeftTemporaries(In(""));
  EXPECT_FALSE(fs::exists(locked));
  EXPECT_EQ(FilesInFolder(), 2);
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
      {"[A", "]\n", std::string_view("\0[\0A\0]\0\n", 8), Utf16BeUnmarked, Utf16BeUnmarked},
      {"\u4E2D", "\u6587", "\xFF\xFE\x2D\x4E\x87\x65", Utf16LeUnmarked, Utf16Le},
      {std::string_view("[\0A\0", 4), std::string_view("]\0\n\0", 4), std::string_view("\xEF\xBB\xBF[\0A\0]\0\n\0", 11),
       CodePage, Utf8Bom},
      {"a", "b", std::string_view("\xFE\xFF\0a\0b", 6), Utf16Be, Utf16Be},
  };
  FileSteps steps;
  for (const Row& row : rows) {
    TextFormat format{row.encoding, {}};
    const auto produce = [&row](const PartSink& put) { return put(row.first) && put(row.second); };
    EXPECT_EQ(Reason(WriteTextFile(In("text"), format, produce, steps)), "none");
    EXPECT_EQ(Get(In("text")), row.bytes);
    EXPECT_EQ(format.encoding, row.written);
  }
  TextFormat format;
  const auto give_up = [](const PartSink& put) {
    put("x");
    return false;
  };
  EXPECT_EQ(Reason(WriteTextFile(In("text"), format, give_up, steps)), "The file was not completed");
  EXPECT_EQ(Get(In("text")), std::end(rows)[-1].bytes);
  EXPECT_EQ(FilesInFolder(), 1);
}

}  // namespace
}  // namespace tme
