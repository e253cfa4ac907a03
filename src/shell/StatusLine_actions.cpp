// What the user does with the status line.
#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <algorithm>
#include <array>

#include "shell/DocumentWindow.h"
#include "shell/FormCaptions.h"
#include "shell/PlainText.h"
#include "shell/StatusLine.h"
#include "shell/StatusParts.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QAction* AddChoice(QMenu& menu, const QString& caption, bool is_present) {
  QAction* choice = menu.addAction(MenuText(caption));
  choice->setCheckable(true);
  choice->setChecked(is_present);
  return choice;
}

/// What a click can do where it can change nothing.
void SayWhyAt(QWidget& part, const QString& why) {
  if (!why.isEmpty()) ShowTip(part.mapToGlobal(QPoint(0, -2 * part.height())), why, &part);
}

}  // namespace

void StatusLine::CopyPath() {
  const QString& text = state_.fault.isEmpty() ? state_.path : state_.fault;
  QGuiApplication::clipboard()->setText(text);
  path_->Say(tr("Copied"), tr("Copied: %1").arg(text), text);
  copied_.start();
  Arrange();
}

void StatusLine::SwitchHolding() { source_.send("WholeFile"); }

void StatusLine::SayLineEndsStay() { SayWhyAt(*line_ends_, state_.line_ends_stay); }

void StatusLine::FillEncodings(QMenu& menu) {
  if (!state_.encoding) return;
  for (const TextEncoding encoding : OfferedEncodings(*state_.encoding))
    connect(AddChoice(menu, CaptionOf(encoding), encoding == state_.encoding), &QAction::triggered, this,
            [this, encoding] {
              if (DocumentWindow* active = source_.active()) active->ChangeEncoding(encoding);
              ShowNow();
            });
}

void StatusLine::FillLineEnds(QMenu& menu) {
  for (const LineEnds ends : kOfferedLineEnds)
    connect(AddChoice(menu, CaptionOf(ends), ends == state_.line_ends), &QAction::triggered, this, [this, ends] {
      if (DocumentWindow* active = source_.active()) active->ChangeLineEnds(ends);
      ShowNow();
    });
}

void StatusLine::AskForLine() {
  ShowNow();
  if (!state_.place) return;
  field_->Ask(state_.place->line, state_.place->lines);
  Arrange();
}

void StatusLine::GoTo(std::int64_t line) {
  if (DocumentWindow* active = source_.active()) active->GoToLine(line);
  BackToDocument();
}

void StatusLine::LeaveField() {
  field_->hide();
  Arrange();
}

void StatusLine::BackToDocument() {
  if (DocumentWindow* active = source_.active()) {
    QWidget* const last = active->focusWidget();
    (last ? last : active)->setFocus(Qt::OtherFocusReason);
  }
  LeaveField();
}

std::vector<QWidget*> StatusLine::Stops() const {
  std::vector<QWidget*> stops;
  for (QWidget* part : std::array<QWidget*, 5>{holding_, path_, place_, encoding_, line_ends_})
    if (part->isVisibleTo(this)) stops.push_back(part);
  return stops;
}

void StatusLine::FocusFirst() {
  if (const std::vector<QWidget*> stops = Stops(); !stops.empty()) stops.front()->setFocus(Qt::TabFocusReason);
}

bool StatusLine::focusNextPrevChild(bool next) {
  const std::vector<QWidget*> stops = Stops();
  if (stops.empty()) return false;
  const auto at = std::find(stops.begin(), stops.end(), QApplication::focusWidget());
  const std::size_t count = stops.size(), index = at == stops.end() ? count - 1 : std::size_t(at - stops.begin());
  stops[(index + (next ? 1 : count - 1)) % count]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  return true;
}

void StatusLine::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return BackToDocument();
  QWidget::keyPressEvent(event);
}

void StatusLine::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  Arrange();
}

void StatusLine::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  updateGeometry();
  Arrange();
}

QSize StatusLine::sizeHint() const { return {0, encoding_->sizeHint().height()}; }

QSize StatusLine::minimumSizeHint() const { return sizeHint(); }

}  // namespace tme
