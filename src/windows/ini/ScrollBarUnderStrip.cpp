#include "windows/ini/ScrollBarUnderStrip.h"

#include <QContextMenuEvent>
#include <QPainter>
#include <QStyleOptionSlider>
#include <utility>

namespace tme {

void ScrollBarUnderStrip::SetStrip(int pixels) {
  if (std::exchange(strip_, pixels) != pixels) updateGeometry();
}

void ScrollBarUnderStrip::initStyleOption(QStyleOptionSlider* option) const {
  QScrollBar::initStyleOption(option);
  option->rect = QRect(0, 0, width(), height() - strip_);
}

void ScrollBarUnderStrip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().window());
  if (minimum() == maximum()) return;
  QStyleOptionSlider option;
  initStyleOption(&option);
  option.subControls = QStyle::SC_All;
  painter.translate(0, strip_);
  style()->drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, this);
}

void ScrollBarUnderStrip::contextMenuEvent(QContextMenuEvent* event) { event->accept(); }

std::unique_ptr<QMouseEvent> ScrollBarUnderStrip::Shifted(const QMouseEvent& event) const {
  return std::make_unique<QMouseEvent>(event.type(), event.position() - QPointF(0, strip_), event.globalPosition(),
                                       event.button(), event.buttons(), event.modifiers());
}

}  // namespace tme
