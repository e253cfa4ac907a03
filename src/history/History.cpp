#include "history/History.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>
#include <algorithm>
#include <array>

#include "files/SystemFile.h"
#include "system/FilePath.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

const QString kVersions = QStringLiteral("versions");
const QString kAside = QStringLiteral("aside");
const QString kBlobs = QStringLiteral("blobs");
/// Names what is being opened again, and how often that was begun.
const QString kReopening = QStringLiteral("/reopening");
const QString kEnding = QStringLiteral(".json");

/// So many of the newest versions of a file never go for their age.
constexpr int kAlwaysYoung = 5;

/// What nothing names yet may be on its way: only what is older goes.
constexpr qint64 kSettledSeconds = 3600;

constexpr std::array kReasonNames{"before-save", "not-saved", "before-restore", "rescued"};

/// What makes two contents versions of one thing.
bool SameOrigin(const ContentOrigin& a, const ContentOrigin& b) {
  return a.kind == b.kind && a.path == b.path && (!a.path.isEmpty() || a.title == b.title);
}

const QString kTimeForm = QStringLiteral("yyyyMMdd'T'HHmmsszzz");

QString IdAt(qint64 ms) { return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(kTimeForm) + u'-'; }

/// 0 for a name that is no id.
qint64 MsOfId(const QString& id) {
  QDateTime time = QDateTime::fromString(id.section(u'-', 0, 0), kTimeForm);
  time.setTimeSpec(Qt::UTC);
  return time.isValid() ? time.toMSecsSinceEpoch() : 0;
}

/// No path begins with a line break.
QString OriginKey(const ContentOrigin& origin) { return origin.path.isEmpty() ? u'\n' + origin.title : origin.path; }

/// End of the ids of an origin's versions, so that they are found without reading the others.
QString OriginMark(const ContentOrigin& origin) {
  const QByteArray text = OriginKey(origin).toUtf8();
  return QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Blake2b_160).toHex().left(12));
}

std::optional<FileFailure> MakeFolder(const QString& path) {
  // Of two threads that make the folders on one way, one would fail at a folder that the other has just made.
  static std::mutex one_at_a_time;
  const std::scoped_lock lock(one_at_a_time);
  const std::filesystem::path folder = FilePath(path);
  if (std::error_code error; !QFileInfo(path).isDir() && (std::filesystem::create_directories(folder, error), error))
    return FileFailure{"The folder " + path.toStdString() + " cannot be made: " + system_file::Failure(error).reason};
  MakePrivate(folder);
  return std::nullopt;
}

/// The small file that names a content.
std::string ToBytes(const KeptVersion& record) {
  QJsonObject object;
  object["time"_L1] = record.time.toString(Qt::ISODateWithMs);
  object["reason"_L1] = QLatin1StringView(kReasonNames[static_cast<std::size_t>(record.reason)]);
  object["kind"_L1] = QLatin1StringView(TraitsOf(record.origin.kind).name);
  object["path"_L1] = record.origin.path;
  object["title"_L1] = record.origin.title;
  object["digest"_L1] = QString::fromLatin1(record.digest);
  object["bytes"_L1] = record.bytes;
  return QJsonDocument(object).toJson().toStdString();
}

std::optional<KeptVersion> ReadRecord(const QFileInfo& file) {
  std::string bytes;
  if (ReadFileBytes(FilePath(file.filePath()), bytes)) return std::nullopt;
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(bytes)).object();
  KeptVersion record;
  record.id = file.completeBaseName();
  record.time = QDateTime::fromString(object["time"_L1].toString(), Qt::ISODateWithMs);
  record.digest = object["digest"_L1].toString().toLatin1();
  record.bytes = object["bytes"_L1].toInteger();
  record.origin.path = object["path"_L1].toString();
  record.origin.title = object["title"_L1].toString();
  const QString reason = object["reason"_L1].toString(), kind = object["kind"_L1].toString();
  for (std::size_t index = 0; index < kReasonNames.size(); ++index)
    if (reason == QLatin1StringView(kReasonNames[index])) record.reason = static_cast<KeptReason>(index);
  for (const KindTraits& traits : kKinds)
    if (kind == QLatin1StringView(traits.name)) record.origin.kind = traits.kind;
  const bool is_digest = record.digest.size() > 2 && QByteArray::fromHex(record.digest).toHex() == record.digest;
  if (!is_digest || !record.time.isValid()) return std::nullopt;
  return record;
}

