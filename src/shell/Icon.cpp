#include "shell/Icon.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QStyle>
#include <QStyleOption>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// In pixels, as resources/CMakeLists.txt renders them; those of the program itself go on.
constexpr std::array kSizes{16, 20, 24, 32, 40, 48, 64, 128, 256};

QString FileOf(const QString& name, int size) { return u":/icons/%1/%2.png"_s.arg(size).arg(name); }

class PictureEngine : public QIconEngine {
 public:
  PictureEngine(QString name, QString when_selected, QString when_open)
      : name_(std::move(name)), when_selected_(std::move(when_selected)), when_open_(std::move(when_open)) {}

  QIconEngine* clone() const override { return new PictureEngine(*this); }

  QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
    QList<QSize> sizes;
    for (const int size : kSizes)
      if (QFile::exists(FileOf(name_, size))) sizes.append({size, size});
    return sizes;
  }

  bool isNull() override { return !QFile::exists(FileOf(name_, kSizes.front())); }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    const QString& name = NameFor(mode, state);
    const int extent = std::min(size.width(), size.height());
    const QString key = u"tme-icon %1 %2 %3"_s.arg(name).arg(extent).arg(mode);
    QPixmap picture;
    if (QPixmapCache::find(key, &picture)) return picture;
    for (const int available : kSizes) {
      const QString file = FileOf(name, available);
      if (!QFile::exists(file)) break;  // none is larger: the last one serves
      picture = QPixmap(file);
      if (available >= extent) break;
    }
    if (picture.width() > extent)
      picture = picture.scaled(extent, extent, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    if (mode != QIcon::Normal && !picture.isNull()) {
      QStyleOption option;
      option.palette = QApplication::palette();
      picture = QApplication::style()->generatedIconPixmap(mode, picture, &option);
    }
    QPixmapCache::insert(key, picture);
    return picture;
  }

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture = pixmap(rect.size() * painter->device()->devicePixelRatio(), mode, state);
    picture.setDevicePixelRatio(1.0);
    painter->drawPixmap(rect, picture);
  }

 private:
  const QString& NameFor(QIcon::Mode mode, QIcon::State state) const {
    if (mode == QIcon::Selected && !when_selected_.isEmpty()) return when_selected_;
    return state == QIcon::On && !when_open_.isEmpty() ? when_open_ : name_;
  }

  QString name_;
  QString when_selected_;
  QString when_open_;
};

}  // namespace

QIcon Icon(const QString& name, const QString& when_selected, const QString& when_open) {
  return QIcon(new PictureEngine(name, when_selected, when_open));
}

}  // namespace tme
