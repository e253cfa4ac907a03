#include "windows/tree/RowDrag.h"

#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

const QString kRowsType = QStringLiteral("application/x-tamarind-dragged");
const QString kTextType = QStringLiteral("text/plain");

}  // namespace

TreeDocumentWindow* DraggedRows::From() const {
  return from_ && from_->IsOpen() && from_->Revision() == revision_ ? from_.data() : nullptr;
}

bool DraggedRows::CarryOut() const {
  const std::function<void()> plan = std::exchange(plan_, {});
  if (!plan) return false;
  if (From() != nullptr) plan();
  return true;
}

QStringList DraggedRows::formats() const {
  QStringList formats{kRowsType};
  if (lines_) formats += kTextType;
  return formats;
}

QVariant DraggedRows::retrieveData(const QString& format, QMetaType) const {
  return format == kTextType && lines_ && From() != nullptr ? TextOf(lines_()) : QVariant();
}

}  // namespace tme
