#include "history/FileReplacer.h"

#include "files/FileBytes.h"
#include "files/FileStamp.h"
#include "files/FileSteps.h"
#include "system/FilePath.h"

namespace tme {

FileFailure FileReplacer::NotKeptFirst(FileFailure failure) {
  failure.reason = tr("What the file holds could not be kept in the history first: %1")
                       .arg(QString::fromStdString(failure.reason))
                       .toStdString();
  return failure;
}

std::optional<FileFailure> FileReplacer::KeepFile(const ContentOrigin& origin, KeptReason reason) {
  std::string bytes;
  if (auto failure = ReadFileBytes(FilePath(origin.path), bytes))
    return IsAbsent(FilePath(origin.path)) ? std::nullopt : failure;
  return versions_.Keep(origin, reason, bytes);
}

std::optional<FileFailure> FileReplacer::Overwrite(const ContentOrigin& origin, std::string_view bytes,
                                                   FileSteps& steps, Unkept unkept) {
  const std::filesystem::path file = FilePath(origin.path);
  std::string old_bytes;
  if (auto failure = ReadFileBytes(file, old_bytes)) return failure;
  if (auto failure = versions_.Keep(origin, KeptReason::BeforeSave, old_bytes); failure && unkept == Unkept::Refused)
    return NotKeptFirst(std::move(*failure));
  return WriteFileInPlace(file, bytes, old_bytes, steps);
}

std::optional<FileFailure> FileReplacer::Replace(const ContentOrigin& origin, std::string_view bytes) {
  if (auto failure = KeepFile(origin)) return NotKeptFirst(std::move(*failure));
  auto failure = WriteFileBytes(FilePath(origin.path), bytes);
  FileSteps steps;
  if (failure && failure->folder_refused && !IsAbsent(FilePath(origin.path))) failure = Overwrite(origin, bytes, steps);
  return failure;
}

}  // namespace tme
