// The attributes of the selection of RtfPad.

#include <QTextBlock>
#include <QTextList>
#include <algorithm>
#include <utility>

#include "system/Twips.h"
#include "windows/rich/RtfPad.h"
#include "windows/rich/RtfShape.h"

namespace tme {
namespace {

constexpr double kSmallestPoints = 0.5;  ///< as 0 is shown and kept
constexpr double kLargestPoints = 16'383;

bool IsBulleted(const QTextBlock& block) {
  const QTextList* list = block.textList();
  // The styles above that of the numbers are bullets.
  return list && list->format().style() > QTextListFormat::ListDecimal;
}

}  // namespace

template <typename Of>
auto RtfPad::Uniform(Of of) const -> std::optional<decltype(of(QTextCharFormat()))> {
  const QTextCursor cursor = textCursor();
  if (!cursor.hasSelection()) return of(currentCharFormat());
  selection_formats_.Follow(cursor, revision_);
  std::optional<decltype(of(currentCharFormat()))> value;
  for (std::size_t index = 0; const QTextCharFormat* format = selection_formats_.At(index); ++index) {
    const auto here = of(*format);
    if (value && *value != here) return std::nullopt;
    value = here;
  }
  return value ? value : of(currentCharFormat());
}

std::optional<bool> RtfPad::SelectionBold() const {
  return Uniform([](const QTextCharFormat& format) { return format.fontWeight() > QFont::Medium; });
}

std::optional<bool> RtfPad::SelectionItalic() const {
  return Uniform([](const QTextCharFormat& format) { return format.fontItalic(); });
}

std::optional<bool> RtfPad::SelectionUnderline() const {
  return Uniform([](const QTextCharFormat& format) { return format.underlineStyle() != QTextCharFormat::NoUnderline; });
}

std::optional<QColor> RtfPad::SelectionColor() const {
  return Uniform([](const QTextCharFormat& format) {
    return format.foreground().style() == Qt::NoBrush ? QColor(Qt::black) : format.foreground().color();
  });
}

std::optional<QString> RtfPad::SelectionFontName() const {
  return Uniform([this](const QTextCharFormat& format) {
    const QString name = format.fontFamilies().toStringList().value(0);
    return name.isEmpty() ? document()->defaultFont().family() : name;
  });
}

std::optional<double> RtfPad::SelectionFontSize() const {
  return Uniform([this](const QTextCharFormat& format) {
    double points = format.fontPointSize();
    if (points <= 0) points = document()->defaultFont().pointSizeF();
    return points <= kSmallestPoints ? 0.0 : points;
  });
}

std::optional<bool> RtfPad::SelectionBullet() const {
  const QTextCursor cursor = textCursor();
  QTextBlock block = document()->findBlock(cursor.selectionStart());
  const QTextBlock last = document()->findBlock(std::max(cursor.selectionEnd() - 1, cursor.selectionStart()));
  const bool first = IsBulleted(block);
  for (int known = block.blockFormatIndex(); block != last;) {
    block = block.next();
    const int here = block.blockFormatIndex();
    if (std::exchange(known, here) != here && IsBulleted(block) != first) return std::nullopt;
  }
  return first;
}

template <typename Set>
void RtfPad::MergeFormat(Set set) {
  if (!Complete()) return;
  QTextCharFormat format;
  set(format);
  // Without a selection this sets what is typed next, and marks nothing.
  const LargeEdit edit(*this);
  mergeCurrentCharFormat(format);
}

void RtfPad::SetSelectionBold(bool bold) {
  MergeFormat([&](QTextCharFormat& format) { format.setFontWeight(bold ? QFont::Bold : QFont::Normal); });
}

void RtfPad::SetSelectionItalic(bool italic) {
  MergeFormat([&](QTextCharFormat& format) { format.setFontItalic(italic); });
}

void RtfPad::SetSelectionUnderline(bool underline) {
  MergeFormat([&](QTextCharFormat& format) {
    format.setUnderlineStyle(underline ? QTextCharFormat::SingleUnderline : QTextCharFormat::NoUnderline);
  });
}

void RtfPad::SetSelectionStrikeThru(bool strike) {
  MergeFormat([&](QTextCharFormat& format) { format.setFontStrikeOut(strike); });
}

void RtfPad::SetSelectionColor(const QColor& color) {
  MergeFormat([&](QTextCharFormat& format) { format.setForeground(color); });
}

void RtfPad::SetSelectionFontName(const QString& name) {
  MergeFormat([&](QTextCharFormat& format) { format.setFontFamilies({name}); });
}

void RtfPad::SetSelectionFontSize(double points) {
  MergeFormat(
      [&](QTextCharFormat& format) { format.setFontPointSize(std::clamp(points, kSmallestPoints, kLargestPoints)); });
}

void RtfPad::SetSelectionBullet(bool bullet) {
  if (!Complete()) return;
  QTextCursor cursor = textCursor();
  const int end = cursor.selectionEnd();
  const LargeEdit edit(*this);
  cursor.beginEditBlock();
  QTextListFormat list_format;
  list_format.setStyle(QTextListFormat::ListDisc);
  list_format.setIndent(0);
  QTextList* list = nullptr;
  QTextBlock block = document()->findBlock(cursor.selectionStart());
  do {
    if (IsBulleted(block) != bullet) {
      QTextCursor at(block);
      QTextBlockFormat format = block.blockFormat();
      const double indent = TwipsToUnits(bullet_indent_);
      if (bullet) {
        format.clearProperty(QTextFormat::ListStyle);
        format.setLeftMargin(format.leftMargin() + indent);
        format.setTextIndent(0);
      } else {
        block.textList()->remove(block);
        format.setObjectIndex(-1);
        format.setLeftMargin(std::max(format.leftMargin() - indent, 0.0));
      }
      at.setBlockFormat(format);
      if (bullet && list && list->count() < kItemsOfList)
        list->add(block);
      else if (bullet)
        list = at.createList(list_format);
    }
    block = block.next();
  } while (block.isValid() && block.position() < end);
  cursor.endEditBlock();
}

}  // namespace tme
