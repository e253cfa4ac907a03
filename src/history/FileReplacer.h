#pragma once

#include "history/VersionStore.h"

namespace tme {

class FileSteps;

/// Puts bytes in the place of a file's, once the versions have what the file holds.
class FileReplacer {
  Q_DECLARE_TR_FUNCTIONS(FileReplacer)

 public:
  explicit FileReplacer(VersionStore& versions) : versions_(versions) {}

  /// Keeps what the origin's file holds; no file is no failure.
  std::optional<FileFailure> KeepFile(const ContentOrigin& origin, KeptReason reason = KeptReason::BeforeSave);
  /// What becomes of a write whose old bytes cannot be kept.
  enum class Unkept : std::uint8_t {
    Refused,
    Accepted,  ///< the user was asked
  };
  /// Keeps the bytes of the origin's file and writes over them, for a folder that takes no new file. After a failure
  /// the file is as WriteFileInPlace left it.
  std::optional<FileFailure> Overwrite(const ContentOrigin& origin, std::string_view bytes, FileSteps& steps,
                                       Unkept unkept = Unkept::Refused);
  /// Keeps what the origin's file holds and puts these bytes there: whole or not at all, or by Overwrite.
  std::optional<FileFailure> Replace(const ContentOrigin& origin, std::string_view bytes);

 private:
  static FileFailure NotKeptFirst(FileFailure failure);

  VersionStore& versions_;
};

}  // namespace tme
