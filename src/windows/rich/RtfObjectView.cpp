#include "windows/rich/RtfObjectView.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFontMetricsF>
#include <QImageReader>
#include <QPainter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextOption>
#include <QTextTable>
#include <utility>

#include "documents/rtf/RtfContents.h"
#include "files/CodePage.h"
#include "system/Twips.h"
#include "windows/rich/RtfPartText.h"
#include "windows/rich/RtfTraceTexts.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kPictureCacheKilobytes = 64 * 1024;
constexpr int kMaxPicturePixels = 8192;   // an edge as drawn
constexpr int kMaxPictureTwips = 31'680;  // the longest edge of a page that word processors know
constexpr int kTwipsPerPixel = 15;
constexpr double kMaxLabelEms = 24;
constexpr double kBreakEms = 4;       // beside its label
constexpr double kUnitsPerInch = 96;  // of a document's margins

QStringList LinesOf(const std::string& label) {
  QStringList lines;
  for (const QString& line : QString::fromStdString(label).split(u'\n', Qt::SkipEmptyParts))
    lines.append(RtfPartText::Shown(line.toStdString()));
  return lines;
}

QBuffer& OpenedBuffer(QBuffer& buffer, const std::string& bytes) {
  buffer.setData(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())));
  buffer.open(QIODevice::ReadOnly);
  return buffer;
}

double Resolution(const QTextDocument& document) {
  const QPaintDevice* device = document.documentLayout()->paintDevice();
  return device ? device->logicalDpiY() : kUnitsPerInch;
}

QFont LabelFont(const QTextDocument& document) {
  QFont font;
  font.setPixelSize(std::max(6, static_cast<int>(Resolution(document) / 8)));
  return font;
}

/// Drawn as a line.
bool IsBreak(const QTextFormat& format) {
  return format.intProperty(kObject) == kPageBreak || format.intProperty(kSectionBreak) != 0;
}

/// As wide as its line where lines are wrapped, so that what follows it stands below, as on paper; else what follows
/// stays in sight.
double BreakWidth(QTextDocument& document, int position, const QString& label) {
  const QFontMetricsF metrics(LabelFont(document));
  const double usual =
      std::min(metrics.horizontalAdvance(label), kMaxLabelEms * metrics.height()) + kBreakEms * metrics.height();
  const QTextCursor cursor(document.findBlock(position));
  const bool has_width = document.textWidth() > 0 && document.defaultTextOption().wrapMode() != QTextOption::NoWrap;
  if (cursor.isNull() || cursor.currentTable() || !has_width) return usual;
  const QTextBlockFormat block = cursor.blockFormat();
  const double indents = block.leftMargin() + block.rightMargin() + std::max(0.0, block.textIndent());
  const double margins = (2 * document.documentMargin() + indents) * Resolution(document) / kUnitsPerInch;
  return std::max(1.0, document.textWidth() - margins - 1);
}

}  // namespace

void RtfObjectView::Reset(const RtfStore& store) {
  store_ = &store;
  pictures_.clear();
  pictures_.setMaxCost(kPictureCacheKilobytes);
  sizes_.clear();
  part_texts_.clear();
  trace_texts_.reset();
  label_sizes_.clear();
}

const rtf::Object* RtfObjectView::ObjectOf(const QTextFormat& format) const {
  const int number = format.intProperty(kObject);
  if (!store_ || number <= 0 || static_cast<std::size_t>(number) > store_->document.objects.size()) return nullptr;
  return &store_->document.objects[static_cast<std::size_t>(number) - 1];
}

QSize RtfObjectView::PictureSize(int number, const rtf::Object& object) const {
  if (object.kind != rtf::ObjectKind::Picture) return {};
  const auto known = sizes_.constFind(number);
  if (known != sizes_.cend()) return *known;
  QBuffer buffer;
  const QSize own = QImageReader(&OpenedBuffer(buffer, object.picture)).size();
  QSize size;
  if (own.width() > 0 && own.height() > 0) {
    size = {object.width > 0 ? object.width : own.width() * kTwipsPerPixel,
            object.height > 0 ? object.height : own.height() * kTwipsPerPixel};
    if (std::max(size.width(), size.height()) > kMaxPictureTwips)
      size.scale(kMaxPictureTwips, kMaxPictureTwips, Qt::KeepAspectRatio);
  }
  return *sizes_.insert(number, size);
}

