// How the bytes look, and where they are.
#include "windows/reg/HexView.h"

#include <QFocusEvent>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cmath>
#include <utility>

#include "windows/reg/HexViewAccessible.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kOffsetDigits = 8;
constexpr int kFirstDigits = kOffsetDigits + 2;
constexpr int kFirstCharacter = kFirstDigits + 3 * HexView::kRowBytes + 2;
constexpr int kHalf = HexView::kRowBytes / 2;
static_assert(kFirstCharacter + HexView::kRowBytes == HexView::kRowCharacters);
constexpr int kMargin = 4;  // pixels
constexpr int kHintRows = 16;
constexpr int kLeastRows = 4;

QChar CharacterShownFor(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  const bool has_none = code < 0x20 || (code >= 0x7F && code <= 0xA0) || code == 0xAD;
  return has_none ? u'.' : QChar(char16_t{code});
}

QString DigitsOf(qsizetype number, int width) { return QString::number(number, 16).rightJustified(width, u'0'); }

}  // namespace

HexView::HexView(QWidget* parent) : QAbstractScrollArea(parent) {
  HexViewAccessible::Install();
  setObjectName(u"HexView"_s);
  setAccessibleName(tr("Bytes"));
  setFocusPolicy(Qt::StrongFocus);
  viewport()->setCursor(Qt::IBeamCursor);
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  setAttribute(Qt::WA_InputMethodEnabled, false);
  MeasureFont();
}

void HexView::SetBytes(QByteArray bytes) {
  bytes_ = std::move(bytes);
  edits_.clear();
  edit_count_ = 0;
  edits_size_ = 0;
  UpdateScrollBars();
  MoveCursor(0, Anchor::Moves);
  verticalScrollBar()->setValue(0);
  emit BytesChanged();
}

int HexView::CharacterOf(int byte_in_row, Column column) {
  if (column == Column::Text) return kFirstCharacter + byte_in_row;
  return kFirstDigits + 3 * byte_in_row + (byte_in_row < kHalf ? 0 : 1);
}

QString HexView::RowText(qsizetype row) const {
  const qsizetype first = row * kRowBytes;
  QString text = DigitsOf(first, kOffsetDigits).leftJustified(kRowCharacters, u' ');
  for (int i = 0; i < kRowBytes && first + i < bytes_.size(); ++i) {
    const QString digits = DigitsOf(static_cast<unsigned char>(bytes_[first + i]), 2);
    text[CharacterOf(i, Column::Digits)] = digits[0];
    text[CharacterOf(i, Column::Digits) + 1] = digits[1];
    text[CharacterOf(i, Column::Text)] = CharacterShownFor(bytes_[first + i]);
  }
  return text;
}

QString HexView::StatusText() const {
  const QLocale locale;
  const QString place =
      tr("Offset %1 (0x%2) of %3")
          .arg(locale.toString(cursor_), QString::number(cursor_, 16), locale.toString(bytes_.size()));
  const QString mode = overwrites_ ? tr("overwriting (Insert switches)") : tr("inserting (Insert switches)");
  const qsizetype selected = SelectionEnd() - SelectionStart();
  if (selected == 0) return place + u"; "_s + mode;
  return place + u"; "_s + tr("%1 selected").arg(locale.toString(selected)) + u"; "_s + mode;
}

void HexView::MeasureFont() {
  const QFontMetricsF metrics(font());
  cell_width_ = std::max<qreal>(metrics.horizontalAdvance(u'0'), 1);
  row_height_ = std::max(static_cast<int>(std::ceil(metrics.height())), 1);
}

qreal HexView::XOf(int character) const {
  return kMargin + character * cell_width_ - static_cast<qreal>(horizontalScrollBar()->value());
}

QRect HexView::RectOf(qsizetype byte, Column column) const {
  const auto in_row = static_cast<int>(byte % kRowBytes);
  const qsizetype row = byte / kRowBytes - verticalScrollBar()->value();
  const int width = column == Column::Digits ? 2 : 1;
  return QRectF(XOf(CharacterOf(in_row, column)), static_cast<qreal>(row * row_height_), width * cell_width_,
                row_height_)
      .toAlignedRect();
}

qsizetype HexView::ByteAt(const QPoint& point) const {
  const auto character = static_cast<int>((point.x() - XOf(0)) / cell_width_);
  int in_row = character - kFirstCharacter;
  if (in_row < 0) {
    in_row = 0;
    while (in_row + 1 < kRowBytes && CharacterOf(in_row + 1, Column::Digits) <= character) ++in_row;
  }
  const qsizetype row =
      verticalScrollBar()->value() + static_cast<qsizetype>(std::floor(point.y() / qreal(row_height_)));
  return std::clamp<qsizetype>(row * kRowBytes + std::clamp(in_row, 0, kRowBytes - 1), 0, bytes_.size());
}

QSize HexView::sizeHint() const {
  const int frame = 2 * frameWidth();
  const int width = static_cast<int>(std::ceil(kRowCharacters * cell_width_)) + 2 * kMargin;
  return {width + verticalScrollBar()->sizeHint().width() + frame, kHintRows * row_height_ + frame};
}

QSize HexView::minimumSizeHint() const {
  return {sizeHint().width() / 2, kLeastRows * row_height_ + horizontalScrollBar()->sizeHint().height()};
}

void HexView::UpdateScrollBars() {
  const auto page = std::max(viewport()->height() / row_height_, 1);
  verticalScrollBar()->setPageStep(page);
  verticalScrollBar()->setRange(0, static_cast<int>(std::max<qsizetype>(RowCount() - page, 0)));
  const int width = static_cast<int>(std::ceil(kRowCharacters * cell_width_)) + 2 * kMargin;
  horizontalScrollBar()->setPageStep(viewport()->width());
  horizontalScrollBar()->setSingleStep(static_cast<int>(cell_width_));
  horizontalScrollBar()->setRange(0, std::max(width - viewport()->width(), 0));
}

