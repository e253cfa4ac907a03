#pragma once

#include <QLayout>
#include <memory>
#include <vector>

namespace tme {

/// Controls in a row that goes on below where it is too narrow. What its size policy lets grow takes the room that is
/// left of its row.
class FlowLayout : public QLayout {
 public:
  explicit FlowLayout(QWidget* parent = nullptr) : QLayout(parent) {}
  ~FlowLayout() override;

  void addItem(QLayoutItem* item) override { items_.emplace_back(item); }
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override { return Arrange(QRect(0, 0, width, 0), Placing::Measured); }
  void setGeometry(const QRect& rect) override;
  QSize sizeHint() const override;
  QSize minimumSize() const override;

 private:
  enum class Placing : std::uint8_t { Measured, Done };
  using Items = std::vector<std::unique_ptr<QLayoutItem>>;

  /// Returns the height.
  int Arrange(const QRect& rect, Placing placing) const;
  int PlaceRow(const std::vector<QLayoutItem*>& row, const QRect& rect, Placing placing) const;

  Items items_;
};

}  // namespace tme
