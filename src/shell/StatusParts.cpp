#include "shell/StatusParts.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QStyleOptionToolButton>
#include <QStylePainter>

#include "shell/DisplayText.h"
#include "shell/PlainText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Characters of a longer text that are looked at from either end: more than any screen shows.
constexpr qsizetype kMostAtEachEnd = 500;
constexpr int kFieldCharacters = 12;

QString Shortened(const QString& text) {
  if (text.size() <= 2 * kMostAtEachEnd) return text;
  return text.left(kMostAtEachEnd) + QChar(0x2026) + text.right(kMostAtEachEnd);
}

}  // namespace

StatusButton::StatusButton(const QString& object_name, QWidget* parent) : QToolButton(parent) {
  setObjectName(object_name);
  setAutoRaise(true);
  setFocusPolicy(Qt::TabFocus);  // a click leaves the keys with the document
  setPopupMode(QToolButton::InstantPopup);
  setToolButtonStyle(Qt::ToolButtonTextOnly);
}

void StatusButton::Say(const QString& text, const QString& name, const QString& tip) {
  if (text == text_ && name == accessibleName()) return;
  text_ = text;
  setText(MenuText(DisplayText(Shortened(text).toStdString(), 2 * kMostAtEachEnd + 1)));
  SetTip(*this, tip);
  setAccessibleName(name);
}

void StatusButton::paintEvent(QPaintEvent* /*event*/) {
  QStylePainter painter(this);
  QStyleOptionToolButton option;
  initStyleOption(&option);
  const int around = sizeHint().width() - fontMetrics().size(Qt::TextShowMnemonic, option.text).width();
  option.text = fontMetrics().elidedText(option.text, Qt::ElideMiddle, width() - around, Qt::TextShowMnemonic);
  painter.drawComplexControl(QStyle::CC_ToolButton, option);
}

void StatusButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
  QToolButton::keyPressEvent(event);
}

LineField::LineField(QWidget* parent) : QWidget(parent), number_(new QLineEdit(this)), said_(PlainLabel({}, this)) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  QLabel* caption = PlainLabel(tr("&Line:"), this);
  caption->setBuddy(number_);
  row->addWidget(caption);
  number_->setObjectName(u"line_number"_s);
  number_->setAccessibleName(tr("Line number"));
  number_->setMaximumWidth(kFieldCharacters * fontMetrics().averageCharWidth() + fontMetrics().height());
  row->addWidget(number_);
  said_->setObjectName(u"line_said"_s);
  said_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  row->addWidget(said_, 1);
  connect(number_, &QLineEdit::returnPressed, this, &LineField::Check);
  connect(number_, &QLineEdit::textEdited, this, [this] { SayRange(); });
  number_->installEventFilter(this);
  hide();
}

void LineField::Ask(std::int64_t line, std::int64_t lines) {
  lines_ = lines;
  number_->setText(QString::number(line));
  number_->selectAll();
  SayRange();
  show();
  number_->setFocus(Qt::ShortcutFocusReason);
}

void LineField::SayRange() { Say(tr("of %1").arg(QLocale().toString(qlonglong{lines_}))); }

void LineField::Say(const QString& what) {
  said_->setText(what);
  said_->setAccessibleName(what);
  SetTip(*number_, what);
}

void LineField::Check() {
  bool is_number = false;
  const QString typed = number_->text().trimmed();
  const qlonglong line = typed.toLongLong(&is_number);
  if (is_number && line >= 1 && line <= lines_) {
    emit Chosen(line);
    return;
  }
  Say(typed.isEmpty() || is_number
          ? tr("The document has the lines 1 to %1.").arg(QLocale().toString(qlonglong{lines_}))
          : tr("That is no number: the document has the lines 1 to %1.").arg(QLocale().toString(qlonglong{lines_})));
  number_->selectAll();
  QAccessibleEvent alert(said_, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

bool LineField::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    event->accept();
    return true;
  }
  if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    emit Escaped();
    return true;
  }
  if (event->type() == QEvent::FocusOut && static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason &&
      static_cast<QFocusEvent*>(event)->reason() != Qt::ActiveWindowFocusReason)
    emit LeftBehind();
  return QWidget::eventFilter(watched, event);
}

}  // namespace tme
