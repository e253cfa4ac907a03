#include "history/RecordFolder.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <array>

using namespace Qt::StringLiterals;

namespace tme {
namespace {

const QString kFileEnding = QStringLiteral(".json");
const QString kTimeForm = QStringLiteral("yyyyMMdd'T'HHmmsszzz");
/// Only in records of what was held whole.
constexpr QLatin1StringView kHolding = "holding"_L1, kWhole = "whole"_L1;
/// In the order of KeptReason.
constexpr std::array kReasonNames{"before-save", "not-saved", "before-restore", "rescued"};

}  // namespace

QString RecordFolder::IdPrefix(qint64 ms_since_epoch) {
  return QDateTime::fromMSecsSinceEpoch(ms_since_epoch, Qt::UTC).toString(kTimeForm) + u'-';
}

qint64 RecordFolder::MsOf(const QString& id) {
  QDateTime time = QDateTime::fromString(id.section(u'-', 0, 0), kTimeForm);
  time.setTimeSpec(Qt::UTC);
  return time.isValid() ? time.toMSecsSinceEpoch() : 0;
}

QString RecordFolder::FileOf(const QString& id) const { return name_ + u'/' + id + kFileEnding; }

QStringList RecordFolder::Ids(const QString& ending) const {
  QStringList ids;
  for (const QString& name : QDir(folder_.PathOf(name_)).entryList(QDir::Files | QDir::Hidden, QDir::Name))
    if (name.endsWith(ending + kFileEnding)) ids.append(name.chopped(kFileEnding.size()));
  return ids;
}

QList<KeptVersion> RecordFolder::ReadAll(const QString& ending, const std::stop_token& stop) const {
  QList<KeptVersion> records;
  for (const QString& id : Ids(ending)) {
    if (stop.stop_requested()) break;
    if (std::optional<KeptVersion> record = Read(id)) records.append(std::move(*record));
  }
  return records;
}

std::string RecordFolder::Bytes(const KeptVersion& record) {
  QJsonObject object;
  object["time"_L1] = record.time.toString(Qt::ISODateWithMs);
  object["reason"_L1] = QLatin1StringView(kReasonNames[static_cast<std::size_t>(record.reason)]);
  object["kind"_L1] = QLatin1StringView(NameOf(record.origin.kind));
  object["path"_L1] = record.origin.path;
  object["title"_L1] = record.origin.title;
  if (record.origin.holding == Holding::Whole) object[kHolding] = kWhole;
  object["digest"_L1] = QString::fromLatin1(record.digest);
  object["bytes"_L1] = record.bytes;
  return QJsonDocument(object).toJson().toStdString();
}

std::optional<KeptVersion> RecordFolder::Read(const QString& id) const {
  const std::optional<std::string> bytes = folder_.Read(FileOf(id));
  if (!bytes) return std::nullopt;
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(*bytes)).object();
  KeptVersion record;
  record.id = id;
  record.time = QDateTime::fromString(object["time"_L1].toString(), Qt::ISODateWithMs);
  record.digest = object["digest"_L1].toString().toLatin1();
  record.bytes = object["bytes"_L1].toInteger();
  record.origin.path = object["path"_L1].toString();
  record.origin.title = object["title"_L1].toString();
  if (object[kHolding].toString() == kWhole) record.origin.holding = Holding::Whole;
  const QString reason = object["reason"_L1].toString(), kind = object["kind"_L1].toString();
  for (std::size_t index = 0; index < kReasonNames.size(); ++index)
    if (reason == QLatin1StringView(kReasonNames[index])) record.reason = static_cast<KeptReason>(index);
  for (const DocumentKind known : kKinds)
    if (kind == QLatin1StringView(NameOf(known))) record.origin.kind = known;
  const bool is_digest = record.digest.size() > 2 && QByteArray::fromHex(record.digest).toHex() == record.digest;
  if (!is_digest || !record.time.isValid()) return std::nullopt;
  return record;
}

}  // namespace tme
