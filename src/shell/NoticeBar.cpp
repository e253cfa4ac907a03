#include "shell/NoticeBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

#include "shell/Icon.h"

using namespace Qt::StringLiterals;

namespace tme {

NoticeBar::NoticeBar(QWidget* parent) : QFrame(parent), label_(new QLabel(this)) {
  setObjectName(u"notice_bar"_s);
  setAccessibleName(tr("Notice"));
  setFrameShape(QFrame::StyledPanel);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::ToolTipBase);
  setForegroundRole(QPalette::ToolTipText);

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(6, 3, 3, 3);
  auto* icon = new QLabel(this);
  const int extent = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
  icon->setPixmap(Icon(u"notice"_s).pixmap(extent));
  row->addWidget(icon, 0, Qt::AlignTop);

  label_->setObjectName(u"notice_text"_s);
  label_->setTextFormat(Qt::PlainText);
  label_->setWordWrap(true);
  label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label_->setForegroundRole(QPalette::ToolTipText);
  row->addWidget(label_, 1);

  auto* close = new QToolButton(this);
  close->setObjectName(u"notice_close"_s);
  close->setAccessibleName(tr("Close the notice"));
  close->setToolTip(tr("Close the notice (Shift+Esc)"));
  close->setAutoRaise(true);
  close->setIcon(style()->standardIcon(QStyle::SP_DockWidgetCloseButton));
  connect(close, &QToolButton::clicked, this, &NoticeBar::Clear);
  row->addWidget(close, 0, Qt::AlignTop);
  hide();
}

void NoticeBar::Add(const QString& sentence) {
  const QString text = Text();
  if (sentence.isEmpty() || text.contains(sentence)) return;
  label_->setText(text.isEmpty() ? sentence : text + u' ' + sentence);
  label_->setAccessibleName(label_->text());
  show();
}

void NoticeBar::Clear() {
  label_->clear();
  hide();
}

QString NoticeBar::Text() const { return label_->text(); }

}  // namespace tme
