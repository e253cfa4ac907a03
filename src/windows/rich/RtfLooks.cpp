#include "windows/rich/RtfLooks.h"

#include <QTextList>
#include <algorithm>
#include <cmath>

#include "system/Twips.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

using rtf::Alignment;
using rtf::ListKind;
using rtf::Underline;

constexpr const char* kDefaultFont = "Arial";
/// Room for the marker of a list whose text begins at the margin, in twips.
constexpr int kLeastListIndent = 360;
constexpr std::uint32_t kLargestHalfPoints = 32'766;

template <typename Look, typename Shown>
struct Pair {
  Look look;
  Shown shown;
};

// Of several that show the same, the first is what is read.
constexpr Pair<Underline, QTextCharFormat::UnderlineStyle> kUnderlines[] = {
    {Underline::None, QTextCharFormat::NoUnderline},          {Underline::Single, QTextCharFormat::SingleUnderline},
    {Underline::Words, QTextCharFormat::SingleUnderline},     {Underline::Double, QTextCharFormat::SingleUnderline},
    {Underline::Thick, QTextCharFormat::SingleUnderline},     {Underline::Dotted, QTextCharFormat::DotLine},
    {Underline::Dash, QTextCharFormat::DashUnderline},        {Underline::DashDot, QTextCharFormat::DashDotLine},
    {Underline::DashDotDot, QTextCharFormat::DashDotDotLine}, {Underline::Wave, QTextCharFormat::WaveUnderline},
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

template <typename Table, typename Look>
auto ShownOf(const Table& table, Look look) {
  for (const auto& pair : table)
    if (pair.look == look) return pair.shown;
  return table[0].shown;
}

/// The look stays as it is while the format shows what it was made to show.
template <typename Table, typename Look, typename Shown>
void TakeChange(const Table& table, Shown shown, Shown was, Look& look) {
  if (shown == was) return;
  for (const auto& pair : table) {
    if (pair.shown != shown) continue;
    look = pair.look;
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

template <typename... Parts>
std::size_t HashOf(Parts... parts) {
  std::size_t hash = 0;
  ((hash = hash * 1'000'003 + static_cast<std::size_t>(parts)), ...);
  return hash;
}

}  // namespace

rtf::RtfDocument EmptyRtfDocument() {
  rtf::RtfDocument document;
  document.fonts.push_back({0, kDefaultFont, "swiss", 0});
  document.colors.push_back(0);
  document.char_formats.emplace_back();
  document.paragraph_formats.emplace_back();
  return document;
}

bool GoesOn(const QTextBlockFormat& before, const QTextBlockFormat& format) {
  const int paragraph = format.intProperty(kLongParagraph);
  return paragraph > 0 && paragraph == before.intProperty(kLongParagraph) &&
         format.intProperty(kPiece) > before.intProperty(kPiece);
}

std::size_t RtfLooks::Hash::operator()(const rtf::CharFormat& look) const {
  return HashOf(look.font, look.half_points, look.color, look.background, look.field, look.extra, look.bold,
                look.italic, look.hidden, look.strike, look.underline, look.script, look.capitals);
}

std::size_t RtfLooks::Hash::operator()(const rtf::ParagraphFormat& look) const {
  return HashOf(look.left, look.right, look.first_line, look.space_before, look.space_after, look.line_spacing,
                look.list_id, look.extra, look.alignment, look.list, look.list_level, look.tabs.size());
}

RtfLooks::RtfLooks(RtfStore& store) : store_(store) {
  rtf::RtfDocument& document = store_.document;
  const rtf::RtfDocument empty = EmptyRtfDocument();
  if (document.fonts.empty()) document.fonts = empty.fonts;
  if (document.colors.empty()) document.colors = empty.colors;
  if (document.char_formats.empty()) document.char_formats = empty.char_formats;
  const auto default_font =
      std::find_if(document.fonts.begin(), document.fonts.end(),
                   [&document](const rtf::Font& font) { return font.number == document.default_font; });
  for (rtf::CharFormat& look : document.char_formats)
    if (look.font >= document.fonts.size())
      look.font =
          default_font == document.fonts.end() ? 0U : static_cast<std::uint32_t>(default_font - document.fonts.begin());
  if (document.paragraph_formats.empty()) document.paragraph_formats = empty.paragraph_formats;
  for (std::size_t index = 0; index < document.char_formats.size(); ++index)
    char_numbers_.emplace(document.char_formats[index], static_cast<std::uint32_t>(index));
  for (std::size_t index = 0; index < document.paragraph_formats.size(); ++index)
    paragraph_numbers_.emplace(document.paragraph_formats[index], static_cast<std::uint32_t>(index));
}

QBrush RtfLooks::BrushOf(std::uint32_t color) const {
  const auto& colors = store_.document.colors;
  return color == 0 || color >= colors.size() ? QBrush() : QBrush(QColor::fromRgb(colors[color]));
}

QTextCharFormat RtfLooks::Show(std::uint32_t char_format) const {
  const rtf::CharFormat& look = store_.document.char_formats[char_format];
  const auto& fonts = store_.document.fonts;
  const rtf::Font& font = look.font < fonts.size() ? fonts[look.font] : fonts[0];
  QTextCharFormat shown;
  shown.setProperty(kCharLook, static_cast<int>(char_format) + 1);
  shown.setFontFamilies({QString::fromStdString(font.name.empty() ? kDefaultFont : font.name)});
  shown.setFontStyleHint(HintOf(font.family));
  shown.setFontPointSize(std::clamp(look.half_points, 1U, kLargestHalfPoints) / 2.0);
  if (look.bold) shown.setFontWeight(QFont::Bold);
  if (look.italic) shown.setFontItalic(true);
  if (look.strike != rtf::Strike::None) shown.setFontStrikeOut(true);
  if (look.underline != Underline::None) shown.setUnderlineStyle(ShownOf(kUnderlines, look.underline));
  if (look.script != rtf::Script::Normal) shown.setVerticalAlignment(ShownOf(kScripts, look.script));
  if (look.capitals != rtf::Capitals::None) shown.setFontCapitalization(ShownOf(kCapitals, look.capitals));
  if (const QBrush brush = BrushOf(look.color); brush.style() != Qt::NoBrush) shown.setForeground(brush);
  if (const QBrush brush = BrushOf(look.background); brush.style() != Qt::NoBrush) shown.setBackground(brush);
  const auto& fields = store_.document.fields;
  if (look.field > 0 && look.field <= fields.size() && !fields[look.field - 1].url.empty()) {
    shown.setAnchor(true);
    shown.setAnchorHref(QString::fromStdString(fields[look.field - 1].url));
  }
  return shown;
}

QTextListFormat::Style RtfLooks::StyleOf(ListKind kind) { return ShownOf(kListStyles, kind); }

QTextBlockFormat RtfLooks::Show(const rtf::ParagraphFormat& look, std::uint32_t number) const {
  QTextBlockFormat shown;
  shown.setProperty(kParagraphLook, static_cast<int>(number) + 1);
  shown.setAlignment(ShownOf(kAlignments, look.alignment));
  // A list's marker is drawn to the left of its text.
  const bool in_list = look.list != ListKind::None;
  const int left = in_list && look.left <= 0 ? kLeastListIndent : look.left;
  if (left) shown.setLeftMargin(TwipsToUnits(left));
  if (look.right) shown.setRightMargin(TwipsToUnits(look.right));
  if (look.first_line && !in_list) shown.setTextIndent(TwipsToUnits(look.first_line));
  if (look.space_before) shown.setTopMargin(TwipsToUnits(look.space_before));
  if (look.space_after) shown.setBottomMargin(TwipsToUnits(look.space_after));
  if (look.line_spacing && look.line_multiple)
    shown.setLineHeight(std::abs(look.line_spacing) / 2.4, QTextBlockFormat::ProportionalHeight);
  else if (look.line_spacing)
    shown.setLineHeight(TwipsToUnits(std::abs(look.line_spacing)),
                        look.line_spacing > 0 ? QTextBlockFormat::MinimumHeight : QTextBlockFormat::FixedHeight);
  if (look.page_break_before) shown.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
  QList<QTextOption::Tab> tabs;
  const int start = in_list ? left : left + look.first_line;
  // The indent of the other lines is a stop for the first one.
  if (start < left) tabs.append(QTextOption::Tab(TwipsToUnits(left - start), QTextOption::LeftTab));
  for (const rtf::TabStop& tab : look.tabs)
    if (tab.kind != rtf::TabKind::Bar && (tab.position > left || start >= left)) tabs.append(ShowTab(tab, start));
  if (!tabs.isEmpty()) shown.setTabPositions(tabs);
  return shown;
}

void RtfLooks::ShowAsPiece(QTextBlockFormat& shown, int piece) {
  shown.clearProperty(QTextFormat::BlockBottomMargin);
  if (piece <= 1) return;
  shown.clearProperty(QTextFormat::BlockTopMargin);
  shown.clearProperty(QTextFormat::TextIndent);
  shown.clearProperty(QTextFormat::PageBreakPolicy);
}

std::uint32_t RtfLooks::Add(const rtf::CharFormat& look) {
  auto& looks = store_.document.char_formats;
  const auto [place, is_new] = char_numbers_.try_emplace(look, static_cast<std::uint32_t>(looks.size()));
  if (is_new) looks.push_back(look);
  return place->second;
}

std::uint32_t RtfLooks::Add(const rtf::ParagraphFormat& look) {
  auto& looks = store_.document.paragraph_formats;
  const auto [place, is_new] = paragraph_numbers_.try_emplace(look, static_cast<std::uint32_t>(looks.size()));
  if (is_new) looks.push_back(look);
  return place->second;
}

std::uint32_t RtfLooks::FontOf(const rtf::Font& font) {
  auto& fonts = store_.document.fonts;
  const QString name = QString::fromStdString(font.name);
  int free_number = 0;
  for (std::size_t index = 0; index < fonts.size(); ++index) {
    if (fonts[index].charset == font.charset &&
        name.compare(QString::fromStdString(fonts[index].name), Qt::CaseInsensitive) == 0)
      return static_cast<std::uint32_t>(index);
    free_number = std::max(free_number, fonts[index].number + 1);
  }
  fonts.push_back(font);
  fonts.back().number = free_number;
  return static_cast<std::uint32_t>(fonts.size() - 1);
}

std::uint32_t RtfLooks::ColorOf(std::uint32_t rgb) {
  auto& colors = store_.document.colors;
  const auto found = std::find(colors.begin() + 1, colors.end(), rgb);
  if (found != colors.end()) return static_cast<std::uint32_t>(found - colors.begin());
  colors.push_back(rgb);
  return static_cast<std::uint32_t>(colors.size() - 1);
}

std::uint32_t RtfLooks::ColorOf(const QBrush& brush) {
  return brush.style() == Qt::NoBrush ? 0 : ColorOf(brush.color().rgb() & 0xFFFFFFU);
}

void RtfLooks::ReadFont(const QTextCharFormat& shown, const QTextCharFormat& was, rtf::CharFormat& look) {
  const QString family = FamilyOf(shown);
  if (family != FamilyOf(was) && !family.isEmpty()) {
    rtf::Font font;
    font.name = family.toStdString();
    font.family = "nil";
    look.font = FontOf(font);
  }
  if (shown.fontPointSize() != was.fontPointSize() && shown.fontPointSize() > 0)
    look.half_points = static_cast<std::uint32_t>(std::lround(shown.fontPointSize() * 2));
}

std::uint32_t RtfLooks::Read(const QTextCharFormat& shown) {
  const auto number = static_cast<std::size_t>(std::max(shown.intProperty(kCharLook), 1)) - 1;
  rtf::CharFormat look = store_.document.char_formats[number];
  const QTextCharFormat was = Show(static_cast<std::uint32_t>(number));
  ReadFont(shown, was, look);
  look.bold = shown.fontWeight() > QFont::Medium;
  look.italic = shown.fontItalic();
  if (shown.fontStrikeOut() != was.fontStrikeOut())
    look.strike = shown.fontStrikeOut() ? rtf::Strike::Single : rtf::Strike::None;
  TakeChange(kUnderlines, shown.underlineStyle(), was.underlineStyle(), look.underline);
  TakeChange(kScripts, shown.verticalAlignment(), was.verticalAlignment(), look.script);
  TakeChange(kCapitals, shown.fontCapitalization(), was.fontCapitalization(), look.capitals);
  if (shown.foreground() != was.foreground()) look.color = ColorOf(shown.foreground());
  if (shown.background() != was.background()) look.background = ColorOf(shown.background());
  if (shown.anchorHref() != was.anchorHref()) {
    look.field = 0;
    if (!shown.anchorHref().isEmpty()) {
      store_.document.fields.emplace_back().url = shown.anchorHref().toStdString();
      look.field = static_cast<std::uint32_t>(store_.document.fields.size());
    }
  }
  return Add(look);
}

void RtfLooks::ReadIndents(const QTextBlockFormat& shown, const QTextBlockFormat& was,
                           rtf::ParagraphFormat& look) const {
  const auto read = [](qreal now, qreal before, std::int32_t& twips) {
    if (now != before) twips = UnitsToTwips(now);
  };
  read(shown.leftMargin(), was.leftMargin(), look.left);
  read(shown.rightMargin(), was.rightMargin(), look.right);
  read(shown.textIndent(), was.textIndent(), look.first_line);
  read(shown.topMargin(), was.topMargin(), look.space_before);
  read(shown.bottomMargin(), was.bottomMargin(), look.space_after);
}

std::uint32_t RtfLooks::Read(const QTextBlockFormat& shown, const QTextList* list) {
  const auto number = static_cast<std::size_t>(std::max(shown.intProperty(kParagraphLook), 1)) - 1;
  rtf::ParagraphFormat look = store_.document.paragraph_formats[number];
  QTextBlockFormat was = Show(look, static_cast<std::uint32_t>(number));
  const int piece = shown.intProperty(kPiece);
  if (piece > 0) ShowAsPiece(was, piece);
  ReadIndents(shown, was, look);
  TakeChange(kAlignments, Qt::AlignmentFlag(int(shown.alignment() & Qt::AlignHorizontal_Mask)),
             Qt::AlignmentFlag(int(was.alignment() & Qt::AlignHorizontal_Mask)), look.alignment);
  if (shown.lineHeight() != was.lineHeight() || shown.lineHeightType() != was.lineHeightType()) {
    look.line_multiple = shown.lineHeightType() == QTextBlockFormat::ProportionalHeight;
    look.line_spacing = 0;
    if (look.line_multiple) look.line_spacing = static_cast<int>(std::lround(shown.lineHeight() * 2.4));
  }
  const QTextListFormat::Style style = list ? list->format().style() : QTextListFormat::ListStyleUndefined;
  const ListKind kind = look.list;
  // Only the first piece of a paragraph shows its marker.
  TakeChange(kListStyles, style, piece > 1 ? QTextListFormat::ListStyleUndefined : StyleOf(kind), look.list);
  if (look.list != kind) {
    look.list_id = 0;
    look.list_level = 0;
    look.list_start = 1;
    // As far to the left as the marker stands.
    look.first_line = look.list == ListKind::None ? 0 : -std::min(look.left, kLeastListIndent);
  }
  return Add(look);
}

}  // namespace tme
