#include "windows/reg/FieldReason.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>

#include "shell/PlainText.h"

using namespace Qt::StringLiterals;

namespace tme {

QColor MarkedBase(const QPalette& palette) {
  constexpr int kRed = 200, kGreen = 40, kBlue = 40;
  const QColor base = palette.color(QPalette::Active, QPalette::Base);
  const auto mix = [](int from, int to) { return (3 * from + to) / 4; };
  return {mix(base.red(), kRed), mix(base.green(), kGreen), mix(base.blue(), kBlue)};
}

FieldReason::FieldReason(QWidget& field, QWidget* parent)
    : QWidget(parent), field_(field), sign_(PlainLabel({}, this)), text_(PlainLabel({}, this)) {
  const int size = fontMetrics().height();
  sign_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size, size));
  sign_->hide();
  text_->setObjectName(u"reason"_s);
  text_->setWordWrap(true);
  text_->setAlignment(Qt::AlignLeading | Qt::AlignTop);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(sign_, 0, Qt::AlignTop);
  row->addWidget(text_, 1);
  setMinimumHeight(size);
}

void FieldReason::Say(const QString& reason) {
  if (reason == text_->text()) return;
  text_->setText(reason);
  sign_->setVisible(!reason.isEmpty());
  field_.setAccessibleDescription(reason);
  QPalette palette;
  if (!reason.isEmpty()) palette.setColor(QPalette::Base, MarkedBase(palette));
  field_.setPalette(palette);
}

QString FieldReason::Reason() const { return text_->text(); }

}  // namespace tme
