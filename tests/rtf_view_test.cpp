#include <gtest/gtest.h>

#include <QTextDocument>

#include "RtfProbe.h"
#include "windows/rich/RtfExport.h"
#include "windows/rich/RtfImport.h"
#include "windows/rich/RtfPad.h"

using namespace tme;
using rtf::RtfDocument;

namespace {

/// Builds a document by hand: paragraphs of runs.
struct Source {
  RtfDocument document = EmptyRtfDocument();

  std::uint32_t Format(const rtf::CharFormat& format) {
    document.char_formats.push_back(format);
    return static_cast<std::uint32_t>(document.char_formats.size() - 1);
  }
  std::uint32_t Format(const rtf::ParagraphFormat& format) {
    document.paragraph_formats.push_back(format);
    return static_cast<std::uint32_t>(document.paragraph_formats.size() - 1);
  }
  void Paragraph(std::uint32_t format = 0, std::int32_t cell = -1, std::uint32_t mark = 0) {
    document.paragraphs.push_back({static_cast<std::uint32_t>(document.runs.size()), format, mark, cell});
  }
  void Text(const std::string& text, std::uint32_t format = 0) {
    document.runs.push_back({static_cast<std::uint32_t>(text.size()), format, 0});
    document.text += text;
  }
  void Object(rtf::ObjectKind kind, const std::string& rtf) {
    document.objects.emplace_back().kind = kind;
    document.objects.back().rtf = rtf;
    document.runs.push_back({0, 0, static_cast<std::uint32_t>(document.objects.size())});
  }
  std::int32_t Cell(std::uint32_t row, std::int32_t right_edge, std::uint16_t row_span = 1) {
    rtf::Cell& cell = document.cells.emplace_back();
    cell.row = row;
    cell.right_edge = right_edge;
    cell.row_span = row_span;
    return static_cast<std::int32_t>(document.cells.size() - 1);
  }
};

void ExpectSameAfterView(const RtfDocument& document) {
  RtfStore store;
  QTextDocument view;
  RtfSimplified simplified;
  ASSERT_TRUE(ImportRtf(RtfDocument(document), store, view, simplified));
  const RtfExport written(view, store);
  EXPECT_EQ(rtf::Describe(written.Document()), rtf::Describe(document));
  EXPECT_EQ(written.Document().char_formats, document.char_formats);
  EXPECT_EQ(written.Document().paragraph_formats, document.paragraph_formats);
  EXPECT_EQ(written.Document().objects.size(), document.objects.size());
}

/// Formats that the view shows in the same way, and parts that it does not show.
Source MixedSource() {
  Source source;
  source.document.fonts.push_back({7, "Courier New", "modern", 204});
  source.document.colors.push_back(0x3366CC);
  source.document.fields.emplace_back().url = "http://example.org/";
  source.document.extras.push_back("\\keepn");
  rtf::CharFormat odd{.font = 1, .half_points = 23, .color = 1, .background = 1, .extra = 1, .bold = true};
  odd.strike = rtf::Strike::Double;
  odd.underline = rtf::Underline::Words;
  odd.capitals = rtf::Capitals::Small;
  const std::uint32_t odd_format = source.Format(odd);
  const std::uint32_t link = source.Format({.field = 1, .script = rtf::Script::Super});
  const std::uint32_t hidden = source.Format({.hidden = true});
  rtf::ParagraphFormat shape{
      .left = 1001, .right = 77, .first_line = -333, .space_before = 13, .line_spacing = -251, .tabs = {}};
  shape.alignment = rtf::Alignment::Justify;
  shape.tabs = {{1234, rtf::TabKind::Decimal}, {3000, rtf::TabKind::Bar}};
  rtf::ParagraphFormat item{.left = 720, .first_line = -360, .list_id = 3, .list_start = 4, .extra = 1, .tabs = {}};
  item.list = rtf::ListKind::UpperRoman;
  item.list_level = 2;
  source.Paragraph(source.Format(shape), -1, odd_format);
  source.Object(rtf::ObjectKind::Invisible, "{\\*\\bkmkstart a}");
  source.Text("secret", hidden);
  source.Text("one\ttwo\u2028", odd_format);
  source.Text("\uFEFFlink\f\xF0\x9F\x98\x80", link);
  source.Object(rtf::ObjectKind::Invisible, "{\\*\\bkmkend a}");
  const std::uint32_t item_shape = source.Format(item);
  source.Paragraph(item_shape);
  source.Object(rtf::ObjectKind::Placeholder, "{\\object}");
  source.Object(rtf::ObjectKind::Placeholder, "{\\object2}");
  source.Paragraph(item_shape, -1, odd_format);
  return source;
}

}  // namespace

