#include "shell/DocumentFile.h"

#include <QFileInfo>
#include <utility>

#include "files/FileBytes.h"
#include "files/TemporaryFile.h"
#include "history/DigestingSteps.h"
#include "system/FilePath.h"

namespace tme {

void DocumentFile::BecomeNew(const QString& title) {
  state_ = {};
  state_.title = title;
}

void DocumentFile::BecomeFileAt(const QString& path, Recent recent) {
  state_ = {};
  state_.recent = recent;
  MoveTo(path);
}

void DocumentFile::BecomeKept(const ContentOrigin& origin) {
  state_ = {};
  state_.path = origin.path;
  state_.holding = origin.holding;
  state_.title = origin.title;
  if (!origin.path.isEmpty()) state_.stamp = StampOf(FilePath(origin.path));
}

void DocumentFile::MoveTo(const QString& path) {
  state_.path = path;
  state_.title = QFileInfo(path).fileName();
}

void DocumentFile::ForgetPath() {
  state_.path.clear();
  state_.stamp.reset();
}

std::optional<FileFailure> DocumentFile::Read(std::string& bytes) {
  const std::filesystem::path file = FilePath(Path());
  std::optional<FileStamp> stamp = StampOf(file);  // before: a write in between must count as a change
  if (std::optional<FileFailure> failure = ReadFileBytes(file, bytes)) return failure;
  state_.stamp = std::move(stamp);
  state_.is_being_read = true;
  return std::nullopt;
}

void DocumentFile::MarkUnmodified(std::uint64_t revision) {
  state_.file_revision = revision;
  state_.is_being_read = false;
}

DocumentFile::DiskChange DocumentFile::CheckDisk() {
  if (!state_.stamp || Path().isEmpty()) return DiskChange::None;
  const std::filesystem::path file = FilePath(Path());
  const std::optional<FileStamp> now = StampOf(file);
  if (!now && !IsAbsent(file)) return DiskChange::None;  // a check that failed says nothing
  if (now == state_.stamp || (state_.told_stamp && *state_.told_stamp == now)) return DiskChange::None;
  state_.told_stamp = now;
  return now ? DiskChange::Changed : DiskChange::Gone;
}

bool DocumentFile::IsOnDisk(const TextFormat& format, const PartProducer& produce) {
  const std::filesystem::path file = FilePath(Path());
  const std::optional<FileStamp> stamp = StampOf(file);  // before: a write in between must count as a change
  if (Path().isEmpty() || !TextFileHolds(file, format, produce)) return false;
  state_.stamp = stamp;
  return true;
}

DocumentFile::Target DocumentFile::KeepReplaced(const QString& path) {
  const std::filesystem::path file = FilePath(path);
  Target target{path};
  std::string bytes;
  if (auto failure = ReadFileBytes(file, bytes)) {
    if (!IsAbsent(file)) target.not_kept = std::move(failure);
    return target;
  }
  const bool is_own = path == Path();
  const bool was_written = is_own && !state_.own_digest.isEmpty();
  // Not the stamp: a change in the same step of the file system's clock, or one that puts the time back, has the same.
  if (was_written && ContentStore::DigestOf(bytes) == state_.own_digest) return target;
  target.is_foreign = was_written || (is_own && state_.stamp && StampOf(file) != state_.stamp);
  target.not_kept = history_.versions.Keep(OriginAt(path), KeptReason::BeforeSave, bytes);
  return target;
}

bool DocumentFile::IsAsRead(const QString& path) const {
  const bool was_read = path == Path() && state_.own_digest.isEmpty() && state_.stamp;
  return was_read && StampOf(FilePath(path)) == state_.stamp;
}

DocumentFile::Written DocumentFile::Write(const Target& target, TextFormat* format, const PartProducer& produce,
                                          FileSteps& steps) {
  const std::filesystem::path file = FilePath(target.path);
  Written written;
  written.made_anew = target.path == Path() && state_.stamp && IsAbsent(file);
  DigestingSteps digesting(steps);
  written.failure =
      format ? WriteTextFile(file, *format, produce, digesting) : WriteFileParts(file, produce, digesting);
  if (written.failure && written.failure->folder_refused && !IsAbsent(file))
    written.failure = WriteInPlace(target, format, produce, digesting);
  if (written.failure) return written;
  std::error_code error;
  RemoveLeftTemporaries(std::filesystem::weakly_canonical(file, error).parent_path());
  state_.stamp = StampOf(file);
  state_.own_digest = digesting.Digest();
  written.left_out = std::exchange(state_.left_out, QString()).value_or(QString());
  return written;
}

std::optional<FileFailure> DocumentFile::WriteInPlace(const Target& target, TextFormat* format,
                                                      const PartProducer& produce, FileSteps& steps) const {
  TextFormat written = format ? *format : TextFormat();
  const auto unkept = target.may_be_lost ? FileReplacer::Unkept::Accepted : FileReplacer::Unkept::Refused;
  auto failure =
      history_.files.Overwrite(OriginAt(target.path), BytesOf(format ? &written : nullptr, produce), steps, unkept);
  if (!failure && format) *format = written;
  return failure;
}

std::string DocumentFile::BytesOf(TextFormat* format, const PartProducer& produce) {
  std::string text;
  produce([&text](std::string_view part) {
    text.append(part);
    return true;
  });
  return format ? EncodeText(std::move(text), *format) : text;
}

bool DocumentFile::Keep(std::string_view content) const {
  return !history_.versions.Keep(Origin(), KeptReason::NotSaved, content);
}

ContentOrigin DocumentFile::OriginAt(const QString& path) const {
  return {kind_, path, QFileInfo(path).fileName(), HeldAs()};
}

}  // namespace tme
