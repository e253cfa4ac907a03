#pragma once

#include <QByteArray>
#include <QCryptographicHash>

#include "platform/TextFile.h"
#include "shell/History.h"

namespace tme {

/// The file layer of one save, which also learns what bytes the file got.
class DigestingSteps : public FileSteps {
 public:
  explicit DigestingSteps(FileSteps& steps) : steps_(steps) {}

  /// Of all that was written since a file was opened, as History::DigestOf.
  QByteArray Digest() const { return hash_.result().toHex(); }

  int OpenExisting(const std::filesystem::path& path, int& handle) override {
    hash_.reset();
    return steps_.OpenExisting(path, handle);
  }
  int OpenTemporary(const std::filesystem::path& path, unsigned mode, int& handle) override {
    hash_.reset();
    return steps_.OpenTemporary(path, mode, handle);
  }
  long Write(int handle, const char* data, std::size_t size, int& error) override {
    const long count = steps_.Write(handle, data, size, error);
    if (count > 0) hash_.addData(QByteArrayView(data, static_cast<qsizetype>(count)));
    return count;
  }
  int Truncate(int handle, std::size_t size) override { return steps_.Truncate(handle, size); }
  int Flush(int handle) override { return steps_.Flush(handle); }
  int Close(int handle) override { return steps_.Close(handle); }
  int Replace(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return steps_.Replace(from, to);
  }
  int FlushFolder(const std::filesystem::path& folder) override { return steps_.FlushFolder(folder); }
  void Remove(const std::filesystem::path& path) override { steps_.Remove(path); }

 private:
  FileSteps& steps_;
  QCryptographicHash hash_{History::kDigest};
};

}  // namespace tme
