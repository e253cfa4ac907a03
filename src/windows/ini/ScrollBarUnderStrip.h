#pragma once

#include <QMouseEvent>
#include <QScrollBar>
#include <memory>

namespace tme {

/// A horizontal scroll bar with a strip above it, on which buttons stand: so a view reaches down to the bottom and yet
/// no row of it hides under them.
class ScrollBarUnderStrip : public QScrollBar {
  Q_OBJECT

 public:
  explicit ScrollBarUnderStrip(QWidget* parent) : QScrollBar(Qt::Horizontal, parent) {}
  void SetStrip(int pixels);
  QSize sizeHint() const override { return QScrollBar::sizeHint() + QSize(0, strip_); }

 protected:
  /// The style lays the bar out from the top, so it is drawn, and the mouse is read, shifted by the strip.
  void initStyleOption(QStyleOptionSlider* option) const override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override { QScrollBar::mousePressEvent(Shifted(*event).get()); }
  void mouseMoveEvent(QMouseEvent* event) override { QScrollBar::mouseMoveEvent(Shifted(*event).get()); }
  void mouseReleaseEvent(QMouseEvent* event) override { QScrollBar::mouseReleaseEvent(Shifted(*event).get()); }
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  std::unique_ptr<QMouseEvent> Shifted(const QMouseEvent& event) const;

  int strip_ = 0;
};

}  // namespace tme
