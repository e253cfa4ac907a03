#include "windows/tree/LinesClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

const QString kLinesFormat = QStringLiteral("application/x-tamarind-lines");
const QString kManyFormat = QStringLiteral("application/x-tamarind-rows");

QMimeData* DataOf(const std::string& lines) {
  auto* copied = new QMimeData;
  copied->setText(TextOf(lines));
  copied->setData(kLinesFormat, QByteArray::fromStdString(lines));
  return copied;
}

}  // namespace

void CopyLines(const std::string& lines) { QGuiApplication::clipboard()->setMimeData(DataOf(lines)); }

void CopyManyLines(const std::string& lines) {
  QMimeData* copied = DataOf(lines);
  copied->setData(kManyFormat, "1");
  QGuiApplication::clipboard()->setMimeData(copied);
}

bool HasManyLines() { return QGuiApplication::clipboard()->mimeData()->hasFormat(kManyFormat); }

std::string CopiedLines() {
  const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
  return copied->hasFormat(kLinesFormat) ? copied->data(kLinesFormat).toStdString() : copied->text().toStdString();
}

}  // namespace tme
