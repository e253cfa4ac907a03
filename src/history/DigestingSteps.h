#pragma once

#include <QByteArray>
#include <QCryptographicHash>

#include "files/FileSteps.h"
#include "history/ContentStore.h"

namespace tme {

/// The file layer of one save, which also learns what bytes the file got.
class DigestingSteps : public FileSteps {
 public:
  explicit DigestingSteps(FileSteps& steps) : steps_(steps) {}

  /// Of all that was written since a file was opened, as ContentStore::DigestOf.
  QByteArray Digest() const { return hash_.result().toHex(); }

  std::error_code OpenExisting(const std::filesystem::path& path, FileHandle& handle) override {
    hash_.reset();
    return steps_.OpenExisting(path, handle);
  }
  std::error_code OpenTemporary(const std::filesystem::path& path, unsigned mode, FileHandle& handle) override {
    hash_.reset();
    return steps_.OpenTemporary(path, mode, handle);
  }
  std::error_code Write(FileHandle handle, const char* data, std::size_t size, std::size_t& written) override {
    const std::error_code error = steps_.Write(handle, data, size, written);
    if (!error) hash_.addData(QByteArrayView(data, static_cast<qsizetype>(written)));
    return error;
  }
  std::error_code Truncate(FileHandle handle, std::size_t size) override { return steps_.Truncate(handle, size); }
  std::error_code Flush(FileHandle handle) override { return steps_.Flush(handle); }
  std::error_code Close(FileHandle handle) override { return steps_.Close(handle); }
  std::error_code Replace(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return steps_.Replace(from, to);
  }
  std::error_code FlushFolder(const std::filesystem::path& folder) override { return steps_.FlushFolder(folder); }
  void Remove(const std::filesystem::path& path) override { steps_.Remove(path); }

 private:
  FileSteps& steps_;
  QCryptographicHash hash_{ContentStore::kDigest};
};

}  // namespace tme
