#include "history/ContentStore.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace tme {
namespace {

const QString kBlobs = QStringLiteral("blobs");

QString BlobName(const QByteArray& digest) {
  return kBlobs + u'/' + QString::fromLatin1(digest.left(2)) + u'/' + QString::fromLatin1(digest);
}

}  // namespace

QByteArray ContentStore::DigestOf(std::string_view content) {
  QCryptographicHash hash(kDigest);
  hash.addData(QByteArrayView(content.data(), static_cast<qsizetype>(content.size())));
  return hash.result().toHex();
}

std::optional<FileFailure> ContentStore::Write(std::string_view content, const QByteArray& digest) {
  const QString name = BlobName(digest);
  if (MakeYoung(name) && folder_.Read(name) == content) return std::nullopt;
  return folder_.Write(name, content);
}

std::optional<std::string> ContentStore::Read(const QByteArray& digest) const {
  std::optional<std::string> content = folder_.Read(BlobName(digest));
  if (!content || DigestOf(*content) != digest) return std::nullopt;
  return content;
}

bool ContentStore::Has(const QByteArray& digest) const { return QFileInfo::exists(folder_.PathOf(BlobName(digest))); }

void ContentStore::Pin(const QByteArray& digest) {
  const std::scoped_lock lock(mutex_);
  pinned_.insert(digest);
}

void ContentStore::Drop(const QByteArray& digest) {
  const std::scoped_lock lock(mutex_);
  if (!digest.isEmpty() && !pinned_.contains(digest)) folder_.Remove(BlobName(digest));
}

void ContentStore::RemoveUnnamed(const QSet<QByteArray>& named, const QDateTime& settled, const std::stop_token& stop) {
  for (const QString& group : QDir(folder_.PathOf(kBlobs)).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    const QString group_name = kBlobs + u'/' + group;
    for (const QString& blob : QDir(folder_.PathOf(group_name)).entryList(QDir::Files | QDir::Hidden)) {
      if (stop.stop_requested()) return;
      if (named.contains(blob.toLatin1())) continue;
      const std::scoped_lock lock(mutex_);
      folder_.RemoveIfSettled(group_name + u'/' + blob, settled);
    }
  }
}

bool ContentStore::MakeYoung(const QString& name) {
  const std::scoped_lock lock(mutex_);
  QFile blob(folder_.PathOf(name));
  return blob.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) &&
         blob.setFileTime(QDateTime::currentDateTimeUtc(), QFileDevice::FileModificationTime);
}

}  // namespace tme