TEST(RtfView, GivesBackWhatItShowsAndWhatItDoesNot) { ExpectSameAfterView(MixedSource().document); }

TEST(RtfView, GivesBackTables) {
  Source source;
  source.document.tables = {{-1}, {1}, {-1}};
  source.document.rows = {{0, "\\trowd1"}, {1, {}}, {0, "\\trowd2"}, {2, {}}};
  // Rows of other edges, a cell over two rows, a table in a cell, a table right behind another.
  const std::int32_t tall = source.Cell(0, 2000, 2);
  const std::int32_t outer = source.Cell(0, 6000);
  const std::int32_t inner = source.Cell(1, 3000);
  const std::int32_t below = source.Cell(2, 2000, 0);
  const std::int32_t left = source.Cell(2, 4000), right = source.Cell(2, 6000);
  const std::int32_t last = source.Cell(3, 1000);
  source.document.cells[static_cast<std::size_t>(tall)].row_span = 2;
  rtf::CharFormat format;
  format.bold = true;
  const std::uint32_t bold = source.Format(format);
  const std::pair<std::int32_t, std::string> texts[] = {{tall, "tall"},   {outer, "before"}, {inner, "inner"},
                                                        {outer, "after"}, {below, ""},       {left, "l"},
                                                        {right, "r"},     {last, "last"},    {-1, "end"}};
  for (const auto& [cell, text] : texts) {
    source.Paragraph(0, cell, text.empty() ? 0 : bold);
    if (!text.empty()) source.Text(text);
  }
  ExpectSameAfterView(source.document);
}

TEST(RtfView, GivesBackSeveralParagraphsOfCellsSideBySide) {
  Source source;
  source.document.tables = {{-1}};
  source.document.rows = {{0, "\\trowd1"}, {0, "\\trowd2"}};
  for (const std::uint32_t row : {0U, 1U})
    for (const std::int32_t column : {0, 1}) {
      const std::int32_t cell = source.Cell(row, 2000 * (column + 1));
      source.Paragraph(0, cell);
      source.Text("a");
      if (column == 0) source.Paragraph(0, cell);
    }
  source.Paragraph(0, -1);
  ExpectSameAfterView(source.document);
}

TEST(RtfView, TablesOfAnyShapeStayAffordable) {
  Source source;
  source.document.tables = {{-1}};
  // Every row has edges of its own: as one grid this would be 4 million places.
  for (std::uint32_t row = 0; row < 1000; ++row) {
    source.document.rows.push_back({0, "\\trowd"});
    for (int cell = 0; cell < 4; ++cell) {
      source.Paragraph(0, source.Cell(row, static_cast<std::int32_t>(row + 1) + cell * 2000));
      source.Text("x");
    }
  }
  source.Paragraph();
  ExpectSameAfterView(source.document);
}

