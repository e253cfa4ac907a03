#include "windows/rich/RtfTraces.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextLayout>
#include <QTextList>
#include <algorithm>
#include <utility>

#include "system/Twips.h"
#include "windows/rich/RtfInSight.h"
#include "windows/rich/RtfTraceTexts.h"

namespace tme {
namespace {

/// So many blocks are counted again at most before what is in sight: a fraction of a millisecond.
constexpr int kBlocksOfCounter = 4096;
constexpr double kBandUnits = 24;  ///< room for a band
constexpr double kBandEdge = 4;
constexpr double kMaxBandEms = 60;
constexpr double kFlagSize = 7;
constexpr double kDefaultResolution = 96;
constexpr int kLeastBandFont = 6, kBandFontsPerInch = 8;
/// A line's weight and height as parts of a letter's ascent.
constexpr double kLinesOfAscent = 12, kStrikeHeight = 0.65;
constexpr double kChangeBarLeft = 3;
constexpr double kChangeBarWidth = 2;
// On white, as the page is on every desktop.
const QColor kInsertedColor(0x0B, 0x6E, 0x4F), kDeletedColor(0xB0, 0x1E, 0x1E), kChangedColor(0x1F, 0x5F, 0xA8),
    kFlagColor(0xC2, 0x6A, 0x00);
const QColor kBandFill(0xF3, 0xF5, 0xF7), kBandBorder(0xC5, 0xCC, 0xD3), kBandText(0x3A, 0x44, 0x4E);

using rtf::ListStyle;
using Mark = RtfTraceTexts::Mark;

/// Stands at a paragraph's end that was tracked.
constexpr QChar kPilcrow = u'\u00B6';

const QColor& ColorOf(Mark mark) {
  return mark == Mark::Inserted ? kInsertedColor : mark == Mark::Deleted ? kDeletedColor : kChangedColor;
}

double ResolutionOf(const QTextDocument& document) {
  const QPaintDevice* device = document.documentLayout()->paintDevice();
  return device ? device->logicalDpiY() : kDefaultResolution;
}

}  // namespace

void RtfTraces::Reset(const RtfStore& store) {
  store_ = &store;
  marks_.clear();
  formats_.clear();
  revisions_.clear();
  attached_texts_.clear();
  texts_.emplace(store);
  ReadLists();
  counters_.assign(1, rtf::RtfNumbering(&lists_));
  top_ = texts_->Top();
  bottom_ = texts_->Bottom();
}

void RtfTraces::ReadLists() {
  lists_.ReadHeader(store_->document.kept_header);
  header_read_ = store_->document.kept_header.size();
  has_lists_ = std::ranges::any_of(store_->document.paragraph_formats,
                                   [](const auto& format) { return format.list != rtf::ListKind::None; });
}

void RtfTraces::MakeRoom(QTextDocument& document) const {
  QTextFrameFormat format = document.rootFrame()->frameFormat();
  const double margin = format.margin();
  if (!top_.text.isEmpty()) format.setTopMargin(margin + kBandUnits);
  if (!bottom_.text.isEmpty()) format.setBottomMargin(margin + kBandUnits);
  if (format != document.rootFrame()->frameFormat()) document.rootFrame()->setFrameFormat(format);
}

void RtfTraces::NoteEdit(int block) {
  // A pasted part may bring the first list, and lists of its own.
  if (!has_lists_ || header_read_ != store_->document.kept_header.size()) ReadLists();
  const auto kept = static_cast<std::size_t>(block / kBlocksOfCounter) + 1;
  if (counters_.size() > kept) counters_.resize(kept);
}

int RtfTraces::FormatOf(const QTextBlock& block) {
  const auto index = static_cast<std::size_t>(block.blockFormatIndex());
  if (formats_.size() <= index) formats_.resize(index + 1, kUnknown);
  int& known = formats_[index];
  if (known != kUnknown) return known;
  const QTextBlockFormat format = block.blockFormat();
  const bool begins = !format.hasProperty(kFiller) && format.intProperty(kPiece) <= 1;
  return known = begins ? std::max(format.intProperty(kParagraphFormat), 1) - 1 : kNoParagraph;
}

QString RtfTraces::NumberOf(const QTextBlock& block, rtf::RtfNumbering& counter) {
  const int number = FormatOf(block);
  if (number == kNoParagraph) return {};
  const rtf::ParagraphFormat& format = store_->document.paragraph_formats[static_cast<std::size_t>(number)];
  const bool is_listed = format.list != rtf::ListKind::None && block.textList();
  static const rtf::ParagraphFormat kOutside;
  return QString::fromStdString(counter.Next(is_listed ? format : kOutside));
}

rtf::RtfNumbering RtfTraces::CounterBefore(const QTextDocument& document, const QTextBlock& block) {
  const auto wanted = static_cast<std::size_t>(block.blockNumber() / kBlocksOfCounter);
  int at = static_cast<int>(std::min(wanted, counters_.size() - 1)) * kBlocksOfCounter;
  rtf::RtfNumbering counter = counters_[static_cast<std::size_t>(at / kBlocksOfCounter)];
  for (QTextBlock before = document.findBlockByNumber(at); at < block.blockNumber(); before = before.next()) {
    NumberOf(before, counter);
    if (++at % kBlocksOfCounter == 0) counters_.push_back(counter);
  }
  return counter;
}

void RtfTraces::Draw(QPainter& painter, const QTextDocument& document, const QRectF& clip, Medium medium) {
  if (!store_) return;
  clip_ = clip;
  std::erase_if(marks_, [&clip](const Spot& mark) { return mark.place.intersects(clip); });
  painter.save();
  const QTextBlock first = FirstBlockBelow(document, clip.top());
  rtf::RtfNumbering counter = has_lists_ ? CounterBefore(document, first) : rtf::RtfNumbering(&lists_);
  QTextBlock block = first;
  for (; block.isValid() && TopInDocument(block) <= clip.bottom(); block = block.next()) {
    const QString number = has_lists_ ? NumberOf(block, counter) : QString();
    const QPointF origin = document.documentLayout()->blockBoundingRect(block).topLeft();
    if (block.isVisible() && block.layout()->lineCount() > 0) {
      if (!number.isEmpty() && block.blockFormat().hasProperty(QTextFormat::ListStyle))
        DrawNumber(painter, block, origin, number);
      DrawRuns(painter, block, origin, medium);
    }
  }
  // Asked for its size, the document would lay out the rest.
  const double text_end =
      block.isValid() ? clip.bottom() : document.documentLayout()->blockBoundingRect(document.lastBlock()).bottom();
  if (medium == Medium::Screen) DrawBands(painter, document, text_end);
  painter.restore();
}

void RtfTraces::DrawNumber(QPainter& painter, const QTextBlock& block, const QPointF& origin, const QString& number) {
  const QTextDocument& document = *block.document();
  // In the first block of a cell, the block's own format is the cell's.
  const QTextCharFormat format = block.length() > 1 ? block.begin().fragment().charFormat() : block.charFormat();
  const QFont font(format.font(), document.documentLayout()->paintDevice());
  const QFontMetricsF metrics(font);
  const QTextLine line = block.layout()->lineAt(0);
  const QRectF text = line.naturalTextRect().translated(origin);
  const double width = metrics.horizontalAdvance(number), gap = metrics.horizontalAdvance(u' ');
  const auto& paragraph = store_->document.paragraph_formats[static_cast<std::size_t>(FormatOf(block))];
  const ListStyle::Side side =
      paragraph.list_id == 0 ? ListStyle::Side::Left : lists_.Find(paragraph.list_id, paragraph.list_level).side;
  // Where the paragraph's first line hangs out, it stands there by the side that the list says; else it ends at the
  // text.
  const double hanging = std::max(-paragraph.first_line * ResolutionOf(document) / kTwipsPerInch, 0.0);
  const double before = side == ListStyle::Side::Left ? 0 : side == ListStyle::Side::Middle ? width / 2 : width;
  const double room = width - before + gap <= hanging ? hanging + before : width + gap;
  const bool is_rtl = block.textDirection() == Qt::RightToLeft;
  painter.setFont(font);
  painter.setPen(format.foreground().style() == Qt::NoBrush ? QColor(Qt::black) : format.foreground().color());
  painter.drawText(
      QPointF(is_rtl ? text.right() + room - width : text.left() - room, origin.y() + line.y() + line.ascent()),
      number);
}

const RtfTraces::Revision& RtfTraces::RevisionOf(int index, const QTextCharFormat& format) {
  const auto at = static_cast<std::size_t>(index);
  if (revisions_.size() <= at) revisions_.resize(at + 1);
  std::optional<Revision>& known = revisions_[at];
  if (!known) known = texts_->OfFormat(format.intProperty(kCharFormat));
  return *known;
}

void RtfTraces::DrawRuns(QPainter& painter, const QTextBlock& block, const QPointF& origin, Medium medium) {
  const bool flags = medium == Medium::Screen && !store_->attached.empty();
  int before = 0;
  for (QTextBlock::iterator it = block.begin(); !it.atEnd(); ++it) {
    const QTextFragment run = it.fragment();
    const QTextCharFormat format = run.charFormat();
    if (const Revision& revision = RevisionOf(run.charFormatIndex(), format); revision.mark != Mark::None)
      DrawRevision(painter, block, origin, run, revision);
    const int attached = format.intProperty(kAttached);
    // Text that was split names the same as the text before.
    if (flags && attached != before) DrawFlag(painter, block, origin, run.position(), attached);
    before = attached;
  }
  DrawRevisedEnd(painter, block, origin);
  if (flags)
    DrawFlag(painter, block, origin, block.position() + block.length() - 1, block.blockFormat().intProperty(kAttached));
}

void RtfTraces::DrawChangeBar(QPainter& painter, double top, double height, RtfTraceTexts::Mark mark) {
  painter.fillRect(QRectF(kChangeBarLeft, top, kChangeBarWidth, height), ColorOf(mark));
}

/// A line under or through the text, none for a change of its format, and a bar at the edge of the page.
void RtfTraces::DrawRevision(QPainter& painter, const QTextBlock& block, const QPointF& origin,
                             const QTextFragment& run, const Revision& revision) {
  const int begin = run.position() - block.position(), end = begin + run.length();
  const QTextLayout& layout = *block.layout();
  for (int number = 0; number < layout.lineCount(); ++number) {
    const QTextLine line = layout.lineAt(number);
    const int from = std::max(begin, line.textStart()), to = std::min(end, line.textStart() + line.textLength());
    const double top = origin.y() + line.y();
    if (from >= to || top > clip_.bottom() || top + line.height() < clip_.top()) continue;
    const double left = origin.x() + line.cursorToX(from), right = origin.x() + line.cursorToX(to);
    const double weight = std::max(1.0, line.ascent() / kLinesOfAscent);
    const double under = top + line.ascent() + 2 * weight, through = top + line.ascent() * kStrikeHeight;
    const double y = revision.mark == Mark::Inserted ? under : through;
    painter.setPen(QPen(ColorOf(revision.mark), weight));
    if (revision.mark != Mark::Changed) painter.drawLine(QPointF(left, y), QPointF(right, y));
    DrawChangeBar(painter, top, line.height(), revision.mark);
    AddMark(QRectF(QPointF(left, top), QPointF(right, top + line.height())).normalized(), revision.tip);
  }
}

void RtfTraces::DrawRevisedEnd(QPainter& painter, const QTextBlock& block, const QPointF& origin) {
  // The document's last paragraph has no end that could go, and the first one of a cell has its own elsewhere.
  if (!block.next().isValid() || block.blockFormat().hasProperty(kMarkFormat)) return;
  const Revision& revision = RevisionOf(block.charFormatIndex(), block.charFormat());
  if (revision.mark != Mark::Inserted && revision.mark != Mark::Deleted) return;
  const QTextLine line = block.layout()->lineAt(block.layout()->lineCount() - 1);
  const QRectF text = line.naturalTextRect().translated(origin);
  const bool is_rtl = block.textDirection() == Qt::RightToLeft;
  const QFont font(block.charFormat().font(), block.document()->documentLayout()->paintDevice());
  const double width = QFontMetricsF(font).horizontalAdvance(kPilcrow);
  const double left = is_rtl ? text.left() - width : text.right();
  const double top = origin.y() + line.y();
  painter.setFont(font);
  painter.setPen(ColorOf(revision.mark));
  painter.drawText(QPointF(left, top + line.ascent()), QString(kPilcrow));
  DrawChangeBar(painter, top, line.height(), revision.mark);
  AddMark({left, top, width, line.height()}, revision.tip);
}

void RtfTraces::DrawFlag(QPainter& painter, const QTextBlock& block, const QPointF& origin, int position,
                         int attached) {
  if (attached <= 0) return;
  const QString& text = AttachedText(attached);
  if (text.isEmpty()) return;
  const QTextLine line = block.layout()->lineForTextPosition(position - block.position());
  if (!line.isValid()) return;
  const QPointF tip(origin.x() + line.cursorToX(position - block.position()), origin.y() + line.y());
  painter.setPen(Qt::NoPen);
  painter.setBrush(kFlagColor);
  painter.drawPolygon(QPolygonF({tip, tip + QPointF(kFlagSize, 0), tip + QPointF(0, kFlagSize)}));
  AddMark({tip.x() - 1, tip.y(), kFlagSize * 2, line.height()}, text);
}

const QString& RtfTraces::AttachedText(int attached) {
  const auto at = static_cast<std::size_t>(attached) - 1;
  if (attached_texts_.size() <= at) attached_texts_.resize(at + 1);
  if (!attached_texts_[at]) attached_texts_[at] = texts_->OfAttached(store_->attached[at]);
  return *attached_texts_[at];
}

void RtfTraces::DrawBands(QPainter& painter, const QTextDocument& document, double text_end) {
  const double scale = ResolutionOf(document) / kDefaultResolution;
  const double room = kBandUnits * scale, edge = kBandEdge * scale;
  QFont font;
  font.setPixelSize(std::max(kLeastBandFont, static_cast<int>(ResolutionOf(document) / kBandFontsPerInch)));
  const QFontMetricsF metrics(font);
  for (const auto& [band, top] : {std::pair(&top_, edge), std::pair(&bottom_, text_end + edge)}) {
    if (band->text.isEmpty()) continue;
    const double left = document.documentMargin() * scale, padding = metrics.height();
    double width = std::min(metrics.horizontalAdvance(band->text), padding * kMaxBandEms);
    if (document.textWidth() > 0) width = std::clamp(document.textWidth() - 2 * left - padding, 0.0, width);
    const QRectF place(left, top, width + padding, room - edge);
    if (!place.intersects(clip_)) continue;
    painter.setFont(font);
    painter.setPen(kBandBorder);
    painter.setBrush(kBandFill);
    painter.drawRoundedRect(place, 3, 3);
    painter.setPen(kBandText);
    painter.drawText(place, Qt::AlignCenter, metrics.elidedText(band->text, Qt::ElideRight, width + 1));
    AddMark(place, band->tip);
  }
}

void RtfTraces::AddMark(const QRectF& place, const QString& tip) {
  if (place.intersects(clip_)) marks_.push_back({place, tip});
}

QString RtfTraces::TipAt(const QPointF& point) const {
  const auto found =
      std::find_if(marks_.rbegin(), marks_.rend(), [&point](const Spot& mark) { return mark.place.contains(point); });
  return found == marks_.rend() ? QString() : found->tip;
}

}  // namespace tme
