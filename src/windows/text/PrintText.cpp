#include "windows/text/PrintText.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>
#include <QTextLayout>

#include "base/Utf8.h"
#include "system/Twips.h"

namespace tme {
namespace {

constexpr double kLeastMarginMm = 20;
constexpr int kTabColumns = 8;
/// A line is laid out in pieces of this many bytes, so that one of any length can be printed.
constexpr std::size_t kPieceBytes = 8192;

/// What is left for text on the page, in device dots from the corner that the painter starts at.
QRectF TextArea(const QPrinter& printer) {
  const QPageLayout layout = printer.pageLayout();
  const QMarginsF own = layout.margins(QPageLayout::Millimeter);
  const auto more = [&](double margin) {
    return std::max(0.0, kLeastMarginMm - margin) / 25.4 * static_cast<double>(printer.resolution());
  };
  const QRectF paint(QPointF(), layout.paintRectPixels(printer.resolution()).size());
  return paint.marginsRemoved({more(own.left()), more(own.top()), more(own.right()), more(own.bottom())});
}

/// The next line without its end (CR LF, LF or CR).
std::string_view TakeLine(std::string_view& rest) {
  const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end);
  if (rest.starts_with("\r\n")) rest.remove_prefix(1);
  if (!rest.empty()) rest.remove_prefix(1);
  return line;
}

/// The next piece of a line, whole characters.
std::string_view TakePiece(std::string_view& line) {
  std::size_t end = std::min(kPieceBytes, line.size());
  while (end < line.size() && utf8::IsContinuation(line[end])) ++end;
  const std::string_view piece = line.substr(0, end);
  line.remove_prefix(end);
  return piece;
}

class PagePrinter {
 public:
  PagePrinter(QPrinter& printer, const QFont& font)
      : printer_(printer), area_(TextArea(printer)), font_(font, &printer), y_(area_.top()) {
    const QFontMetricsF metrics(font_, &printer_);
    line_height_ = metrics.lineSpacing();
    option_.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    // The layout takes this one length in the screen's units and scales it to the font's resolution itself.
    const double units_per_dot = TwipsToUnits(kTwipsPerInch) / printer.logicalDpiY();
    option_.setTabStopDistance(kTabColumns * metrics.horizontalAdvance(QLatin1Char(' ')) * units_per_dot);
    painter_.begin(&printer_);
  }

  void PrintLine(std::string_view line) {
    if (line.starts_with('\f')) {
      NewPage();
      line.remove_prefix(1);
    }
    if (line.empty()) y_ += line_height_;
    while (!line.empty()) PrintPiece(TakePiece(line));
  }

 private:
  void PrintPiece(std::string_view piece) {
    QTextLayout layout(QString::fromUtf8(piece.data(), static_cast<qsizetype>(piece.size())), font_, &printer_);
    layout.setTextOption(option_);
    layout.beginLayout();
    for (QTextLine row = layout.createLine(); row.isValid(); row = layout.createLine()) {
      row.setLineWidth(area_.width());
      if (y_ + row.height() > area_.bottom() && y_ > area_.top()) NewPage();
      row.draw(&painter_, QPointF(area_.left(), y_));
      y_ += row.height();
    }
    layout.endLayout();
  }

  void NewPage() {
    printer_.newPage();
    y_ = area_.top();
  }

  QPrinter& printer_;
  const QRectF area_;
  const QFont font_;
  QTextOption option_;
  double line_height_ = 0;
  double y_;
  QPainter painter_;
};

}  // namespace

void PrintText(QPrinter& printer, std::string_view text, const QFont& font) {
  PagePrinter pages(printer, font);
  while (!text.empty()) pages.PrintLine(TakeLine(text));
}

}  // namespace tme
