#include "windows/rich/RtfClipboard.h"

#include <QBuffer>
#include <QImage>
#include <QMimeData>
#include <array>

using namespace Qt::StringLiterals;

namespace tme {
namespace {

// The last is how the toolkit names the Windows format "Rich Text Format".
constexpr std::array kNames{"text/rtf"_L1, "application/rtf"_L1, "text/richtext"_L1,
                            "application/x-qt-windows-mime;value=\"Rich Text Format\""_L1};

}  // namespace

std::unique_ptr<QMimeData> RtfMimeData(const std::string& rtf, const QString& text) {
  auto data = std::make_unique<QMimeData>();
  const QByteArray bytes = QByteArray::fromStdString(rtf);
  for (const QLatin1StringView name : kNames) data->setData(name, bytes);
  data->setText(text);
  return data;
}

QByteArray RtfOf(const QMimeData& data) {
  for (const QLatin1StringView name : kNames) {
    if (!data.hasFormat(name)) continue;
    QByteArray bytes = data.data(name);
    // Some programs hand over the NUL behind their text. "text/richtext" is also the name of another format.
    while (bytes.endsWith('\0')) bytes.chop(1);
    if (bytes.trimmed().startsWith("{\\rtf")) return bytes;
  }
  return {};
}

QByteArray PictureOf(const QMimeData& data) {
  const QImage image = data.hasImage() ? qvariant_cast<QImage>(data.imageData()) : QImage();
  QByteArray bytes;
  QBuffer buffer(&bytes);
  if (!image.isNull()) image.save(&buffer, "PNG");
  return bytes;
}

}  // namespace tme