void HexView::Reveal(qsizetype byte) {
  const auto row = static_cast<int>(byte / kRowBytes);
  QScrollBar* rows = verticalScrollBar();
  if (row < rows->value()) rows->setValue(row);
  if (row >= rows->value() + rows->pageStep()) rows->setValue(row - rows->pageStep() + 1);
  const QRect rect = RectOf(byte, column_);
  QScrollBar* pixels = horizontalScrollBar();
  if (rect.left() < 0) pixels->setValue(pixels->value() + rect.left() - kMargin);
  if (rect.right() >= viewport()->width())
    pixels->setValue(pixels->value() + rect.right() - viewport()->width() + kMargin);
}

void HexView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  UpdateScrollBars();
  if (hasFocus()) Reveal(cursor_);
}

void HexView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) {
    MeasureFont();
    UpdateScrollBars();
    updateGeometry();
  }
  QAbstractScrollArea::changeEvent(event);
}

void HexView::focusInEvent(QFocusEvent* event) {
  if (event->reason() == Qt::TabFocusReason) column_ = Column::Digits;
  if (event->reason() == Qt::BacktabFocusReason) column_ = Column::Text;
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
}

void HexView::focusOutEvent(QFocusEvent* event) {
  is_at_low_digit_ = false;
  QAbstractScrollArea::focusOutEvent(event);
  viewport()->update();
}

bool HexView::focusNextPrevChild(bool next) {
  const Column last = next ? Column::Text : Column::Digits;
  if (column_ == last) return QAbstractScrollArea::focusNextPrevChild(next);
  column_ = last;
  is_at_low_digit_ = false;
  Reveal(cursor_);
  viewport()->update();
  emit CursorMoved();
  return true;
}

void HexView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  column_ = event->position().x() < XOf(kFirstCharacter) - cell_width_ / 2 ? Column::Digits : Column::Text;
  const bool extends = event->modifiers().testFlag(Qt::ShiftModifier);
  MoveCursor(ByteAt(event->position().toPoint()), extends ? Anchor::Stays : Anchor::Moves);
}

void HexView::mouseMoveEvent(QMouseEvent* event) {
  if (!event->buttons().testFlag(Qt::LeftButton)) return;
  qsizetype byte = ByteAt(event->position().toPoint());
  // The byte under the pointer is selected too, when it lies behind the first one.
  if (byte >= anchor_ && byte < bytes_.size() && event->position().x() > RectOf(byte, column_).center().x()) ++byte;
  MoveCursor(byte, Anchor::Stays);
}

void HexView::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  painter.setFont(font());
  const qsizetype first = verticalScrollBar()->value();
  const qsizetype end = std::min(RowCount(), first + viewport()->height() / row_height_ + 1);
  for (qsizetype row = first; row < end; ++row) PaintRow(painter, row);
  PaintCursor(painter);
}

void HexView::PaintRow(QPainter& painter, qsizetype row) const {
  const QString text = RowText(row);
  const auto top = static_cast<qreal>((row - verticalScrollBar()->value()) * row_height_);
  painter.setPen(palette().color(QPalette::PlaceholderText));
  painter.drawText(QPointF(XOf(0), top + QFontMetricsF(font()).ascent()), text.left(kOffsetDigits));
  PaintColumn(painter, row, text, Column::Digits);
  PaintColumn(painter, row, text, Column::Text);
}

void HexView::PaintColumn(QPainter& painter, qsizetype row, const QString& text, Column column) const {
  const qsizetype first = row * kRowBytes;
  const auto in_row = [first](qsizetype byte) {
    return static_cast<int>(std::clamp<qsizetype>(byte - first, 0, kRowBytes));
  };
  const std::array borders{0, in_row(SelectionStart()), in_row(SelectionEnd()), kRowBytes};
  const auto top = static_cast<qreal>((row - verticalScrollBar()->value()) * row_height_);
  for (std::size_t run = 0; run + 1 < borders.size(); ++run) {
    if (borders[run] == borders[run + 1]) continue;
    const int from = CharacterOf(borders[run], column);
    const int end = CharacterOf(borders[run + 1] - 1, column) + (column == Column::Digits ? 2 : 1);
    QPalette::ColorRole role = QPalette::Text;
    if (run == 1) {
      QColor color = palette().color(QPalette::Highlight);
      if (column == column_)
        role = QPalette::HighlightedText;
      else
        color.setAlphaF(0.3F);
      painter.fillRect(QRectF(XOf(from), top, (end - from) * cell_width_, row_height_), color);
    }
    painter.setPen(palette().color(role));
    painter.drawText(QPointF(XOf(from), top + QFontMetricsF(font()).ascent()), text.mid(from, end - from));
  }
}

void HexView::PaintCursor(QPainter& painter) const {
  for (const Column column : {Column::Digits, Column::Text}) {
    QRect rect = RectOf(cursor_, column);
    const bool is_active = column == column_ && hasFocus();
    if (is_active && column == Column::Digits && is_at_low_digit_)
      rect.setLeft(rect.left() + static_cast<int>(cell_width_));
    if (is_active && !overwrites_ && !is_at_low_digit_) {
      painter.fillRect(QRect(rect.left() - 1, rect.top(), 2, rect.height()), palette().color(QPalette::Text));
      continue;
    }
    painter.setPen(QPen(palette().color(QPalette::Text), is_active ? 2 : 1, is_active ? Qt::SolidLine : Qt::DotLine));
    painter.drawRect(rect.adjusted(0, 0, -1, -1));
  }
}

}  // namespace tme
