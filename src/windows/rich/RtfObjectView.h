#pragma once

#include <QCache>
#include <QObject>
#include <QPixmap>
#include <QTextObjectInterface>
#include <memory>

#include "windows/rich/RtfStore.h"
#include "windows/rich/RtfTraceTexts.h"

namespace tme {

/// Draws the inline objects of a rich-text view: pictures, page breaks, and a labelled box for anything else and for a
/// picture that cannot be shown.
class RtfObjectView : public QObject, public QTextObjectInterface {
  Q_OBJECT
  Q_INTERFACES(QTextObjectInterface)

 public:
  /// store: not owned; Reset takes another one.
  explicit RtfObjectView(QObject* parent) : QObject(parent) {}
  void Reset(const RtfStore& store);

  /// What stands in a place of the text, for people; empty for a picture that is shown and for text.
  QString LabelOf(const QTextFormat& format) const;
  /// The same at length, of pictures too: an object's class and size. Empty for text.
  QString TipOf(const QTextFormat& format) const;

  QSizeF intrinsicSize(QTextDocument* document, int position, const QTextFormat& format) override;
  void drawObject(QPainter* painter, const QRectF& rect, QTextDocument* document, int position,
                  const QTextFormat& format) override;

 private:
  const rtf::Object* ObjectOf(const QTextFormat& format) const;
  /// What the list of the file's contents says of an object; empty where it lists nothing.
  const QString& PartTextOf(int number, const rtf::Object& object) const;
  static QString SectionLabel(const QTextFormat& format);
  /// What the section that begins behind a break brings; a line each.
  const QString& SectionTextOf(int number, const rtf::Object& object) const;
  /// In twips; empty when it cannot be shown.
  QSize PictureSize(int number, const rtf::Object& object) const;
  const QPixmap* PictureOf(int number, const rtf::Object& object, QSize pixels);

  const RtfStore* store_ = nullptr;
  QCache<int, QPixmap> pictures_;
  mutable QHash<int, QSize> sizes_;
  mutable QHash<int, QString> part_texts_;  ///< and those of sections
  mutable std::unique_ptr<RtfTraceTexts> trace_texts_;
  /// Of the labels at one resolution: a file may have fifty thousand of one kind.
  QHash<QString, QSizeF> label_sizes_;
  double label_resolution_ = 0;
};

}  // namespace tme
