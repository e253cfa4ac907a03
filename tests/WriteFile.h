#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <fstream>
#include <iterator>
#include <string>

#include "files/FileBytes.h"
#include "files/FileFailure.h"
#include "system/FilePath.h"

namespace tme {

namespace fs = std::filesystem;

/// Files in a folder of the test's own.
class WriteFile : public testing::Test {
 protected:
  fs::path In(const std::string& name) const { return FilePath(folder_.path()) / name; }
  static void Put(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }
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

}  // namespace tme
