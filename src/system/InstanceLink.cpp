#include "system/InstanceLink.h"

#include <QtEndian>

namespace tme {

QByteArray PackCopyData(const CopyData& record) {
  QByteArray bytes(kCopyDataHeaderBytes, '\0');
  qToLittleEndian(record.dwData, bytes.data());
  qToLittleEndian(static_cast<quint32>(record.data.size()), bytes.data() + 4);
  qToLittleEndian(kCopyDataHeaderBytes, bytes.data() + 8);
  return bytes + record.data;
}

bool IsBeginningOfRecord(const QByteArray& bytes) {
  if (bytes.size() < kCopyDataHeaderBytes) return true;
  const auto data_size = qFromLittleEndian<quint32>(bytes.constData() + 4);
  const auto most = MaxDataBytes(qFromLittleEndian<quint32>(bytes.constData()));
  return data_size <= most && bytes.size() < kCopyDataHeaderBytes + static_cast<qsizetype>(data_size);
}

std::optional<CopyData> UnpackCopyData(const QByteArray& bytes) {
  if (bytes.size() < kCopyDataHeaderBytes) return std::nullopt;
  const auto data_size = qFromLittleEndian<quint32>(bytes.constData() + 4);
  const auto offset = qFromLittleEndian<quint32>(bytes.constData() + 8);
  const auto meaning = qFromLittleEndian<quint32>(bytes.constData());
  if (data_size > MaxDataBytes(meaning) || offset != kCopyDataHeaderBytes) return std::nullopt;
  if (bytes.size() != kCopyDataHeaderBytes + static_cast<qsizetype>(data_size)) return std::nullopt;
  return CopyData{meaning, bytes.mid(kCopyDataHeaderBytes)};
}

}  // namespace tme