/// In the order of their names. Not by a pattern: the threads here could end in a crash (EnterProcess of Windows).
QFileInfoList RecordFiles(const QString& folder, const QString& mark = {}) {
  QFileInfoList files = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden, QDir::Name);
  files.removeIf([ending = mark + kEnding](const QFileInfo& file) { return !file.fileName().endsWith(ending); });
  return files;
}

QList<KeptVersion> ReadRecords(const QString& folder, const QString& mark = {}) {
  QList<KeptVersion> records;
  for (const QFileInfo& file : RecordFiles(folder, mark))
    if (std::optional<KeptVersion> record = ReadRecord(file)) records.append(std::move(*record));
  return records;
}

std::optional<KeptVersion> NewestRecord(const QString& folder, const ContentOrigin& origin) {
  const QFileInfoList files = RecordFiles(folder, OriginMark(origin));
  for (auto file = files.crbegin(); file != files.crend(); ++file)
    if (std::optional<KeptVersion> record = ReadRecord(*file); record && SameOrigin(record->origin, origin))
      return record;
  return std::nullopt;
}

std::optional<FileFailure> WriteRecord(const QString& folder, const KeptVersion& record) {
  if (const auto failure = MakeFolder(folder)) return failure;
  return WritePrivateFile(FilePath(folder + u'/' + record.id + kEnding), ToBytes(record));
}

FileFailure NotKeptFirst(FileFailure failure) {
  failure.reason = "What the file holds could not be kept in the history first: " + failure.reason;
  return failure;
}

/// An earlier version, or a copy from elsewhere, may have left others more rights.
void MakeAllPrivate(const QString& folder) {
  MakePrivate(FilePath(folder));
  constexpr auto kOthers =
      QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
  constexpr auto kAll = QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot;
  for (QDirIterator entry(folder, kAll, QDirIterator::Subdirectories); entry.hasNext();) {
    entry.next();
    if (entry.fileInfo().permissions().testAnyFlags(kOthers)) MakePrivate(FilePath(entry.filePath()));
  }
}

/// Not of one that is gone: what is written there next is young.
bool IsSettled(const QString& path, const QDateTime& settled) {
  const QDateTime written = QFileInfo(path).lastModified();
  return written.isValid() && written < settled;
}

}  // namespace

QByteArray History::DigestOf(std::string_view content) {
  QCryptographicHash hash(kDigest);
  hash.addData(QByteArrayView(content.data(), static_cast<qsizetype>(content.size())));
  return hash.result().toHex();
}

QString ReasonText(KeptReason reason) {
  switch (reason) {
    case KeptReason::BeforeSave:
      return u"Before a save"_s;
    case KeptReason::NotSaved:
      return u"Closed without saving"_s;
    case KeptReason::BeforeRestore:
      return u"Before a restore"_s;
    case KeptReason::Rescued:
      return u"Rescued after a crash"_s;
  }
  return {};
}

History::History(QString folder, HistoryLimits limits)
    : folder_(std::move(folder)), limits_(limits), claim_(folder_ + u"/in-use"_s) {
  claim_.setStaleLockTime(0);  // only a process that is gone gives it up
}

bool History::Claim() {
  const std::scoped_lock lock(mutex_);
  if (claim_.isLocked() || !QFileInfo(folder_).isDir()) return true;
  MakePrivate(FilePath(folder_));
  // A machine that stopped may leave a claim without a word in it, which never grows stale. The file cannot be taken
  // from a process that lives: the system's own lock is on it.
  const bool is_ours = claim_.tryLock() || (claim_.removeStaleLockFile() && claim_.tryLock());
  if (is_ours) MakePrivate(FilePath(claim_.fileName()));
  return is_ours;
}

QString History::NewId() {
  return IdAt(QDateTime::currentMSecsSinceEpoch()) + QUuid::createUuid().toString(QUuid::Id128).left(8);
}

QString History::NextVersionId(const ContentOrigin& origin) {
  const std::scoped_lock lock(mutex_);
  if (last_version_ms_ == 0) {
    const QFileInfoList files = RecordFiles(folder_ + u'/' + kVersions);
    if (!files.isEmpty()) last_version_ms_ = MsOfId(files.last().completeBaseName());
  }
  last_version_ms_ = std::max(QDateTime::currentMSecsSinceEpoch(), last_version_ms_ + 1);
  return IdAt(last_version_ms_) + OriginMark(origin);
}

QString History::BlobPath(const QByteArray& digest) const {
  return folder_ + u'/' + kBlobs + u'/' + QString::fromLatin1(digest.left(2)) + u'/' + QString::fromLatin1(digest);
}

