#include "windows/tree/LinesClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

const QString kLinesFormat = QStringLiteral("application/x-tamarind-lines");

}  // namespace

void CopyLines(const std::string& lines) {
  auto* copied = new QMimeData;
  copied->setText(TextOf(lines));
  copied->setData(kLinesFormat, QByteArray::fromStdString(lines));
  QGuiApplication::clipboard()->setMimeData(copied);
}

std::string CopiedLines() {
  const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
  return copied->hasFormat(kLinesFormat) ? copied->data(kLinesFormat).toStdString() : copied->text().toStdString();
}

}  // namespace tme
