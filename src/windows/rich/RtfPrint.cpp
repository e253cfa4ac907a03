#include "windows/rich/RtfPrint.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QPrinter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextOption>
#include <QTextTable>
#include <charconv>

#include "system/Twips.h"
#include "windows/rich/RtfStore.h"
#include "windows/rich/RtfTraces.h"

namespace tme {
namespace {

// What a file means that names no margins, in twips.
constexpr int kSideMargin = 1800;
constexpr int kTopMargin = 1440;
constexpr int kTwipsPerPoint = 20;

/// The number behind a control word; `otherwise` when it is not there, or no margin.
int ControlValue(const std::string& controls, std::string_view word, int otherwise) {
  const std::size_t at = controls.find(word);
  if (at == std::string::npos) return otherwise;
  const char* first = controls.data() + at + word.size();
  int value = 0;
  const auto result = std::from_chars(first, controls.data() + controls.size(), value);
  return result.ec == std::errc() && value >= 0 && value < 4 * kTwipsPerInch ? value : otherwise;
}

/// What follows a page break becomes a paragraph of its own on a new page; its mark is not for paper. Tables are not
/// broken.
void BreakPages(QTextDocument& text) {
  QTextBlockFormat on_new_page;
  on_new_page.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
  for (QTextBlock block = text.begin(); block.isValid(); block = block.next())
    if (block.blockFormat().boolProperty(kPageBreakBefore)) QTextCursor(block).mergeBlockFormat(on_new_page);
  QTextCursor cursor(&text);
  while (!(cursor = text.find(QString(QChar::ObjectReplacementCharacter), cursor)).isNull()) {
    const auto section = static_cast<RtfSectionBreak>(cursor.charFormat().intProperty(kSectionBreak));
    if (cursor.charFormat().intProperty(kObject) != kPageBreak && section == RtfSectionBreak::None) continue;
    cursor.removeSelectedText();
    if (cursor.currentTable() || section == RtfSectionBreak::SamePage) continue;
    // A section's break ends its paragraph.
    if (section == RtfSectionBreak::Page && cursor.atBlockEnd())
      cursor.movePosition(QTextCursor::NextBlock);
    else if (!cursor.atBlockStart())
      cursor.insertBlock();
    cursor.mergeBlockFormat(on_new_page);
  }
}

}  // namespace

void PrintRtf(QPrinter& printer, QTextDocument& text, const std::string& document_controls, RtfTraces* traces) {
  const auto units = [&](std::string_view word, int otherwise) {
    return TwipsToUnits(ControlValue(document_controls, word, otherwise));
  };
  text.setUndoRedoEnabled(false);
  BreakPages(text);
  printer.setFullPage(true);
  // Laid out in its own units and scaled as a whole: for a printer, the layout would scale fonts, but not all lengths.
  const QSizeF page = printer.pageLayout().fullRect(QPageLayout::Point).size() * TwipsToUnits(kTwipsPerPoint);
  text.setUseDesignMetrics(true);
  QTextOption wrapped = text.defaultTextOption();
  wrapped.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  text.setDefaultTextOption(wrapped);
  text.setPageSize(page);
  QTextFrameFormat frame = text.rootFrame()->frameFormat();
  frame.setLeftMargin(units("\\margl", kSideMargin));
  frame.setRightMargin(units("\\margr", kSideMargin));
  frame.setTopMargin(units("\\margt", kTopMargin));
  frame.setBottomMargin(units("\\margb", kTopMargin));
  text.rootFrame()->setFrameFormat(frame);

  QPainter painter(&printer);
  const double dots_per_unit = printer.resolution() / TwipsToUnits(kTwipsPerInch);
  painter.scale(dots_per_unit, dots_per_unit);
  QAbstractTextDocumentLayout::PaintContext context;
  context.palette.setColor(QPalette::Text, Qt::black);
  const int pages = text.pageCount();
  for (int number = 0; number < pages && painter.isActive(); ++number) {
    if (number > 0 && !printer.newPage()) return;
    const QRectF view(0, number * page.height(), page.width(), page.height());
    painter.save();
    painter.translate(0, -view.top());
    painter.setClipRect(view);
    context.clip = view;
    text.documentLayout()->draw(&painter, context);
    if (traces) traces->Draw(painter, text, view, RtfTraces::Medium::Paper);
    painter.restore();
  }
}

}  // namespace tme
