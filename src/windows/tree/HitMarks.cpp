#include "windows/tree/HitMarks.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <algorithm>

namespace tme {
namespace {

// Read well on each other, in light and dark themes and on a selected row.
constexpr QColor kMarkBackground(255, 213, 79);
constexpr QColor kMarkText(0, 0, 0);

/// Painting one costs as much as all before it.
constexpr qsizetype kMostMarks = 1000;

/// Those of the marks that are left of a text that was cut at its end.
QList<QTextLayout::FormatRange> FormatsOf(const std::vector<MarkedRange>& marks, qsizetype whole, qsizetype shown) {
  const qsizetype end = shown < whole ? std::max<qsizetype>(0, shown - 1) : whole;
  QList<QTextLayout::FormatRange> formats;
  for (const MarkedRange& mark : marks) {
    QTextLayout::FormatRange range;
    // The ellipsis stands for all marks that are out of sight.
    const bool is_last = mark.start >= end || formats.size() == kMostMarks;
    range.start = static_cast<int>(std::min(mark.start, end));
    range.length = static_cast<int>(std::min(mark.start + mark.size, shown < whole ? shown : whole)) - range.start;
    if (range.length <= 0) break;
    range.format.setBackground(kMarkBackground);
    range.format.setForeground(kMarkText);
    formats.push_back(range);
    if (is_last) break;
  }
  return formats;
}

QColor TextColor(const QStyleOptionViewItem& item) {
  const bool is_enabled = item.state.testFlag(QStyle::State_Enabled);
  const bool is_active = item.state.testFlag(QStyle::State_Active);
  const auto group = !is_enabled ? QPalette::Disabled : is_active ? QPalette::Normal : QPalette::Inactive;
  const bool is_selected = item.state.testFlag(QStyle::State_Selected);
  return item.palette.color(group, is_selected ? QPalette::HighlightedText : QPalette::Text);
}

}  // namespace

void HitMarks::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  QStyleOptionViewItem item = option;
  initStyleOption(&item, index);
  const std::vector<MarkedRange> marks = marks_ ? marks_(index, item.text.size()) : std::vector<MarkedRange>();
  if (marks.empty()) return QStyledItemDelegate::paint(painter, option, index);
  const QWidget* view = item.widget;
  const QStyle* style = view ? view->style() : QApplication::style();
  const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, view) + 1;
  const QRect room = style->subElementRect(QStyle::SE_ItemViewItemText, &item, view).adjusted(margin, 0, -margin, 0);
  const QString text = item.text;
  const QString shown = item.fontMetrics.elidedText(text, item.textElideMode, room.width());
  item.text.clear();
  style->drawControl(QStyle::CE_ItemViewItem, &item, painter, view);

  QTextLayout layout(shown, item.font);
  QTextOption text_option;
  text_option.setWrapMode(QTextOption::NoWrap);
  text_option.setTextDirection(item.direction);
  layout.setTextOption(text_option);
  layout.beginLayout();
  QTextLine line = layout.createLine();
  line.setLineWidth(room.width());
  layout.endLayout();
  painter->save();
  painter->setClipRect(room);
  painter->setPen(TextColor(item));
  const QPointF at(room.left(), room.top() + (room.height() - line.height()) / 2);
  layout.draw(painter, at, FormatsOf(marks, text.size(), shown.size()));
  painter->restore();
}

}  // namespace tme
