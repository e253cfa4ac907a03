#include "windows/rich/RtfNewTable.h"

#include <QTextBlock>
#include <QTextTable>
#include <algorithm>
#include <iterator>
#include <string_view>

#include "system/Twips.h"

namespace tme {
namespace {

constexpr int kWidthOfPage = 9000;  // twips
constexpr int kWidthOfCharacter = 120;
constexpr int kWidthOfPadding = 216;
constexpr int kLeastWidth = 300;
constexpr int kMostCharacters = 60;  ///< of a line that a column is made wide for
constexpr int kWidestBorder = 75;    ///< that the format knows
constexpr int kPercent = 100;

struct Side {
  std::string_view word;
  QTextFormat::Property width, style, brush;
};
constexpr Side kSides[] = {{"\\clbrdrt", QTextFormat::TableCellTopBorder, QTextFormat::TableCellTopBorderStyle,
                            QTextFormat::TableCellTopBorderBrush},
                           {"\\clbrdrl", QTextFormat::TableCellLeftBorder, QTextFormat::TableCellLeftBorderStyle,
                            QTextFormat::TableCellLeftBorderBrush},
                           {"\\clbrdrb", QTextFormat::TableCellBottomBorder, QTextFormat::TableCellBottomBorderStyle,
                            QTextFormat::TableCellBottomBorderBrush},
                           {"\\clbrdrr", QTextFormat::TableCellRightBorder, QTextFormat::TableCellRightBorderStyle,
                            QTextFormat::TableCellRightBorderBrush}};

std::string_view WordOf(int style) {
  switch (style) {
    case QTextFrameFormat::BorderStyle_Dotted:
      return "\\brdrdot";
    case QTextFrameFormat::BorderStyle_Dashed:
      return "\\brdrdash";
    case QTextFrameFormat::BorderStyle_Double:
      return "\\brdrdb";
    default:
      return "\\brdrs";
  }
}

int LongestLine(const QTextTableCell& cell) {
  int longest = 0;
  for (auto it = cell.begin(); !it.atEnd(); ++it)
    if (it.currentBlock().isValid()) longest = std::max(longest, it.currentBlock().length());
  return std::min(longest, kMostCharacters);
}

}  // namespace

RtfNewTable::RtfNewTable(const QTextTable& table, const ColorOf& color_of) : table_(table), color_of_(color_of) {
  FindEdges();
}

std::vector<int> RtfNewTable::NaturalWidths() const {
  std::vector<int> widths(static_cast<std::size_t>(table_.columns()), kLeastWidth);
  for (int row = 0; row < table_.rows(); ++row) {
    for (int column = 0; column < table_.columns(); ++column) {
      const QTextTableCell cell = table_.cellAt(row, column);
      const bool is_here = cell.row() == row && cell.column() == column && cell.columnSpan() == 1;
      int& width = widths[static_cast<std::size_t>(column)];
      if (is_here) width = std::max(width, LongestLine(cell) * kWidthOfCharacter + kWidthOfPadding);
    }
  }
  return widths;
}

/// What is said of widths counts; the columns of which nothing is said share what is left as their text is long.
void RtfNewTable::FindEdges() {
  const QTextTableFormat format = table_.format();
  const QTextLength whole = format.width();
  const auto in_twips = [](const QTextLength& length, int of) {
    if (length.type() == QTextLength::FixedLength) return UnitsToTwips(length.rawValue());
    return length.type() == QTextLength::PercentageLength ? static_cast<int>(length.rawValue() * of / kPercent) : 0;
  };
  std::vector<int> widths = NaturalWidths();
  const int said = std::min(in_twips(whole, kWidthOfPage), kWidthOfPage);
  const QList<QTextLength> columns = format.columnWidthConstraints();
  std::vector<bool> is_fixed(widths.size());
  int fixed = 0, free = 0;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const auto column = static_cast<qsizetype>(i);
    const int width = column < columns.size() ? in_twips(columns[column], said > 0 ? said : kWidthOfPage) : 0;
    is_fixed[i] = width > 0;
    if (width > 0) widths[i] = std::clamp(width, kLeastWidth, kWidthOfPage);
    (width > 0 ? fixed : free) += widths[i];
  }
  const int wanted = said > 0 ? said : std::min(fixed + free, kWidthOfPage);
  const double scale = free > 0 ? std::max(wanted - fixed, 0) / static_cast<double>(free) : 1;
  edges_.push_back(0);
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const int width = is_fixed[i] ? widths[i] : static_cast<int>(widths[i] * scale);
    edges_.push_back(edges_.back() + std::max(width, kLeastWidth));
  }
}

/// The cell's own, else that of the table.
void RtfNewTable::AddBorder(const QTextTableCell& cell, std::size_t side, std::string& definition) const {
  const Side& of = kSides[side];
  const QTextFormat cell_format = cell.format();
  const QTextTableFormat format = table_.format();
  const bool is_own = cell_format.hasProperty(of.width);
  const double width = is_own ? cell_format.doubleProperty(of.width) : format.border();
  const int style = is_own ? cell_format.intProperty(of.style) : static_cast<int>(format.borderStyle());
  if (width <= 0 || style == QTextFrameFormat::BorderStyle_None) return;
  const int brush = is_own ? of.brush : QTextFormat::FrameBorderBrush;
  const QTextFormat& painted = is_own ? cell_format : format;
  definition.append(of.word).append(WordOf(style));
  definition.append("\\brdrw").append(std::to_string(std::min(UnitsToTwips(width), kWidestBorder)));
  const std::uint32_t color = painted.hasProperty(brush) ? color_of_(painted.brushProperty(brush)) : 0;
  if (color > 0) definition.append("\\brdrcf").append(std::to_string(color));
}

/// Untranslated control words.
void RtfNewTable::AddCell(const QTextTableCell& cell, const rtf::Cell& made, std::string& definition) const {
  if (definition.empty()) {
    definition = "\\trowd\\trgaph108";
    const Qt::Alignment alignment = table_.format().alignment();
    if (alignment & Qt::AlignHCenter) definition += "\\trqc";
    if (alignment & Qt::AlignRight) definition += "\\trqr";
    if (cell.row() < table_.format().headerRowCount()) definition += "\\trhdr";
  }
  if (made.row_span != 1) definition += made.row_span == 0 ? "\\clvmrg" : "\\clvmgf";
  const QTextCharFormat format = cell.format();
  if (format.verticalAlignment() == QTextCharFormat::AlignMiddle) definition += "\\clvertalc";
  if (format.verticalAlignment() == QTextCharFormat::AlignBottom) definition += "\\clvertalb";
  for (std::size_t side = 0; side < std::size(kSides); ++side) AddBorder(cell, side, definition);
  const QBrush background =
      format.hasProperty(QTextFormat::BackgroundBrush) ? format.background() : table_.format().background();
  if (const std::uint32_t color = color_of_(background); color > 0)
    definition.append("\\clcbpat").append(std::to_string(color));
  definition.append("\\cellx").append(std::to_string(made.right_edge));
}

}  // namespace tme
