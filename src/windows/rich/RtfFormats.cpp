#include "windows/rich/RtfFormats.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <algorithm>
#include <cmath>

#include "base/Utf8.h"
#include "documents/rtf/RtfFormatOutput.h"
#include "system/Twips.h"
#include "windows/rich/RtfPieces.h"

namespace tme {
namespace {

using rtf::Alignment;
using rtf::ListKind;
using rtf::Underline;

/// Room for the marker of a list whose text begins at the margin, in twips.
constexpr int kLeastListIndent = 360;
/// A longer one has room for each of its characters.
constexpr int kTwipsOfLabelCharacter = 120;
constexpr int kShortLabel = 3;
constexpr std::uint32_t kLargestHalfPoints = 32'766;

template <typename Format, typename Shown>
struct Pair {
  Format format;
  Shown shown;
};

// Of several that show the same, the first is what is read.
constexpr Pair<Underline, QTextCharFormat::UnderlineStyle> kUnderlines[] = {
    {Underline::None, QTextCharFormat::NoUnderline},
    {Underline::Single, QTextCharFormat::SingleUnderline},
    {Underline::Words, QTextCharFormat::SingleUnderline},
    {Underline::Double, QTextCharFormat::SingleUnderline},
    {Underline::Thick, QTextCharFormat::SingleUnderline},
    {Underline::Dotted, QTextCharFormat::DotLine},
    {Underline::Dash, QTextCharFormat::DashUnderline},
    {Underline::DashDot, QTextCharFormat::DashDotLine},
    {Underline::DashDotDot, QTextCharFormat::DashDotDotLine},
    {Underline::Wave, QTextCharFormat::WaveUnderline},
    {Underline::LongDash, QTextCharFormat::DashUnderline},
    {Underline::ThickDotted, QTextCharFormat::DotLine},
    {Underline::ThickDash, QTextCharFormat::DashUnderline},
    {Underline::ThickDashDot, QTextCharFormat::DashDotLine},
    {Underline::ThickDashDotDot, QTextCharFormat::DashDotDotLine},
    {Underline::ThickLongDash, QTextCharFormat::DashUnderline},
    {Underline::HeavyWave, QTextCharFormat::WaveUnderline},
    {Underline::DoubleWave, QTextCharFormat::WaveUnderline},
};
/// The edge of the page, whichever way the text runs.
constexpr Qt::AlignmentFlag Absolute(Qt::AlignmentFlag edge) {
  return static_cast<Qt::AlignmentFlag>((edge | Qt::AlignAbsolute).toInt());
}

// Left is also what a paragraph has that says nothing: there the text begins where it runs from.
constexpr Pair<Alignment, Qt::AlignmentFlag> kAlignments[] = {
    {Alignment::Left, Qt::AlignLeft},
    {Alignment::Left, Absolute(Qt::AlignLeft)},
    {Alignment::Right, Absolute(Qt::AlignRight)},
    {Alignment::Right, Qt::AlignRight},
    {Alignment::Center, Qt::AlignHCenter},
    {Alignment::Justify, Qt::AlignJustify},
};
constexpr Pair<ListKind, QTextListFormat::Style> kListStyles[] = {
    {ListKind::None, QTextListFormat::ListStyleUndefined},    {ListKind::Bullet, QTextListFormat::ListDisc},
    {ListKind::Bullet, QTextListFormat::ListCircle},          {ListKind::Bullet, QTextListFormat::ListSquare},
    {ListKind::Decimal, QTextListFormat::ListDecimal},        {ListKind::LowerLetter, QTextListFormat::ListLowerAlpha},
    {ListKind::UpperLetter, QTextListFormat::ListUpperAlpha}, {ListKind::LowerRoman, QTextListFormat::ListLowerRoman},
    {ListKind::UpperRoman, QTextListFormat::ListUpperRoman},
};
constexpr Pair<rtf::Script, QTextCharFormat::VerticalAlignment> kScripts[] = {
    {rtf::Script::Normal, QTextCharFormat::AlignNormal},
    {rtf::Script::Super, QTextCharFormat::AlignSuperScript},
    {rtf::Script::Sub, QTextCharFormat::AlignSubScript},
};
constexpr Pair<rtf::Capitals, QFont::Capitalization> kCapitals[] = {
    {rtf::Capitals::None, QFont::MixedCase},
    {rtf::Capitals::All, QFont::AllUppercase},
    {rtf::Capitals::Small, QFont::SmallCaps},
};

template <typename Table, typename Format>
auto ShownOf(const Table& table, Format format) {
  for (const auto& pair : table)
    if (pair.format == format) return pair.shown;
  return table[0].shown;
}

/// The format stays as it is while the view shows what it was made to show.
template <typename Table, typename Format, typename Shown>
void TakeChange(const Table& table, Shown shown, Shown was, Format& format) {
  if (shown == was) return;
  for (const auto& pair : table) {
    if (pair.shown != shown) continue;
    format = pair.format;
    return;
  }
}

QFont::StyleHint HintOf(const std::string& family) {
  if (family == "roman") return QFont::Serif;
  if (family == "modern") return QFont::TypeWriter;
  if (family == "script") return QFont::Cursive;
  return family == "decor" ? QFont::Decorative : QFont::SansSerif;
}

QString FamilyOf(const QTextCharFormat& format) { return format.fontFamilies().toStringList().value(0); }

/// start: where the paragraph's first line begins, from which the view measures.
QTextOption::Tab ShowTab(const rtf::TabStop& tab, int start) {
  constexpr Pair<rtf::TabKind, QTextOption::TabType> kinds[] = {{rtf::TabKind::Left, QTextOption::LeftTab},
                                                                {rtf::TabKind::Right, QTextOption::RightTab},
                                                                {rtf::TabKind::Center, QTextOption::CenterTab},
                                                                {rtf::TabKind::Decimal, QTextOption::DelimiterTab}};
  const auto type = ShownOf(kinds, tab.kind);
  return {TwipsToUnits(tab.position - start), type, type == QTextOption::DelimiterTab ? u'.' : QChar()};
}

/// Twips from the margin to the text of an item, so that its label is not cut off.
int LeftOfItem(const rtf::ParagraphFormat& format) {
  const auto length = std::ranges::count_if(format.list_text, [](char c) { return !utf8::IsContinuation(c); });
  if (length > kShortLabel) return std::max(format.left, kTwipsOfLabelCharacter * static_cast<int>(length + 1));
  return format.left <= 0 ? kLeastListIndent : format.left;
}

void ReadIndents(const QTextBlockFormat& shown, const QTextBlockFormat& was, rtf::ParagraphFormat& format) {
  const auto read = [](qreal now, qreal before, std::int32_t& twips) {
    if (now != before) twips = UnitsToTwips(now);
  };
  read(shown.leftMargin(), was.leftMargin(), format.left);
  read(shown.rightMargin(), was.rightMargin(), format.right);
  read(shown.textIndent(), was.textIndent(), format.first_line);
  read(shown.topMargin(), was.topMargin(), format.space_before);
  read(shown.bottomMargin(), was.bottomMargin(), format.space_after);
}

}  // namespace

bool RtfFormats::HasOwnEnd(const QTextBlock& block) {
  constexpr char16_t kCellBegin = u'\uFDD0';
  return block.position() > 0 && block.document()->characterAt(block.position() - 1) != kCellBegin;
}

QBrush RtfFormats::BrushOf(std::uint32_t color) const {
  const auto& colors = store_.Document().colors;
  return color == 0 || color >= colors.size() ? QBrush() : QBrush(QColor::fromRgb(colors[color]));
}

QTextCharFormat RtfFormats::ShowCharFormat(std::uint32_t number) const {
  const rtf::CharFormat& format = store_.Document().char_formats[number];
  const auto& fonts = store_.Document().fonts;
  const rtf::Font& font = format.font < fonts.size() ? fonts[format.font] : fonts[store_.DefaultFont()];
  QTextCharFormat shown;
  shown.setProperty(kCharFormat, static_cast<int>(number) + 1);
  shown.setFontFamilies({QString::fromStdString(font.name.empty() ? kDefaultRtfFont : font.name)});
  shown.setFontStyleHint(HintOf(font.family));
  shown.setFontPointSize(std::clamp(format.half_points, 1U, kLargestHalfPoints) / 2.0);
  if (format.bold) shown.setFontWeight(QFont::Bold);
  if (format.italic) shown.setFontItalic(true);
  if (format.strike != rtf::Strike::None) shown.setFontStrikeOut(true);
  if (format.underline != Underline::None) shown.setUnderlineStyle(ShownOf(kUnderlines, format.underline));
  if (format.script != rtf::Script::Normal) shown.setVerticalAlignment(ShownOf(kScripts, format.script));
  if (format.capitals != rtf::Capitals::None) shown.setFontCapitalization(ShownOf(kCapitals, format.capitals));
  if (const QBrush brush = BrushOf(format.color); brush.style() != Qt::NoBrush) shown.setForeground(brush);
  const std::uint32_t behind = format.background != 0 ? format.background : format.shading;
  if (const QBrush brush = BrushOf(behind); brush.style() != Qt::NoBrush) shown.setBackground(brush);
  const rtf::Field* field = rtf::EntryOf(store_.Document().fields, format.field);
  if (field && !field->url.empty()) {
    shown.setAnchor(true);
    shown.setAnchorHref(QString::fromStdString(field->url));
  }
  return shown;
}

QTextListFormat::Style RtfFormats::StyleOf(ListKind kind) { return ShownOf(kListStyles, kind); }

QTextBlockFormat RtfFormats::ShowParagraphFormat(std::uint32_t number) const {
  const rtf::ParagraphFormat& format = store_.Document().paragraph_formats[number];
  QTextBlockFormat shown;
  shown.setProperty(kParagraphFormat, static_cast<int>(number) + 1);
  shown.setAlignment(ShownOf(kAlignments, format.alignment));
  // A list's marker is drawn to the left of its text.
  const bool in_list = format.list != ListKind::None;
  const int left = in_list ? LeftOfItem(format) : format.left;
  // The toolkit's own markers know neither a first number nor what stands around it; RtfTraces draws them.
  if (in_list) shown.setProperty(QTextFormat::ListStyle, QTextListFormat::ListStyleUndefined);
  if (left) shown.setLeftMargin(TwipsToUnits(left));
  if (format.right) shown.setRightMargin(TwipsToUnits(format.right));
  if (format.first_line && !in_list) shown.setTextIndent(TwipsToUnits(format.first_line));
  if (format.space_before) shown.setTopMargin(TwipsToUnits(format.space_before));
  if (format.space_after) shown.setBottomMargin(TwipsToUnits(format.space_after));
  if (format.line_spacing && format.line_multiple)
    shown.setLineHeight(std::abs(format.line_spacing) / 2.4, QTextBlockFormat::ProportionalHeight);
  else if (format.line_spacing)
    shown.setLineHeight(TwipsToUnits(std::abs(format.line_spacing)),
                        format.line_spacing > 0 ? QTextBlockFormat::MinimumHeight : QTextBlockFormat::FixedHeight);
  if (format.page_break_before) shown.setProperty(kPageBreakBefore, true);
  QList<QTextOption::Tab> tabs;
  const int start = in_list ? left : left + format.first_line;
  // The indent of the other lines is a stop for the first one.
  if (start < left) tabs.append(QTextOption::Tab(TwipsToUnits(left - start), QTextOption::LeftTab));
  for (const rtf::TabStop& tab : format.tabs)
    if (tab.kind != rtf::TabKind::Bar && (tab.position > left || start >= left)) tabs.append(ShowTab(tab, start));
  if (!tabs.isEmpty()) shown.setTabPositions(tabs);
  return shown;
}

std::uint32_t RtfFormats::ColorOf(const QBrush& brush) {
  const QColor color = brush.color();
  if (brush.style() == Qt::NoBrush || color.alpha() == 0) return 0;
  // What shows through is the paper.
  const auto on_paper = [&color](int part) {
    constexpr int kWhite = 255;
    return kWhite - (kWhite - part) * color.alpha() / kWhite;
  };
  return store_.AddColor(qRgb(on_paper(color.red()), on_paper(color.green()), on_paper(color.blue())) & 0xFFFFFFU);
}

void RtfFormats::ReadFont(const QTextCharFormat& shown, const QTextCharFormat& was, rtf::CharFormat& format) {
  const QString family = FamilyOf(shown);
  if (family != FamilyOf(was) && !family.isEmpty()) {
    rtf::Font font;
    font.name = family.toStdString();
    font.family = "nil";
    format.font = store_.Add(font);
  }
  if (shown.fontPointSize() != was.fontPointSize() && shown.fontPointSize() > 0)
    format.half_points = static_cast<std::uint32_t>(std::lround(shown.fontPointSize() * 2));
}

std::uint32_t RtfFormats::Read(const QTextCharFormat& shown) {
  const auto number = static_cast<std::size_t>(std::max(shown.intProperty(kCharFormat), 1)) - 1;
  const rtf::CharFormat before = store_.Document().char_formats[number];
  rtf::CharFormat format = before;
  const QTextCharFormat was = ShowCharFormat(static_cast<std::uint32_t>(number));
  ReadFont(shown, was, format);
  format.bold = shown.fontWeight() > QFont::Medium;
  format.italic = shown.fontItalic();
  if (shown.fontStrikeOut() != was.fontStrikeOut())
    format.strike = shown.fontStrikeOut() ? rtf::Strike::Single : rtf::Strike::None;
  TakeChange(kUnderlines, shown.underlineStyle(), was.underlineStyle(), format.underline);
  TakeChange(kScripts, shown.verticalAlignment(), was.verticalAlignment(), format.script);
  if (format.script != before.script) format.raise = 0;
  TakeChange(kCapitals, shown.fontCapitalization(), was.fontCapitalization(), format.capitals);
  if (shown.foreground() != was.foreground()) format.color = ColorOf(shown.foreground());
  if (shown.background() != was.background()) {
    format.background = ColorOf(shown.background());
    format.shading = 0;
    for (const char* word : {"chcbpat", "cb", "chshdng", "chcfpat"})
      format.extra = store_.WithoutWord(format.extra, word);
  }
  if (shown.anchorHref() != was.anchorHref()) {
    format.field = shown.anchorHref().isEmpty() ? 0 : store_.AddLink(shown.anchorHref().toStdString());
  }
  if (format == before) return static_cast<std::uint32_t>(number);
  SayChanges(before, format);
  return store_.Add(format);
}

/// What is the default now may be other in a style.
void RtfFormats::SayChanges(const rtf::CharFormat& before, rtf::CharFormat& format) const {
  const rtf::RtfDocument& document = store_.Document();
  const rtf::CharFormat plain = rtf::PlainFormat(document);
  const int changed = ~DefaultsOf(before, plain) & DefaultsOf(format, plain);
  format.said = static_cast<std::uint16_t>((format.said & DefaultsOf(format, plain)) | (changed & plain.said));
}

std::uint32_t RtfFormats::Read(const QTextBlockFormat& shown, const QTextList* list) {
  const auto number = static_cast<std::size_t>(std::max(shown.intProperty(kParagraphFormat), 1)) - 1;
  rtf::ParagraphFormat format = store_.Document().paragraph_formats[number];
  const std::uint16_t defaults = rtf::DefaultsOf(format);
  QTextBlockFormat was = ShowParagraphFormat(static_cast<std::uint32_t>(number));
  const int piece = shown.intProperty(kPiece);
  if (piece > 0) ShowAsPiece(was, piece);
  ReadIndents(shown, was, format);
  TakeChange(kAlignments, Qt::AlignmentFlag(int(shown.alignment() & Qt::AlignHorizontal_Mask)),
             Qt::AlignmentFlag(int(was.alignment() & Qt::AlignHorizontal_Mask)), format.alignment);
  if (shown.lineHeight() != was.lineHeight() || shown.lineHeightType() != was.lineHeightType()) {
    format.line_multiple = shown.lineHeightType() == QTextBlockFormat::ProportionalHeight;
    format.line_spacing = 0;
    if (format.line_multiple) format.line_spacing = static_cast<int>(std::lround(shown.lineHeight() * 2.4));
  }
  const QTextListFormat::Style style = list ? list->format().style() : QTextListFormat::ListStyleUndefined;
  const ListKind kind = format.list;
  // Only the first piece of a paragraph shows its marker.
  TakeChange(kListStyles, style, piece > 1 ? QTextListFormat::ListStyleUndefined : StyleOf(kind), format.list);
  if (format.list != kind) {
    format.list_id = list ? list->format().intProperty(kListNumber) : 0;
    format.list_level = list ? static_cast<std::uint8_t>(list->format().intProperty(kListLevel)) : std::uint8_t{0};
    format.list_start = 1;
    format.list_text.clear();
    format.list_group = 0;
    // As far to the left as the marker stands.
    format.first_line = format.list == ListKind::None ? 0 : -std::min(format.left, kLeastListIndent);
  }
  if (const int extra = shown.intProperty(kExtraWords); extra > 0) format.extra = static_cast<std::uint32_t>(extra);
  // What was set back to its default is said, or a style would come through.
  format.said = static_cast<std::uint16_t>((format.said | ~defaults) & rtf::DefaultsOf(format));
  return store_.Add(format);
}

}  // namespace tme
