#include "shell/History.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>
#include <algorithm>
#include <array>

#include "platform/FilePath.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr auto kOnlyTheUser = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
const QString kVersions = QStringLiteral("versions");
const QString kAside = QStringLiteral("aside");
const QString kBlobs = QStringLiteral("blobs");
const QString kEnding = QStringLiteral(".json");

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

/// End of the ids of an origin's versions, so that they are found without reading the others.
QString OriginMark(const ContentOrigin& origin) {
  const QString text = origin.path.isEmpty() ? u'\n' + origin.title : origin.path;
  return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Blake2b_160).toHex().left(12));
}

std::optional<FileFailure> MakeFolder(const QString& path) {
  // Of two threads that make the folders on one way, one would fail at a folder that the other has just made.
  static std::mutex one_at_a_time;
  const std::scoped_lock lock(one_at_a_time);
  if (QFileInfo(path).isDir()) return std::nullopt;
  if (!QDir().mkpath(path)) return FileFailure{"The folder " + path.toStdString() + " cannot be made"};
  QFile::setPermissions(path, kOnlyTheUser);
  return std::nullopt;
}

/// One small file that names a content.
struct Record {
  QString id;
  QDateTime time;
  KeptReason reason = KeptReason::BeforeSave;
  ContentOrigin origin;
  QByteArray digest;
  qint64 bytes = 0;
};

std::string ToBytes(const Record& record) {
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

std::optional<Record> ReadRecord(const QFileInfo& file) {
  std::string bytes;
  if (ReadFileBytes(FilePath(file.filePath()), bytes)) return std::nullopt;
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(bytes)).object();
  Record record;
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

QList<Record> ReadRecords(const QString& folder, const QString& mark = {}) {
  QList<Record> records;
  for (const QFileInfo& file : RecordFiles(folder, mark))
    if (std::optional<Record> record = ReadRecord(file)) records.append(std::move(*record));
  return records;
}

std::optional<Record> NewestRecord(const QString& folder, const ContentOrigin& origin) {
  const QFileInfoList files = RecordFiles(folder, OriginMark(origin));
  for (auto file = files.crbegin(); file != files.crend(); ++file)
    if (std::optional<Record> record = ReadRecord(*file); record && SameOrigin(record->origin, origin)) return record;
  return std::nullopt;
}

std::optional<FileFailure> WriteRecord(const QString& folder, const Record& record) {
  if (const auto failure = MakeFolder(folder)) return failure;
  return WriteFileBytes(FilePath(folder + u'/' + record.id + kEnding), ToBytes(record));
}

bool IsSettled(const QString& path, const QDateTime& settled) { return QFileInfo(path).lastModified() < settled; }

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
  if (claim_.isLocked() || !QFileInfo(folder_).isDir() || claim_.tryLock()) return true;
  // A machine that stopped may leave a claim without a word in it, which never grows stale. The file cannot be taken
  // from a process that lives: the system's own lock is on it.
  return claim_.removeStaleLockFile() && claim_.tryLock();
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

std::optional<FileFailure> History::Store(std::string_view content, const QByteArray& digest) {
  const QString path = BlobPath(digest);
  // One that was damaged is written anew.
  if (std::string there; QFileInfo::exists(path) && !ReadFileBytes(FilePath(path), there) && there == content) {
    // As young as a new one, lest Prune take it before it is named.
    const std::scoped_lock lock(mutex_);
    QFile blob(path);
    if (blob.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) &&
        blob.setFileTime(QDateTime::currentDateTimeUtc(), QFileDevice::FileModificationTime))
      return std::nullopt;
  }
  if (const auto failure = MakeFolder(folder_)) return failure;
  Claim();
  if (const auto failure = MakeFolder(QFileInfo(path).path())) return failure;
  return WriteFileBytes(FilePath(path), content);
}

std::optional<FileFailure> History::Keep(const ContentOrigin& origin, KeptReason reason, std::string_view content,
                                         const QDateTime& time) {
  Record record{{}, time, reason, origin, DigestOf(content), static_cast<qint64>(content.size())};
  {
    const std::scoped_lock lock(mutex_);
    kept_.insert(record.digest);
  }
  if (const auto failure = Store(content, record.digest)) return failure;
  const QString folder = folder_ + u'/' + kVersions;
  const std::optional<Record> newest = NewestRecord(folder, origin);
  const bool is_there = newest && newest->digest == record.digest;
  // An old one could soon go for its age; it becomes the newest again.
  if (is_there && newest->time.daysTo(time) < 1) return std::nullopt;
  record.id = NextVersionId(origin);
  const auto failure = WriteRecord(folder, record);
  if (!failure && is_there) QFile::remove(folder + u'/' + newest->id + kEnding);
  return failure;
}

std::optional<FileFailure> History::KeepFile(const ContentOrigin& origin, KeptReason reason) {
  if (!StampOf(FilePath(origin.path))) return std::nullopt;
  std::string bytes;
  if (auto failure = ReadFileBytes(FilePath(origin.path), bytes)) return failure;
  return Keep(origin, reason, bytes);
}

QList<KeptVersion> History::Versions(const std::optional<QString>& path) const {
  QList<KeptVersion> versions;
  for (const Record& record :
       ReadRecords(folder_ + u'/' + kVersions, path ? OriginMark({DocumentKind::Txt, *path, {}}) : QString()))
    if (!path || record.origin.path == *path)
      versions.prepend({record.id, record.time, record.reason, record.origin, record.digest, record.bytes});
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
  const Record record{id, time, KeptReason::Rescued, origin, DigestOf(content), static_cast<qint64>(content.size())};
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

QList<AsideContent> History::Aside() const {
  QList<AsideContent> aside;
  for (const Record& record : ReadRecords(folder_ + u'/' + kAside))
    aside.append({record.id, record.time, record.origin, record.digest, record.bytes});
  return aside;
}

void History::Prune(const QDateTime& now) {
  if (!Claim()) return;
  const QDateTime settled = now.addSecs(-kSettledSeconds);
  for (const QString& folder : {kVersions, kAside})
    for (const QFileInfo& torn : QDir(folder_ + u'/' + folder).entryInfoList(QDir::Files | QDir::Hidden))
      if (torn.fileName().startsWith(u".tme-") && IsSettled(torn.filePath(), settled)) QFile::remove(torn.filePath());
  QSet<QByteArray> named;
  for (const Record& record : ReadRecords(folder_ + u'/' + kAside)) named.insert(record.digest);
  QHash<QString, int> of_file;
  qint64 total = 0;
  const QList<KeptVersion> versions = Versions();
  const QString newest = versions.isEmpty() ? QString() : versions.first().id;
  for (const KeptVersion& version : versions) {
    const QString file = version.origin.path.isEmpty() ? u'\n' + version.origin.title : version.origin.path;
    if (!named.contains(version.digest)) total += version.bytes;
    const bool within = ++of_file[file] <= limits_.versions_per_file && version.time.daysTo(now) <= limits_.days &&
                        total <= limits_.total_bytes;
    // The newest stays, however large: it was kept for a reason a moment ago.
    const bool stays = within || version.id == newest;
    if (stays)
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
