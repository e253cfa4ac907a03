// Documents of shapes that a layout would take minutes or for ever for: what is built of them is bounded, and all comes
// back.
#include <gtest/gtest.h>

#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>
#include <algorithm>

#include "RtfProbe.h"
#include "documents/rtf/RtfWriter.h"
#include "windows/rich/RtfExport.h"
#include "windows/rich/RtfImport.h"
#include "windows/rich/RtfPad.h"
#include "windows/rich/RtfPageHeight.h"
#include "windows/rich/RtfShape.h"

using namespace tme;
using rtf::RtfDocument;

namespace {

constexpr const char* kRow = "\\trowd\\cellx2000\\cellx4000 \\pard\\intbl a\\cell\\pard\\intbl b\\cell\\row\n";

std::string Times(int count, const std::string& text) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

/// 365 bytes of this took for ever.
std::string Nested(int levels) {
  std::string text;
  for (int level = 1; level <= levels; ++level) text += "\\itap" + std::to_string(level) + " a\\nestcell ";
  return text;
}

std::string Written(const RtfDocument& document) {
  std::string bytes;
  rtf::WriteRtf(document, [&bytes](std::string_view part) { return bytes.append(part), true; });
  return bytes;
}

/// With the paragraphs that empty cells lack.
std::string Normal(const std::string& bytes) { return Written(rtf::Read(bytes)); }

/// What lays itself out as a whole.
struct Largest {
  int depth = 0;
  int cells = 0;
  int block = 0;
  int tables = 0;
};

void Measure(QTextFrame& frame, int depth, Largest& largest) {
  for (QTextFrame* child : frame.childFrames()) {
    const auto* table = qobject_cast<QTextTable*>(child);
    largest.cells = std::max(largest.cells, table->rows() * table->columns());
    largest.depth = std::max(largest.depth, depth + 1);
    ++largest.tables;
    Measure(*child, depth + 1, largest);
  }
}

struct Shape {
  const char* name;
  std::string body;
  Largest bound;  ///< tables: exactly
  std::size_t flat_tables;
  std::size_t long_paragraphs;
};

std::vector<Shape> Shapes() {
  constexpr auto piece = static_cast<int>(kLongBytes);
  const Largest no_tables{0, 0, piece, 0};
  return {
      {"few levels", Nested(3), {3, 3, piece, 2}, 0, 0},
      {"many levels", Nested(19), {7, 3, piece, 7}, 11, 0},
      {"deep ones behind each other", Times(300, Nested(12) + "\\pard\\par"), {9, 3, piece, 624}, 2'312, 0},
      {"a large text in tables", "\\itap3 " + Times(20'000, "\\itap3 word\\par ") + "\\nestcell", no_tables, 1, 0},
      {"many items of a list", Times(600, "\\pard{\\*\\pn\\pnlvlblt} a\\par "), no_tables, 0, 0},
      {"many rows", Times(3'000, kRow), {1, 1'000, piece, 14}, 0, 0},
      {"a row of many cells", "\\trowd\\pard\\intbl " + Times(20'000, "c\\cell ") + "\\row", no_tables, 1, 0},
      {"a long paragraph", Times(10'000, "some words ") + "\\par end", no_tables, 0, 1},
      {"one without blanks", Times(30'000, "\\u20013?"), no_tables, 0, 1},
      {"many objects", Times(3'000, "{\\object\\objemb x}") + "\\par", no_tables, 0, 1},
      {"many formats", "\\pard\\fi300\\sb100\\sa100 " + Times(2'000, "{\\b x}y") + "{\\*\\bkmkend a}\\par", no_tables,
       0, 1},
      {"a long paragraph in a table in too many",
       Nested(19) + "\\itap19 " + Times(4'000, "some words ") + "\\nestcell\\itap0\\pard end\\par",
       {4, 3, piece, 4},
       14,
       1},
  };
}

}  // namespace

TEST(RtfShape, IsShownBoundedAndWrittenAsItWas) {
  for (const Shape& shape : Shapes()) {
    SCOPED_TRACE(shape.name);
    const std::string bytes = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\pard " + shape.body + "}";
    const std::string before = Normal(Written(rtf::Read(bytes)));
    RtfStore store;
    QTextDocument view;
    RtfSimplified simplified;
    ASSERT_TRUE(ImportRtf(rtf::Read(bytes), store, view, simplified));
    EXPECT_EQ(simplified.tables, shape.flat_tables);
    EXPECT_EQ(simplified.paragraphs, shape.long_paragraphs);
    Largest largest;
    Measure(*view.rootFrame(), 0, largest);
    for (QTextBlock block = view.begin(); block.isValid(); block = block.next()) {
      largest.block = std::max(largest.block, block.length());
      EXPECT_LE(block.textFormats().size(), static_cast<qsizetype>(kLongRuns));
      EXPECT_LE(block.textList() ? block.textList()->count() : 0, kItemsOfList);
    }
    EXPECT_LE(largest.depth, shape.bound.depth);
    EXPECT_LE(largest.cells, shape.bound.cells);
    EXPECT_LE(largest.block, shape.bound.block + 1);
    EXPECT_EQ(largest.tables, shape.bound.tables);
    // The same document, so that the same is written.
    const std::string after = Normal(Written(RtfExport(view, store).Document()));
    const auto differ = std::mismatch(after.begin(), after.end(), before.begin(), before.end());
    EXPECT_TRUE(after == before) << "…" << std::string(differ.first, after.end()).substr(0, 80) << "… is no …"
                                 << std::string(differ.second, before.end()).substr(0, 80);
  }
}

TEST(RtfShape, PagesAreTallWhereTheTextIs) {
  const auto is_tall = [](const std::string& body, int percent) {
    RtfStore store;
    QTextDocument view;
    RtfSimplified simplified;
    EXPECT_TRUE(ImportRtf(rtf::Read("{\\rtf1 " + body + "}"), store, view, simplified));
    return RtfPageHeight().Of(view, store, percent) > 0;
  };
  constexpr int kPercent = 20'000;
  EXPECT_FALSE(is_tall(Times(100, "\\par "), kPercent));
  EXPECT_TRUE(is_tall(Times(1'000, "\\par "), kPercent));
  EXPECT_FALSE(is_tall(Times(600, kRow), kPercent));  // cells side by side
  EXPECT_TRUE(is_tall(Times(1'200, kRow), kPercent));
}

TEST(RtfShape, AnEditKeepsTheTablesThatAreLines) {
  RtfPad pad(nullptr);
  ASSERT_TRUE(pad.SetRtf(rtf::Read("{\\rtf1\\pard x\\par " + Nested(19) + "}")));
  const auto dump = [&pad] {
    std::string bytes;
    pad.WriteRtf([&bytes](std::string_view part) { return bytes.append(part), true; });
    return rtf::Dump(rtf::Read(bytes));
  };
  const std::string before = dump();
  // The paragraph above them, then text of their own, of two lines: the cell has two paragraphs.
  pad.Select(0, 1);
  pad.ReplaceSelection(QStringLiteral("y"));
  std::string wanted = before;
  wanted.replace(wanted.find('x'), 1, "y");
  EXPECT_EQ(dump(), wanted);
  QTextBlock innermost = pad.document()->lastBlock();
  while (innermost.text().isEmpty()) innermost = innermost.previous();
  pad.Select(innermost.position() + 1, innermost.position() + 1);
  pad.ReplaceSelectionWithRtf(rtf::Read("{\\rtf1 1\\par 2\\par}"));
  wanted.replace(wanted.find("35/a|"), 5, "35/a1|35/2|");
  EXPECT_EQ(dump(), wanted);
}

TEST(RtfShape, LongParagraphsAreOneToSearchCopyAndEnter) {
  RtfPad pad(nullptr);
  ASSERT_TRUE(pad.SetRtf(rtf::Read("{\\rtf1 " + Times(10'000, "some words ") + "}")));
  const QTextBlock second = pad.document()->begin().next();
  const int seam = second.position() - 1;
  ASSERT_TRUE(second.isValid());
  // Over the seam, which is no character.
  const QString over_seam = second.previous().text().right(7) + second.text().left(7);
  const std::optional<PadPosition> found = pad.Find(over_seam, seam - 12, pad.End(), 0);
  ASSERT_TRUE(found);
  EXPECT_LT(*found, seam);
  EXPECT_GT(pad.SelectionEnd(), seam);
  EXPECT_EQ(pad.SelectedText(), over_seam);
  const auto paragraphs = [&pad] {
    std::string text;
    pad.WriteText([&text](std::string_view part) { return text.append(part), true; });
    return std::count(text.begin(), text.end(), '\n') + 1;
  };
  EXPECT_EQ(paragraphs(), 1);
  // An end that the user sets is one, wherever he sets it.
  int wanted = 1;
  for (const int place : {second.position(), second.position() + 7, seam}) {
    pad.Select(place, place);
    pad.textCursor().insertBlock();
    EXPECT_EQ(paragraphs(), ++wanted) << place;
  }
  // What makes one too long parts it anew.
  pad.Clear();
  pad.ReplaceSelection(QString(300'000, u'x') + QStringLiteral("\ny"));
  EXPECT_GT(pad.document()->blockCount(), 7);
  EXPECT_EQ(paragraphs(), 2);
  pad.Undo();
  EXPECT_EQ(pad.End(), 0);
}

TEST(RtfShape, TablesInPastedPagesAreBounded) {
  RtfPad pad(nullptr);
  QString page;
  for (int level = 0; level < 30; ++level) page += QStringLiteral("<table><tr><td>a");
  const std::optional<RtfSimplified> simplified = pad.ReplaceSelectionWithHtml(page);
  ASSERT_TRUE(simplified);
  EXPECT_GT(simplified->tables, 0U);
  Largest largest;
  Measure(*pad.document()->rootFrame(), 0, largest);
  EXPECT_LE(largest.depth, kMaxShownDepth);
}

TEST(RtfShape, TablesBeyondTheReadersLimitAreTold) {
  EXPECT_FALSE(rtf::Read("{\\rtf1 " + Nested(100) + "}").losses.deep_tables);
  EXPECT_TRUE(rtf::Read("{\\rtf1 " + Nested(101) + "}").losses.deep_tables);
}
