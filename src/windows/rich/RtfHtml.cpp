#include "windows/rich/RtfHtml.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <algorithm>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

#include "windows/rich/RtfStore.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kMaxLevel = 8;
constexpr double kPointsPerPixel = 0.75;

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

QTextCharFormat Resolved(QTextCharFormat format, double points) {
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
    for (QTextBlock::iterator it = block.begin(); !it.atEnd(); ++it) {
      const QTextFragment run = it.fragment();
      const QTextCharFormat format = Resolved(run.charFormat(), points);
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

void ResolveIndents(QTextDocument& text) {
  std::set<QTextList*> lists;
  for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
    QTextBlockFormat format = block.blockFormat();
    int indent = format.indent();
    if (QTextList* list = block.textList()) {
      indent += list->format().indent();
      lists.insert(list);
    }
    if (indent <= 0) continue;
    format.setLeftMargin(format.leftMargin() + indent * text.indentWidth());
    format.setIndent(0);
    QTextCursor(block).setBlockFormat(format);
  }
  for (QTextList* list : lists) {
    QTextListFormat format = list->format();
    format.setProperty(kListLevel, std::clamp(format.indent() - 1, 0, kMaxLevel));
    format.setIndent(0);
    list->setFormat(format);
  }
}

}  // namespace

void ResolveHtml(QTextDocument& text, double points) {
  ResolveCharacters(text, points);
  ResolveIndents(text);
}

}  // namespace tme
