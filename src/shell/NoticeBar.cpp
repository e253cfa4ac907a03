#include "shell/NoticeBar.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QToolButton>
#include <algorithm>

#include "shell/Icon.h"
#include "shell/PlainText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {
constexpr int kLines = 3;
/// Characters that a line of text keeps at least when the buttons stand beside it; else they go below.
constexpr int kCharactersBesideButtons = 40;

/// Deletes a button later, because it may be the one whose click does this.
void TakeAway(QPushButton* button) {
  button->hide();
  button->setParent(nullptr);
  button->deleteLater();
}
}  // namespace

NoticeBar::NoticeBar(QWidget* parent)
    : QFrame(parent),
      label_(PlainLabel()),
      area_(new QScrollArea(this)),
      more_(new QToolButton(this)),
      buttons_(new QWidget(this)),
      rows_(new QBoxLayout(QBoxLayout::LeftToRight)) {
  setObjectName(u"notice_bar"_s);
  setAccessibleName(tr("Notice"));
  setFrameShape(QFrame::StyledPanel);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::ToolTipBase);
  setForegroundRole(QPalette::ToolTipText);

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(6, 3, 3, 3);
  QLabel* icon = PlainLabel({}, this);
  const int extent = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
  icon->setPixmap(Icon(u"notice"_s).pixmap(extent));
  row->addWidget(icon, 0, Qt::AlignTop);

  BuildText();
  rows_->addWidget(area_, 1);
  BuildButtons();
  rows_->addWidget(buttons_, 0, Qt::AlignTop);
  rows_->setSpacing(3);
  row->addLayout(rows_, 1);

  auto* close = new QToolButton(this);
  close->setObjectName(u"notice_close"_s);
  close->setAccessibleName(tr("Close the notice"));
  SetTip(*close, tr("Close the notice (Shift+Esc)"));
  close->setAutoRaise(true);
  close->setIcon(style()->standardIcon(QStyle::SP_DockWidgetCloseButton));
  connect(close, &QToolButton::clicked, this, &NoticeBar::Clear);
  row->addWidget(close, 0, Qt::AlignTop);
  hide();
}

void NoticeBar::BuildText() {
  label_->setObjectName(u"notice_text"_s);
  label_->setWordWrap(true);
  label_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label_->setForegroundRole(QPalette::ToolTipText);
  label_->setAutoFillBackground(false);
  area_->setWidget(label_);
  area_->setWidgetResizable(true);
  area_->setFrameShape(QFrame::NoFrame);
  area_->setFocusPolicy(Qt::NoFocus);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area_->viewport()->setAutoFillBackground(false);
}

void NoticeBar::BuildButtons() {
  auto* button_row = new QHBoxLayout(buttons_);
  button_row->setContentsMargins(0, 0, 0, 0);
  more_->setObjectName(u"notice_more"_s);
  more_->setAutoRaise(true);
  more_->setFocusPolicy(Qt::StrongFocus);
  connect(more_, &QToolButton::clicked, this, [this] {
    is_expanded_ = !is_expanded_;
    Arrange();
  });
  button_row->addWidget(more_);
  button_row->addStretch(1);
}

void NoticeBar::Add(const QString& sentence, std::vector<NoticeAction> actions, NoticeLife life) {
  if (sentence.isEmpty()) return;
  for (const NoticeAction& action : actions) AddButton(action);
  const auto there =
      std::find_if(notices_.begin(), notices_.end(), [&](const Notice& notice) { return notice.sentence == sentence; });
  if (there == notices_.end())
    notices_.push_back({sentence, std::move(actions), life});
  else
    *there = {sentence, std::move(actions), life};
  label_->setText(Text());
  show();
  Arrange();
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void NoticeBar::AddButton(NoticeAction action) {
  for (QPushButton* old : buttons_->findChildren<QPushButton*>())
    if (old->text() == action.caption) TakeAway(old);
  auto* button = new QPushButton(action.caption, buttons_);
  button->setObjectName(u"notice_action"_s);
  button->setAutoDefault(false);
  connect(button, &QPushButton::clicked, this, [run = std::move(action.run)] {
    const std::function<void()> copy = run;  // what runs may clear the bar, and this function with it
    copy();
  });
  auto* row = static_cast<QHBoxLayout*>(buttons_->layout());
  row->insertWidget(row->count() - 1, button);
  button->show();
}

void NoticeBar::Remove(const QString& sentence) {
  if (std::erase_if(notices_, [&](const Notice& notice) { return notice.sentence == sentence; }) == 0) return;
  if (notices_.empty()) return Clear();
  label_->setText(Text());
  Arrange();
}

void NoticeBar::Clear() {
  notices_.clear();
  label_->clear();
  is_expanded_ = false;
  for (QPushButton* button : buttons_->findChildren<QPushButton*>()) TakeAway(button);
  hide();
}

void NoticeBar::EndUntilSave() {
  std::vector<Notice> before = std::move(notices_);
  Clear();
  for (Notice& notice : before)
    if (notice.life == NoticeLife::Document) Add(notice.sentence, std::move(notice.actions), notice.life);
}

QString NoticeBar::Text() const {
  QStringList sentences;
  for (const Notice& notice : notices_) sentences.append(notice.sentence);
  return sentences.join(u' ');
}

bool NoticeBar::FocusFirst() {
  for (QWidget* control : findChildren<QWidget*>()) {
    if (!control->isVisible() || !(control->focusPolicy() & Qt::TabFocus)) continue;
    control->setFocus(Qt::TabFocusReason);
    return true;
  }
  return false;
}

void NoticeBar::Arrange() {
  if (notices_.empty()) return;
  more_->setText(is_expanded_ ? tr("less") : tr("more…"));
  const QMargins margins = layout()->contentsMargins();
  // What the picture, the close button and the gaps leave.
  int width = contentsRect().width() - margins.left() - margins.right();
  for (int item = 0; item < layout()->count(); ++item)
    if (layout()->itemAt(item)->layout() != rows_)
      width -= layout()->itemAt(item)->sizeHint().width() + layout()->spacing();
  const bool has_actions = !buttons_->findChildren<QPushButton*>().isEmpty();
  const auto place = [&](bool has_more) {
    more_->setVisible(has_more);
    buttons_->setVisible(has_more || has_actions);
    const int beside = has_more || has_actions ? buttons_->sizeHint().width() + rows_->spacing() : 0;
    const bool fits = width - beside >= kCharactersBesideButtons * fontMetrics().averageCharWidth();
    rows_->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    return label_->heightForWidth(std::max(1, fits ? width - beside : width));
  };
  const int slim = kLines * fontMetrics().lineSpacing() + 2 * label_->margin();
  int height = place(false);
  if (height > slim) height = place(true);
  // Opened, the text may take half of the document; beyond that it scrolls.
  const int most = is_expanded_ ? std::max(slim, parentWidget()->height() / 2) : slim;
  area_->setVerticalScrollBarPolicy(is_expanded_ ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
  area_->verticalScrollBar()->setValue(0);
  area_->setFixedHeight(std::min(height, most));
}

void NoticeBar::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  Arrange();
}

void NoticeBar::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) Arrange();
}

}  // namespace tme