QString RtfObjectView::SectionLabel(const QTextFormat& format) {
  const auto section = static_cast<RtfSectionBreak>(format.intProperty(kSectionBreak));
  return section == RtfSectionBreak::Page ? tr("New section, new page") : tr("New section");
}

QString RtfObjectView::LabelOf(const QTextFormat& format) const {
  if (format.objectType() != kRtfObjectType) return {};
  if (format.intProperty(kObject) == kPageBreak) return tr("Page break");
  const rtf::Object* object = ObjectOf(format);
  if (!object) return tr("Object");
  if (object->kind == rtf::ObjectKind::SectionBreak) {
    const QString label = SectionLabel(format);
    const QString text = QString(SectionTextOf(format.intProperty(kObject), *object)).replace(u'\n', u", "_s);
    return text.isEmpty() ? label : label + u" \u2013 "_s + text;
  }
  if (object->kind == rtf::ObjectKind::Picture)
    return PictureSize(format.intProperty(kObject), *object).isEmpty() ? tr("Picture that cannot be shown") : QString();
  const QString label = object->label.empty() ? tr("Object") : LinesOf(object->label).join(u' ');
  if (!object->rtf.starts_with("{\\object")) return label;
  // What it is comes before what its file says that it shows.
  const QString text = QString(PartTextOf(format.intProperty(kObject), *object)).replace(u'\n', u", "_s);
  if (text.isEmpty()) return label;
  return object->label == rtf::kObjectLabel ? text : text + u" \u2013 "_s + label;
}

const QString& RtfObjectView::SectionTextOf(int number, const rtf::Object& object) const {
  const auto known = part_texts_.constFind(number);
  if (known != part_texts_.cend()) return *known;
  if (!trace_texts_) trace_texts_ = std::make_unique<RtfTraceTexts>(*store_);
  return *part_texts_.insert(number, trace_texts_->OfSection(object.rtf));
}

const QString& RtfObjectView::PartTextOf(int number, const rtf::Object& object) const {
  const auto known = part_texts_.constFind(number);
  if (known != part_texts_.cend()) return *known;
  const rtf::Contents contents = rtf::ListContents(object.rtf, BytesToUtf8);
  const bool is_listed = !contents.parts.empty() && contents.parts.front().kind != rtf::PartKind::Unshown;
  return *part_texts_.insert(number, is_listed ? RtfPartText::Tip(contents.parts.front()) : QString());
}

QString RtfObjectView::TipOf(const QTextFormat& format) const {
  const QString label = LabelOf(format);
  const rtf::Object* object = ObjectOf(format);
  if (!object || format.objectType() != kRtfObjectType) return label;
  if (object->kind == rtf::ObjectKind::SectionBreak) {
    const QString text = SectionTextOf(format.intProperty(kObject), *object);
    return text.isEmpty() ? label : SectionLabel(format) + u'\n' + text;
  }
  const bool is_note = object->rtf.starts_with("{\\footnote");
  const bool is_endnote = is_note && object->rtf.find("\\ftnalt") != std::string::npos;
  const bool is_formula = object->rtf.starts_with("{\\*\\moMath");
  const QString what = is_endnote   ? tr("Endnote")
                       : is_note    ? tr("Footnote")
                       : is_formula ? tr("Formula")
                                    : PartTextOf(format.intProperty(kObject), *object);
  const bool says_more = !what.isEmpty() && !object->label.empty() && object->label != rtf::kObjectLabel;
  return says_more ? what + u'\n' + LinesOf(object->label).join(u'\n') : what.isEmpty() ? label : what;
}