QString History::AsidePath(const QString& id) const { return folder_ + u'/' + kAside + u'/' + id + kEnding; }

bool History::MakeYoung(const QString& path) {
  const std::scoped_lock lock(mutex_);
  QFile blob(path);
  return blob.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) &&
         blob.setFileTime(QDateTime::currentDateTimeUtc(), QFileDevice::FileModificationTime);
}

std::optional<FileFailure> History::Store(std::string_view content, const QByteArray& digest) {
  const QString path = BlobPath(digest);
  // One that was damaged is written anew.
  if (std::string there; MakeYoung(path) && !ReadFileBytes(FilePath(path), there) && there == content)
    return std::nullopt;
  if (const auto failure = MakeFolder(folder_)) return failure;
  Claim();
  for (const QString& folder : {folder_ + u'/' + kBlobs, QFileInfo(path).path()})
    if (const auto failure = MakeFolder(folder)) return failure;
  return WritePrivateFile(FilePath(path), content);
}

std::optional<FileFailure> History::Keep(const ContentOrigin& origin, KeptReason reason, std::string_view content,
                                         const QDateTime& time) {
  KeptVersion record{{}, time, reason, origin, DigestOf(content), static_cast<qint64>(content.size())};
  {
    const std::scoped_lock lock(mutex_);
    kept_.insert(record.digest);
  }
  if (const auto failure = Store(content, record.digest)) return failure;
  const QString folder = folder_ + u'/' + kVersions;
  const std::optional<KeptVersion> newest = NewestRecord(folder, origin);
  const bool is_there = newest && newest->digest == record.digest;
  // An old one could soon go for its age; it becomes the newest again.
  if (is_there && newest->time.daysTo(time) < 1) return std::nullopt;
  record.id = NextVersionId(origin);
  const auto failure = WriteRecord(folder, record);
  if (!failure && is_there) QFile::remove(folder + u'/' + newest->id + kEnding);
  return failure;
}

std::optional<FileFailure> History::KeepFile(const ContentOrigin& origin, KeptReason reason) {
  std::string bytes;
  if (auto failure = ReadFileBytes(FilePath(origin.path), bytes))
    return IsAbsent(FilePath(origin.path)) ? std::nullopt : failure;
  return Keep(origin, reason, bytes);
}

std::optional<FileFailure> History::Overwrite(const ContentOrigin& origin, std::string_view bytes, FileSteps& steps,
                                              Unkept unkept) {
  const std::filesystem::path file = FilePath(origin.path);
  std::string old_bytes;
  if (auto failure = ReadFileBytes(file, old_bytes)) return failure;
  if (auto failure = Keep(origin, KeptReason::BeforeSave, old_bytes); failure && unkept == Unkept::Refused)
    return NotKeptFirst(std::move(*failure));
  return WriteFileInPlace(file, bytes, old_bytes, steps);
}

std::optional<FileFailure> History::ReplaceFile(const ContentOrigin& origin, std::string_view bytes) {
  if (auto failure = KeepFile(origin)) return NotKeptFirst(std::move(*failure));
  auto failure = WriteFileBytes(FilePath(origin.path), bytes);
  FileSteps steps;
  if (failure && failure->folder_refused && !IsAbsent(FilePath(origin.path))) failure = Overwrite(origin, bytes, steps);
  return failure;
}

QList<KeptVersion> History::Versions(const std::optional<QString>& path) const {
  QList<KeptVersion> versions =
      ReadRecords(folder_ + u'/' + kVersions, path ? OriginMark({DocumentKind::Txt, *path, {}}) : QString());
  if (path) versions.removeIf([&](const KeptVersion& version) { return version.origin.path != *path; });
  std::reverse(versions.begin(), versions.end());
  return versions;
}

std::optional<std::string> History::Content(const QByteArray& digest) const {
  std::string content;
  if (ReadFileBytes(FilePath(BlobPath(digest)), content) || DigestOf(content) != digest) return std::nullopt;
  return content;
}

