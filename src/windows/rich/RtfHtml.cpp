#include "windows/rich/RtfHtml.h"

#include <QGuiApplication>
#include <QPalette>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextTable>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfWriter.h"
#include "files/CodePage.h"
#include "windows/rich/ClosedDocument.h"
#include "windows/rich/RtfExport.h"
#include "windows/rich/RtfFormats.h"
#include "windows/rich/RtfHtmlParts.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Of the sizes 1 to 7 of the markup, as the toolkit shows them; 3 is that of other text.
double ScaleOf(int adjustment) {
  constexpr double kScales[] = {0.7, 0.8, 1.0, 1.2, 1.5, 2.0, 2.4};
  constexpr int kNormal = 2;
  return kScales[std::clamp(adjustment + kNormal, 0, static_cast<int>(std::size(kScales)) - 1)];
}

QString FamilyOf(const QString& family) {
  if (family == u"serif"_s) return u"Times New Roman"_s;
  if (family == u"monospace"_s) return u"Courier New"_s;
  return family == u"sans-serif"_s ? u"Arial"_s : family;
}

/// around: the background of the paragraph or cell.
QTextCharFormat Resolved(QTextCharFormat format, double points, const QBrush& around) {
  // The toolkit gives text what is behind all of it, and links the colours of the desktop.
  if (around.style() != Qt::NoBrush && format.background() == around) format.clearBackground();
  if (format.isAnchor() && !format.anchorHref().isEmpty() && format.foreground() == QGuiApplication::palette().link())
    format.setForeground(QColor(Qt::blue));
  if (!format.hasProperty(QTextFormat::FontPointSize)) {
    if (format.hasProperty(QTextFormat::FontPixelSize))
      format.setFontPointSize(format.intProperty(QTextFormat::FontPixelSize) * kPointsPerPixel);
    else if (format.hasProperty(QTextFormat::FontSizeAdjustment))
      format.setFontPointSize(points * ScaleOf(format.intProperty(QTextFormat::FontSizeAdjustment)));
  }
  format.clearProperty(QTextFormat::FontPixelSize);
  format.clearProperty(QTextFormat::FontSizeAdjustment);
  const QStringList families = format.fontFamilies().toStringList();
  if (!families.isEmpty()) format.setFontFamilies({FamilyOf(families.first())});
  return format;
}

void ResolveCharacters(QTextDocument& text, double points) {
  struct Stretch {
    int begin, end;
    QTextCharFormat format;
  };
  std::vector<Stretch> stretches;
  for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
    const QTextTable* table = QTextCursor(block).currentTable();
    QBrush around = block.blockFormat().background();
    if (around.style() == Qt::NoBrush && table) around = table->cellAt(block.position()).format().background();
    for (QTextBlock::iterator it = block.begin(); !it.atEnd(); ++it) {
      const QTextFragment run = it.fragment();
      const QTextCharFormat format = Resolved(run.charFormat(), points, around);
      if (format != run.charFormat()) stretches.push_back({run.position(), run.position() + run.length(), format});
    }
  }
  QTextCursor cursor(&text);
  for (const auto& [begin, end, format] : stretches) {
    cursor.setPosition(begin);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    cursor.setCharFormat(format);
  }
}

/// Untranslated control words for what a paragraph has that the view shows in no format of its own.
std::string WordsOf(const QTextBlockFormat& format, RtfFormats& formats) {
  std::string words;
  if (format.hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth)) words += "\\brdrb\\brdrs\\brdrw15\\brsp20";
  if (const std::uint32_t color = formats.ColorOf(format.background()); color > 0)
    words.append("\\cbpat").append(std::to_string(color));
  return words;
}

void ResolveParagraphs(QTextDocument& text, RtfStore& store) {
  RtfFormats formats(store);
  std::vector<std::string>& extras = store.document.extras;
  for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
    QTextBlockFormat format = block.blockFormat();
    const std::string words = WordsOf(format, formats);
    if (format.indent() <= 0 && words.empty()) continue;
    format.setLeftMargin(format.leftMargin() + format.indent() * text.indentWidth());
    format.setIndent(0);
    if (!words.empty()) {
      const auto known = std::ranges::find(extras, words);
      format.setProperty(kExtraWords, static_cast<int>(known - extras.begin()) + 1);
      if (known == extras.end()) extras.push_back(words);
    }
    QTextCursor(block).setBlockFormat(format);
  }
}

}  // namespace

rtf::RtfDocument RtfOfHtml(const QString& html, const QFont& font) {
  RtfStore store;
  store.document = EmptyRtfDocument();
  store.document.fonts.front().name = font.family().toStdString();
  store.document.char_formats.front().half_points = static_cast<std::uint32_t>(std::lround(font.pointSizeF() * 2));
  ClosedDocument text;
  text.setUndoRedoEnabled(false);
  text.setHtml(WithListStarts(WithKnownStyles(html)));
  ResolvePictures(text, store);
  ResolveCharacters(text, font.pointSizeF());
  store.document.kept_header = ResolveLists(text);
  ResolveParagraphs(text, store);
  // As a file has it, so that it is shown as it will be saved.
  std::string bytes;
  rtf::WriteRtf(RtfExport(text, store).Document(), [&bytes](std::string_view part) {
    bytes += part;
    return true;
  });
  return rtf::ReadRtf(bytes, BytesToUtf8);
}

}  // namespace tme