QSizeF RtfObjectView::intrinsicSize(QTextDocument* document, int position, const QTextFormat& format) {
  const rtf::Object* object = ObjectOf(format);
  if (object) {
    const QSize size = PictureSize(format.intProperty(kObject), *object);
    if (!size.isEmpty()) return QSizeF(size) * Resolution(*document) / kTwipsPerInch;
  }
  const QString label = LabelOf(format);
  if (IsBreak(format))
    return {BreakWidth(*document, position, label), QFontMetricsF(LabelFont(*document)).height() * 1.2};
  if (std::exchange(label_resolution_, Resolution(*document)) != Resolution(*document)) label_sizes_.clear();
  if (const auto known = label_sizes_.constFind(label); known != label_sizes_.cend()) return *known;
  const QFontMetricsF metrics(LabelFont(*document));
  const double em = metrics.height();
  const QSizeF size(std::min(metrics.horizontalAdvance(label), em * kMaxLabelEms) + em, em * 1.3);
  return *label_sizes_.insert(label, size);
}

const QPixmap* RtfObjectView::PictureOf(int number, const rtf::Object& object, QSize pixels) {
  pixels = pixels.boundedTo({kMaxPicturePixels, kMaxPicturePixels});
  if (const QPixmap* known = pictures_.object(number); known && known->size() == pixels) return known;
  QBuffer buffer;
  QImageReader reader(&OpenedBuffer(buffer, object.picture));
  reader.setScaledSize(pixels);
  const QImage image = reader.read();
  // One that the cache will not hold is drawn as a placeholder.
  if (image.isNull()) return nullptr;
  auto* picture = new QPixmap(QPixmap::fromImage(image));
  const auto cost = static_cast<int>(std::min<qsizetype>(image.sizeInBytes() / 1024, kPictureCacheKilobytes));
  return pictures_.insert(number, picture, cost) ? picture : nullptr;
}

void RtfObjectView::drawObject(QPainter* painter, const QRectF& rect, QTextDocument* document, int,
                               const QTextFormat& format) {
  const rtf::Object* object = ObjectOf(format);
  if (object && !PictureSize(format.intProperty(kObject), *object).isEmpty()) {
    const QSize pixels = painter->combinedTransform().mapRect(rect).size().toSize();
    if (const QPixmap* picture = PictureOf(format.intProperty(kObject), *object, pixels)) {
      painter->drawPixmap(rect, *picture, QRectF(picture->rect()));
      return;
    }
  }
  QString label = LabelOf(format);
  if (label.isEmpty()) label = tr("Picture that cannot be shown");
  painter->save();
  QFont font = LabelFont(*document);
  painter->setFont(font);
  const QColor grey(0x7b, 0x87, 0x94);
  painter->setPen(QPen(grey, 1, IsBreak(format) ? Qt::DashLine : Qt::SolidLine));
  if (IsBreak(format)) {
    const double middle = rect.center().y();
    painter->drawLine(QPointF(rect.left(), middle), QPointF(rect.right(), middle));
    const QFontMetricsF metrics(font);
    label = metrics.elidedText(label, Qt::ElideRight, rect.width() - metrics.height());
    const double width = std::min(metrics.horizontalAdvance(label) + 2 * metrics.averageCharWidth(), rect.width());
    const QRectF place(rect.center().x() - width / 2, rect.top(), width, rect.height());
    painter->fillRect(place, Qt::white);
    painter->drawText(place, Qt::AlignCenter, label);
  } else {
    const double em = QFontMetricsF(font).height();
    painter->setBrush(QColor(0xf3, 0xf5, 0xf7));
    painter->drawRoundedRect(rect.adjusted(1, 1, -1, -1), 3, 3);
    painter->setPen(QColor(0x3a, 0x44, 0x4e));
    painter->drawText(rect, Qt::AlignCenter,
                      QFontMetricsF(font).elidedText(label, Qt::ElideRight, rect.width() - em * 0.8));
  }
  painter->restore();
}

}  // namespace tme
