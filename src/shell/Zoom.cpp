#include "shell/Zoom.h"

#include <QApplication>
#include <QFontInfo>
#include <QKeyEvent>
#include <QStyle>
#include <QWheelEvent>
#include <cmath>

namespace tme {
namespace {

constexpr int kUsual = 100, kLeast = 20, kMost = 500;
constexpr double kStep = 1.1;
/// As Qt counts: eighths of a degree, of which a usual wheel's notch has 15.
constexpr double kAngleOfNotch = 120;

}  // namespace

std::optional<Zoom> ZoomOf(const QKeyEvent& key) {
  const Qt::KeyboardModifiers held = key.modifiers() & ~Qt::KeypadModifier;
  if ((held & ~Qt::ShiftModifier) != Qt::ControlModifier) return std::nullopt;
  switch (key.key()) {
    case Qt::Key_Plus:
      return Zoom::In;
    case Qt::Key_Equal:
      if (held.testFlag(Qt::ShiftModifier)) return std::nullopt;
      return Zoom::In;
    case Qt::Key_Minus:
      return Zoom::Out;
    case Qt::Key_0:
      return Zoom::Reset;
    default:
      return std::nullopt;
  }
}

std::optional<double> ZoomNotchesOf(const QWheelEvent& wheel) {
  if (!wheel.modifiers().testFlag(Qt::ControlModifier)) return std::nullopt;
  return wheel.angleDelta().y() / kAngleOfNotch;
}

bool ZoomPercent::Set(int percent) {
  percent = std::clamp(percent, kLeast, kMost);
  return std::exchange(percent_, percent) != percent;
}

bool ZoomPercent::Turn(double notches) { return Set(qRound(percent_ * std::pow(kStep, notches))); }

bool ZoomPercent::Apply(Zoom zoom) { return zoom == Zoom::Reset ? Set(kUsual) : Turn(zoom == Zoom::In ? 1 : -1); }

ViewZoom::ViewZoom(QList<QAbstractItemView*> views, QObject* parent) : QObject(parent), views_(std::move(views)) {
  for (QAbstractItemView* view : views_) {
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
  }
}

bool ViewZoom::eventFilter(QObject* watched, QEvent* event) {
  std::optional<bool> changed;  // null for an event that is no zooming
  if (event->type() == QEvent::KeyPress) {
    if (const auto zoom = ZoomOf(*static_cast<QKeyEvent*>(event))) changed = percent_.Apply(*zoom);
  } else if (event->type() == QEvent::Wheel) {
    if (const auto notches = ZoomNotchesOf(*static_cast<QWheelEvent*>(event))) changed = percent_.Turn(*notches);
  }
  if (!changed) return QObject::eventFilter(watched, event);
  if (*changed) Show();
  return true;
}

void ViewZoom::Show() {
  for (QAbstractItemView* view : views_) {
    // Only the size is the view's own: families and colours go on following the desktop.
    QFont font;
    QSize icons;
    if (percent_.Value() != kUsual) {
      font.setPointSizeF(QFontInfo(QApplication::font(view)).pointSizeF() * percent_.Value() / kUsual);
      const int pixels = view->style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, view);
      icons = QSize(pixels, pixels) * percent_.Value() / kUsual;
    }
    view->setFont(font);
    view->setIconSize(icons);
    view->scrollTo(view->currentIndex());
  }
}

}  // namespace tme
