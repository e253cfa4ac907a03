#pragma once

#include <QAbstractItemView>
#include <QList>
#include <optional>

class QKeyEvent;
class QWheelEvent;

namespace tme {

enum class Zoom { In, Out, Reset };

/// What a key asks for: Ctrl with plus (or the key that is plus with Shift), minus or 0, on the number pad too.
std::optional<Zoom> ZoomOf(const QKeyEvent& key);
/// The notches that a wheel was turned with Ctrl held, forward positive; nothing without Ctrl.
std::optional<double> ZoomNotchesOf(const QWheelEvent& wheel);

/// Percent of the usual size; kept between 20 and 500.
class ZoomPercent {
 public:
  int Value() const { return percent_; }
  /// False when it stays as it was.
  bool Apply(Zoom zoom);
  bool Turn(double notches);
  bool Set(int percent);

 private:
  int percent_ = 100;
};

/// Zooms the texts and pictures of some views, all alike, by these keys and the wheel.
class ViewZoom : public QObject {
  Q_OBJECT

 public:
  /// The views must live as long.
  ViewZoom(QList<QAbstractItemView*> views, QObject* parent);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Show();

  const QList<QAbstractItemView*> views_;
  ZoomPercent percent_;
};

}  // namespace tme
