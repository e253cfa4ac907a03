#include "shell/FrameGeometry.h"

#include <QEvent>
#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>
#include <algorithm>
#include <functional>

#include "shell/Settings.h"
#include "system/RegistryAccess.h"
#include "system/Twips.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kDelayMs = 150;
/// Part of the screen that a first start's frame takes in each direction.
constexpr double kFirstShare = 0.75;

}  // namespace

FrameGeometry::FrameGeometry(QMainWindow& frame, RegistryAccess& registry, const Settings& settings)
    : frame_(frame), registry_(registry), settings_(settings) {
  delay_.setSingleShot(true);
  delay_.setInterval(kDelayMs);
  connect(&delay_, &QTimer::timeout, this, &FrameGeometry::Write);
  frame.installEventFilter(this);
}

bool FrameGeometry::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  if (type == QEvent::Resize || type == QEvent::Move || type == QEvent::WindowStateChange)
    if (frame_.isVisible()) delay_.start();
  return QObject::eventFilter(watched, event);
}

void FrameGeometry::Restore() {
  const QRect available = frame_.screen()->geometry();
  const QSize size = (QSizeF(available.size()) * kFirstShare).toSize();
  frame_.resize(size);
  frame_.move(available.center() - QRect(QPoint(), size).center());
  if (settings_.present) ApplyStored();
  if (registry_.ReadValue(SettingsRoot, u"MDI Max"_s) == u"1")
    frame_.setWindowState(frame_.windowState() | Qt::WindowMaximized);
}

void FrameGeometry::ApplyStored() {
  const auto stored = [this](const QString& name) { return registry_.ReadValue(SettingsRoot, name); };
  const QString top = stored(u"MDI Top"_s), left = stored(u"MDI Left"_s);
  const QString width = stored(u"MDI Width"_s), height = stored(u"MDI Height"_s);
  if (top.isEmpty() || left.isEmpty() || width.isEmpty() || height.isEmpty()) return;
  // Each that can be read is applied; the first that cannot ends it, and the frame keeps what it has by then.
  const auto apply = [this](const QString& text, const std::function<void(int)>& place) {
    const std::optional<int> twips = ParseTwips(text);
    if (twips) place(TwipsToPixels(*twips, frame_.logicalDpiX()));
    return twips.has_value();
  };
  QRect placement(frame_.pos(), frame_.size());
  static_cast<void>(apply(top, [&](int pixels) { placement.moveTop(pixels); }) &&
                    apply(left, [&](int pixels) { placement.moveLeft(pixels); }) &&
                    apply(width, [&](int pixels) { placement.setWidth(std::max(pixels, 0)); }) &&
                    apply(height, [&](int pixels) { placement.setHeight(std::max(pixels, 0)); }));
  // A screen that is gone must not take the frame with it: off every one, it comes back onto the first.
  const QScreen* on = QGuiApplication::screenAt(placement.center());
  const QRect room = (on ? on : frame_.screen())->availableGeometry();
  // One that stretches over several screens is as large as they are.
  if (!frame_.screen()->virtualGeometry().contains(placement))
    placement.setSize(placement.size().boundedTo(room.size()));
  frame_.resize(placement.size());
  frame_.move(on ? placement.topLeft()
                 : QPoint(std::clamp(placement.x(), room.x(), room.right() + 1 - placement.width()),
                          std::clamp(placement.y(), room.y(), room.bottom() + 1 - placement.height())));
}

void FrameGeometry::Write() {
  delay_.stop();
  if (!settings_.present || frame_.isMinimized()) return;
  const auto write = [this](const QString& name, const QString& text) {
    registry_.WriteValue(SettingsRoot, name, text);
  };
  write(u"MDI Max"_s, frame_.isMaximized() ? u"1"_s : u"0"_s);
  if (frame_.isMaximized()) return;
  const auto twips = [this](int pixels) { return QString::number(PixelsToTwips(pixels, frame_.logicalDpiX())); };
  // Without the decoration, which is not there yet when the next start places the window.
  write(u"MDI Top"_s, twips(frame_.geometry().y()));
  write(u"MDI Left"_s, twips(frame_.geometry().x()));
  write(u"MDI Height"_s, twips(frame_.height()));
  write(u"MDI Width"_s, twips(frame_.width()));
}

void FrameGeometry::Finish() {
  frame_.removeEventFilter(this);
  if (delay_.isActive()) Write();
}

}  // namespace tme
