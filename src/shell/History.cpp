#include "shell/History.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QUuid>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr auto kOnlyTheUser = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
const QString kVersions = QStringLiteral("versions");
const QString kAside = QStringLiteral("aside");
const QString kBlobs = QStringLiteral("blobs");
const QString kEnding = QStringLiteral(".json");

constexpr std::array kReasonNames{"before-save", "not-saved", "before-restore", "rescued"};

std::filesystem::path PathOf(const QString& path) { return path.toStdU16String(); }

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
  if (ReadFileBytes(PathOf(file.filePath()), bytes)) return std::nullopt;
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

/// In the order of their names.
QList<Record> ReadRecords(const QString& folder, const QString& mark = {}) {
  QList<Record> records;
  for (const QFileInfo& file :
       QDir(folder).entryInfoList({u'*' + mark + kEnding}, QDir::Files | QDir::Hidden, QDir::Name))
    if (std::optional<Record> record = ReadRecord(file)) records.append(std::move(*record));
  return records;
}

std::optional<FileFailure> WriteRecord(const QString& folder, const Record& record) {
  if (const auto failure = MakeFolder(folder)) return failure;
  return WriteFileBytes(PathOf(folder + u'/' + record.id + kEnding), ToBytes(record));
}

QByteArray DigestOf(std::string_view content) {
  QCryptographicHash hash(QCryptographicHash::Blake2b_256);
  hash.addData(QByteArrayView(content.data(), static_cast<qsizetype>(content.size())));
  return hash.result().toHex();
}

}  // namespace

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
  return claim_.isLocked() || !QFileInfo(folder_).isDir() || claim_.tryLock();
}

QString History::NewId() {
  return IdAt(QDateTime::currentMSecsSinceEpoch()) + QUuid::createUuid().toString(QUuid::Id128).left(8);
}

QString History::NextVersionId(const ContentOrigin& origin) const {
  qint64 ms = QDateTime::currentMSecsSinceEpoch();
  const QStringList names = QDir(folder_ + u'/' + kVersions).entryList({u'*' + kEnding}, QDir::Files, QDir::Name);
  if (!names.isEmpty()) ms = std::max(ms, MsOfId(names.last()) + 1);
  return IdAt(ms) + OriginMark(origin);
}

QString History::BlobPath(const QByteArray& digest) const {
  return folder_ + u'/' + kBlobs + u'/' + QString::fromLatin1(digest.left(2)) + u'/' + QString::fromLatin1(digest);
}

std::optional<FileFailure> History::Store(std::string_view content, QByteArray& digest) {
  digest = DigestOf(content);
  const QString path = BlobPath(digest);
  // One that was damaged is written anew.
  if (std::string there; QFileInfo::exists(path) && !ReadFileBytes(PathOf(path), there) && there == content)
    return std::nullopt;
  if (const auto failure = MakeFolder(folder_)) return failure;
  Claim();
  if (const auto failure = MakeFolder(QFileInfo(path).path())) return failure;
  return WriteFileBytes(PathOf(path), content);
}

std::optional<FileFailure> History::Keep(const ContentOrigin& origin, KeptReason reason, std::string_view content,
                                         const QDateTime& time) {
  const std::scoped_lock lock(mutex_);
  Record record{NextVersionId(origin), time, reason, origin, {}, static_cast<qint64>(content.size())};
  if (const auto failure = Store(content, record.digest)) return failure;
  const QList<Record> kept = ReadRecords(folder_ + u'/' + kVersions, OriginMark(origin));
  const auto same = std::find_if(kept.crbegin(), kept.crend(),
                                 [&](const Record& version) { return SameOrigin(version.origin, origin); });
  if (same != kept.crend() && same->digest == record.digest) return std::nullopt;
  return WriteRecord(folder_ + u'/' + kVersions, record);
}

std::optional<FileFailure> History::KeepFile(const ContentOrigin& origin, KeptReason reason) {
  if (!StampOf(PathOf(origin.path))) return std::nullopt;
  std::string bytes;
  if (auto failure = ReadFileBytes(PathOf(origin.path), bytes)) return failure;
  return Keep(origin, reason, bytes);
}

QList<KeptVersion> History::Versions(const std::optional<QString>& path) const {
  const std::scoped_lock lock(mutex_);
  QList<KeptVersion> versions;
  for (const Record& record :
       ReadRecords(folder_ + u'/' + kVersions, path ? OriginMark({DocumentKind::Txt, *path, {}}) : QString()))
    if (!path || record.origin.path == *path)
      versions.prepend({record.id, record.time, record.reason, record.origin, record.digest, record.bytes});
  return versions;
}

std::optional<std::string> History::Content(const QByteArray& digest) const {
  const std::scoped_lock lock(mutex_);
  std::string content;
  if (ReadFileBytes(PathOf(BlobPath(digest)), content) || DigestOf(content) != digest) return std::nullopt;
  return content;
}

std::optional<FileFailure> History::PutAside(const QString& id, const ContentOrigin& origin, std::string_view content,
                                             const QDateTime& time) {
  const std::scoped_lock lock(mutex_);
  Record record{id, time, KeptReason::Rescued, origin, {}, static_cast<qint64>(content.size())};
  if (const auto failure = Store(content, record.digest)) return failure;
  const QString path = folder_ + u'/' + kAside + u'/' + id + kEnding;
  const std::optional<Record> before = ReadRecord(QFileInfo(path));
  const auto failure = WriteRecord(folder_ + u'/' + kAside, record);
  // A long session would otherwise leave a content for each of its snapshots.
  if (!failure && before && before->digest != record.digest) Prune();
  return failure;
}

void History::ForgetAside(const QString& id) {
  const std::scoped_lock lock(mutex_);
  QFile::remove(folder_ + u'/' + kAside + u'/' + id + kEnding);
}

QList<AsideContent> History::Aside() const {
  const std::scoped_lock lock(mutex_);
  QList<AsideContent> aside;
  for (const Record& record : ReadRecords(folder_ + u'/' + kAside))
    aside.append({record.id, record.time, record.origin, record.digest, record.bytes});
  return aside;
}

void History::Prune(const QDateTime& now) {
  const std::scoped_lock lock(mutex_);
  if (!Claim()) return;
  for (const QString& folder : {kVersions, kAside})
    for (const QFileInfo& torn : QDir(folder_ + u'/' + folder).entryInfoList({u".tme-*"_s}, QDir::Files | QDir::Hidden))
      QFile::remove(torn.filePath());
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
  const QDir blobs(folder_ + u'/' + kBlobs);
  for (const QFileInfo& group : blobs.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
    for (const QFileInfo& blob : QDir(group.filePath()).entryInfoList(QDir::Files | QDir::Hidden))
      if (!named.contains(blob.fileName().toLatin1())) QFile::remove(blob.filePath());
}

}  // namespace tme