std::optional<FileFailure> History::PutAside(const QString& id, const ContentOrigin& origin, std::string_view content,
                                             const QDateTime& time) {
  const std::scoped_lock one_at_a_time(aside_mutex_);
  const KeptVersion record{
      id, time, KeptReason::Rescued, origin, DigestOf(content), static_cast<qint64>(content.size())};
  const QByteArray& digest = record.digest;
  bool is_sole = false;
  {
    const std::scoped_lock lock(mutex_);
    if (forgotten_.contains(id)) return std::nullopt;
    is_sole = sole_.value(id) == digest || !QFileInfo::exists(BlobPath(digest));
    sole_.removeIf(
        [&](std::pair<const QString&, QByteArray&> other) { return other.first != id && other.second == digest; });
  }
  auto failure = Store(content, digest);
  if (!failure) failure = WriteRecord(folder_ + u'/' + kAside, record);
  const std::scoped_lock lock(mutex_);
  if (forgotten_.contains(id)) {
    QFile::remove(AsidePath(id));
    if (is_sole) DropUnlessKept(digest);
    return std::nullopt;
  }
  if (failure) return failure;
  const QByteArray before = sole_.take(id);
  if (is_sole) sole_.insert(id, digest);
  if (before != digest) DropUnlessKept(before);
  return std::nullopt;
}

void History::DropUnlessKept(const QByteArray& digest) const {
  if (!digest.isEmpty() && !kept_.contains(digest)) QFile::remove(BlobPath(digest));
}

void History::ForgetAside(const QString& id) {
  const std::scoped_lock lock(mutex_);
  forgotten_.insert(id);
  QFile::remove(AsidePath(id));
  DropUnlessKept(sole_.take(id));
}

int History::BeginReopening(const QString& id) {
  const std::filesystem::path file = FilePath(folder_ + kReopening);
  if (!ended_over_) {
    std::string bytes;
    const bool was_begun = !ReadFileBytes(file, bytes);
    const QString text = was_begun ? QString::fromStdString(bytes) : QString();
    ended_over_ = Reopening{text.section(u' ', 0, 0), text.section(u' ', 1).toInt()};
  }
  const int attempts = ended_over_->id == id ? ended_over_->attempts : 0;
  WritePrivateFile(file, (id + u' ' + QString::number(attempts + 1)).toStdString());
  return attempts;
}

void History::EndReopening() { QFile::remove(folder_ + kReopening); }

QList<KeptVersion> History::Aside() const { return ReadRecords(folder_ + u'/' + kAside); }

void History::Prune(const QDateTime& now) {
  if (!Claim()) return;
  MakeAllPrivate(folder_);
  const QDateTime settled = now.addSecs(-kSettledSeconds);
  for (const QString& folder : {kVersions, kAside})
    for (const QFileInfo& torn : QDir(folder_ + u'/' + folder).entryInfoList(QDir::Files | QDir::Hidden))
      if (torn.fileName().startsWith(u".tme-") && IsSettled(torn.filePath(), settled)) QFile::remove(torn.filePath());
  QSet<QByteArray> named;
  for (const KeptVersion& record : ReadRecords(folder_ + u'/' + kAside)) named.insert(record.digest);
  QHash<QString, int> of_file;
  qint64 total = 0;
  const QList<KeptVersion> versions = Versions();
  const QString newest = versions.isEmpty() ? QString() : versions.first().id;
  QHash<QString, QDateTime> latest_of;
  for (const KeptVersion& version : versions) {
    const qint64 bytes = named.contains(version.digest) ? 0 : version.bytes;
    const QString key = OriginKey(version.origin);
    const int number = ++of_file[key];
    if (number == 1) latest_of.insert(key, version.time);
    // Beside each other, not by the clock, which may be wrong today.
    const bool is_young = number <= kAlwaysYoung || version.time.daysTo(latest_of[key]) <= limits_.days;
    const bool within = number <= limits_.versions_per_file && is_young && total + bytes <= limits_.total_bytes;
    // What goes, for whatever reason, takes no room from what is older.
    if (within) total += bytes;
    // The newest stays, however large: it was kept for a reason a moment ago.
    if (within || version.id == newest)
      named.insert(version.digest);
    else
      QFile::remove(folder_ + u'/' + kVersions + u'/' + version.id + kEnding);
  }
  RemoveUnnamed(named, settled);
}

void History::RemoveUnnamed(const QSet<QByteArray>& named, const QDateTime& settled) {
  const QDir blobs(folder_ + u'/' + kBlobs);
  for (const QFileInfo& group : blobs.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
    for (const QFileInfo& blob : QDir(group.filePath()).entryInfoList(QDir::Files | QDir::Hidden)) {
      if (named.contains(blob.fileName().toLatin1())) continue;
      const std::scoped_lock lock(mutex_);
      if (IsSettled(blob.filePath(), settled)) QFile::remove(blob.filePath());
    }
}

}  // namespace tme