TEST(RtfView, EditsChangeNothingElse) {
  RtfStore store;
  QTextDocument view;
  Source source = MixedSource();
  RtfSimplified simplified;
  ASSERT_TRUE(ImportRtf(std::move(source.document), store, view, simplified));
  QTextCursor cursor(&view);
  cursor.movePosition(QTextCursor::Right, QTextCursor::KeepAnchor, 3);
  QTextCharFormat change;
  change.setFontWeight(QFont::Normal);
  change.setForeground(QColor(Qt::red));
  cursor.mergeCharFormat(change);
  const RtfExport written(view, store);
  const RtfDocument& document = written.Document();
  ASSERT_GT(document.runs.size(), 3U);
  const rtf::CharFormat& edited = document.char_formats[document.runs[2].format];
  const rtf::CharFormat& other = document.char_formats[document.runs[3].format];
  EXPECT_EQ(document.colors[edited.color], 0xFF0000U);
  EXPECT_FALSE(edited.bold);
  EXPECT_EQ(edited.strike, rtf::Strike::Double);
  EXPECT_EQ(edited.underline, rtf::Underline::Words);
  EXPECT_EQ(other, document.char_formats[1]);
  // The bookmark and the hidden text stand there once, though the text that they hang on was split.
  EXPECT_EQ(document.runs[0].object, 1U);
  EXPECT_EQ(document.runs[1].bytes, 6U);
  EXPECT_EQ(document.text.find("secret"), document.text.rfind("secret"));
}

TEST(RtfView, BulletsThatWereSetHaveHangingText) {
  RtfPad pad(nullptr);
  pad.SetBulletIndent(200);
  pad.ReplaceSelection(QStringLiteral("a\nb\nc"));
  pad.Select(0, 3);
  pad.SetSelectionBullet(true);
  EXPECT_EQ(pad.SelectionBullet(), true);
  pad.Select(0, 5);
  EXPECT_EQ(pad.SelectionBullet(), std::nullopt);
  EXPECT_NE(pad.SelectedRtf().find("\\fi-200"), std::string::npos);
  pad.SetSelectionBullet(false);
  EXPECT_EQ(pad.SelectionBullet(), false);
  EXPECT_EQ(pad.SelectedRtf().find("\\fi-200"), std::string::npos);
}

TEST(RtfView, SelectionOfParagraphsTellsOneValueOrNone) {
  RtfPad pad(nullptr);
  pad.SetRtf(rtf::Read("{\\rtf1 a{\\b b}\\par\\b cc\\par d\\b0 d\\par}"));
  constexpr struct {
    int start, end;
    std::optional<bool> bold;
  } kSelections[] = {{1, 7, true}, {0, 7, std::nullopt}, {1, 8, std::nullopt}, {3, 6, true}, {7, 8, false}};
  for (const auto& [start, end, bold] : kSelections) {
    pad.Select(start, end);
    EXPECT_EQ(pad.SelectionBold(), bold) << start;
  }
  pad.Select(1, 7);
  EXPECT_EQ(pad.SelectionItalic(), false);
  pad.SetSelectionItalic(true);
  EXPECT_EQ(pad.SelectionItalic(), true);
}

TEST(RtfView, SelectionTellsOneValueOrNone) {
  RtfPad pad(nullptr);
  pad.SetRtf(MixedSource().document);
  pad.Select(0, 7);
  EXPECT_EQ(pad.SelectionBold(), true);
  EXPECT_EQ(pad.SelectionFontSize(), 11.5);
  EXPECT_EQ(pad.SelectionFontName(), QStringLiteral("Courier New"));
  pad.Select(0, 10);
  EXPECT_EQ(pad.SelectionBold(), std::nullopt);
  EXPECT_EQ(pad.SelectionFontSize(), std::nullopt);
  pad.Select(0, 7);
  pad.SetSelectionFontSize(-3);
  EXPECT_EQ(pad.SelectionFontSize(), 0);
  const std::uint64_t before = pad.Revision();
  pad.SetZoom(250);
  EXPECT_EQ(pad.Revision(), before);
  EXPECT_EQ(pad.Find(QStringLiteral("TWO"), 0, pad.End(), kFindWholeWord), 4);
  EXPECT_EQ(pad.SelectedText(), QStringLiteral("two"));
}
