#include "windows/rich/RtfPageHeight.h"

#include <QTextDocument>
#include <QTextFormat>
#include <QTextFrame>
#include <QTextTable>
#include <algorithm>

#include "windows/rich/RtfStore.h"

namespace tme {
namespace {

// Without pages, the layout takes INT_MAX / 256 pixels for the height of its only page and never ends where one step
// passes that. The tall page is the most that its coordinates can hold; text that is taller still is shown wrongly.
constexpr double kTallPage = 33'554'431;
constexpr double kPageWithoutEnd = -1;
constexpr double kMostOnOnePage = 8'388'607;
// Generous means of what a paragraph takes beyond what its formats say, and a character where lines wrap.
constexpr double kParagraphPixels = 84, kCharacterPixels = 8, kPixelsPerPoint = 2;
// On a page that has a height, all tables are laid out with each key: where there are any, the estimate is closer.
constexpr double kParagraphPixelsBesideTables = 16;

/// How many cells stand beside the first one of their row, in the tables of a frame.
int CellsBesideOthers(const QTextFrame& frame, const RtfStore& store) {
  int cells = 0;
  for (const QTextFrame* child : frame.childFrames()) {
    if (const auto* table = qobject_cast<const QTextTable*>(child)) {
      const int number = table->format().intProperty(kTable);
      // One that no file has made may have cells over several rows.
      const bool is_plain = number > 0 && !store.tables[static_cast<std::size_t>(number) - 1].has_spans &&
                            store.tables[static_cast<std::size_t>(number) - 1].columns == table->columns();
      if (is_plain) cells += table->rows() * (table->columns() - 1);
    }
    cells += CellsBesideOthers(*child, store);
  }
  return cells;
}

}  // namespace

void RtfPageHeight::LookAtFormats(const QTextDocument& view) {
  const QList<QTextFormat> formats = view.allFormats();
  for (; formats_seen_ < formats.size(); ++formats_seen_) {
    const QTextBlockFormat block = formats[formats_seen_].toBlockFormat();
    const bool fixed = block.lineHeightType() > QTextBlockFormat::ProportionalHeight;
    format_pixels_ =
        std::max({format_pixels_, block.topMargin() + block.bottomMargin() + (fixed ? block.lineHeight() : 0),
                  formats[formats_seen_].doubleProperty(QTextFormat::FontPointSize) * kPixelsPerPoint});
  }
}

double RtfPageHeight::Of(const QTextDocument& view, const RtfStore& store, int percent) {
  LookAtFormats(view);
  const bool has_tables = !view.rootFrame()->childFrames().isEmpty();
  const double paragraph = format_pixels_ + (has_tables ? kParagraphPixelsBesideTables : kParagraphPixels);
  const int characters = view.characterCount() - view.blockCount();
  const int paragraphs = view.blockCount() - (has_tables ? CellsBesideOthers(*view.rootFrame(), store) : 0);
  return (paragraphs * paragraph + characters * kCharacterPixels) * percent / 100 > kMostOnOnePage ? kTallPage
                                                                                                   : kPageWithoutEnd;
}

}  // namespace tme
