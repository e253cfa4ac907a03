#include <QDateTime>
#include <QLocale>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextLayout>
#include <QTextTable>

#include "RtfWindow.h"
#include "documents/rtf/RtfNumbering.h"
#include "documents/rtf/RtfReader.h"
#include "files/CodePage.h"
#include "windows/rich/RtfInSight.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

constexpr QRgb kInsertedPixel = qRgb(0x0B, 0x6E, 0x4F), kDeletedPixel = qRgb(0xB0, 0x1E, 0x1E);

int CountPixels(const QImage& image, QRgb color) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == color ? 1 : 0;
  return count;
}

const std::string kTraced =
    "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}{\\f1\\fcharset204 Arial;}{\\f2\\fcharset128 Mincho;}}"
    "{\\*\\revtbl{Unknown;}{\\f1 \\'c8\\'e2;}}"
    "{\\headerl\\f1 "
    "\\'cf\\'f0\\par}{\\headerr\\f2\\'93\\'fa{\\shp"
    "{\\*\\shpinst{\\sp{\\sn gtextUNICODE}{\\sv DRAFT}}}}\\par}{\\footer\\pard low \\u937?\\par}\\pgbrdrt"
    "\\pard\\ls1\\li720\\fi-360\\sb60\\sa120 one\\par two\\par\\pard {\\revised\\revauth1 new} {\\deleted old}"
    "{\\mvf\\mvauth0 gone}{\\crauth1\\b bold}{\\*\\atnauthor Ann}\\chatn{\\*\\annotation{\\*\\atnref 1}{\\*\\atndate "
    "1194847263}said}.{\\v hid}.{\\field{\\*\\fldinst FORMCHECKBOX}{\\fldrslt}}.{\\field{\\*\\fldinst EQ "
    "x}{\\fldrslt}}."
    "{\\xe i}{\\*\\bkmkstart b}{\\mmath{\\*\\moMath{\\mf{\\mfPr{\\mtype bar}}{\\mnum 1}{\\mden "
    "2}}}}{\\footnote\\ftnalt note}"
    "{\\revised\\revauth1\\par}{\\field{\\*\\fldinst HYPERLINK \"http://b.org/x\"}{\\fldrslt www.a.org}}\\par}";

const std::string kListed =
    "{\\rtf1\\ansi{\\*\\listtable{\\list{\\listlevel\\levelnfc0\\levelstartat3{\\leveltext\\'02\\'00);}}\\listid7}}"
    "{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}}\\pard\\ls1\\li720\\fi-360\\sb60\\sa120 one\\par two\\par"
    "\\pard {\\revised new} {\\deleted old}\\par}";

}  // namespace

TEST_F(FormRtf, TracesOfWhatItCannotShowAreNoPartOfTheFile) {
  form_RTF& window = Open(kTraced);
  RtfPad& pad = PadOf(window);
  const QImage image = pad.viewport()->grab().toImage();
  EXPECT_GT(CountPixels(image, kInsertedPixel), 10);
  EXPECT_GT(CountPixels(image, kDeletedPixel), 10);
  QStringList tips;
  for (int y = 0; y < pad.viewport()->height(); y += 2)
    for (int x = 0; x < pad.viewport()->width(); x += 2)
      if (const QString tip = pad.TipAt({x, y}); !tip.isEmpty() && !tips.contains(tip)) tips.append(tip);
  tips.sort();
  const QString when = QLocale().toString(QDateTime({2015, 7, 29}, {16, 31}), QLocale::ShortFormat);
  EXPECT_EQ(tips.join(u'|'),
            QStringList({u"Check box, which is kept and not shown"_s, u"Comment (Ann, %1)\nsaid"_s.arg(when),
                         u"Endnote\nnote"_s, u"Footer: low \u03A9\nKept when the document is saved"_s,
                         u"Formula\n1/2"_s, u"Formula, which is kept and not shown: x"_s, u"Hidden text: hid"_s,
                         u"Link, which is not opened here\nhttp://b.org/x\nIts text looks like another "
                         "address"_s,
                         u"The pages have borders\nWatermark: DRAFT\nHeader of left pages: \u041F\u0440\n"
                         "Header of right pages: \u65E5\nKept when the document is saved"_s,
                         u"Tracked change: another format (\u0418\u0432)"_s, u"Tracked change: deleted"_s,
                         u"Tracked change: inserted (\u0418\u0432)"_s, u"Tracked change: moved away from here"_s})
                .join(u'|'));
  QTest::keyClick(&pad, Qt::Key_Right);
  window.SaveFile();
  EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), kTraced);
  pad.setTextCursor(pad.document()->find(u"new"_s));
  QTest::keyClick(&pad, Qt::Key_Right);
  QTest::keyClicks(&pad, u"er"_s);
  window.SaveFile();
  std::string edited = kTraced;
  EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), edited.replace(edited.find("new"), 3, "newer"));
}

TEST_F(FormRtf, APageBreakHasALineAndTipsCoverAllOfAnObject) {
  form_RTF& window = Open("{\\rtf1\\li600 up\\page low{\\object}\\par}");
  RtfPad& pad = PadOf(window);
  pad.setWordWrapMode(QTextOption::WordWrap);
  const auto place = [&pad](const QString& text) { return pad.cursorRect(pad.document()->find(text)); };
  EXPECT_GE(place(u"low"_s).top(), place(u"up"_s).bottom());
  EXPECT_LE(pad.document()->size().width(), pad.viewport()->width()) << "a break is no wider than its line";
  const QRect object = place(u"low"_s);
  EXPECT_EQ(pad.TipAt(object.center() + QPoint(6, 0)), u"Embedded object"_s);
  EXPECT_EQ(pad.TipAt(object.center() + QPoint(45, 0)), u"Embedded object"_s) << "behind its middle, too";
}

TEST_F(FormRtf, WhatIsInSightIsFoundWithoutTheRest) {
  QTextDocument text;
  QTextCursor cursor(&text);
  QTextTable* table = cursor.insertTable(3, 2);
  table->cellAt(0, 1).firstCursorPosition().insertText(u"a\nb\nc\nd"_s);
  table->mergeCells(0, 1, 3, 1);
  cursor.movePosition(QTextCursor::End);
  cursor.insertText(u"word\n"_s.repeated(30'000));
  text.setPageSize({400, -1});
  const auto is_laid_out = [&text] { return text.lastBlock().layout()->lineCount() > 0; };
  EXPECT_EQ(FirstBlockBelow(text, 0), text.firstBlock());
  const QTextBlock last_row = text.findBlock(table->cellAt(2, 0).firstPosition());
  // The cell beside it begins in the first row.
  EXPECT_EQ(FirstBlockBelow(text, TopInDocument(last_row)), text.findBlock(table->cellAt(0, 1).firstPosition()));
  EXPECT_FALSE(is_laid_out());
  EXPECT_EQ(FirstBlockBelow(text, TopInDocument(text.lastBlock())), text.lastBlock());
  EXPECT_TRUE(is_laid_out());
}

TEST_F(FormRtf, TallTextIsLaidOutToItsEnd) {
  constexpr int kParagraphs = 20'000;
  std::string body = "{\\rtf1\\ansi \\sb9000 \\pagebb ";
  for (int i = 1; i < kParagraphs; ++i) body += "\\par ";
  form_RTF& window = Open(body + "end}");
  RtfPad& pad = PadOf(window);
  QTest::keyClick(&pad, Qt::Key_End, Qt::ControlModifier);
  QTest::keyClicks(&pad, u"x"_s);
  EXPECT_EQ(pad.document()->lastBlock().text(), u"endx"_s);
  const double height = TopInDocument(pad.document()->lastBlock());
  EXPECT_GT(height, 9e6) << "more than a page without end has";
  EXPECT_LT(height, 16e6) << "no page is broken in the view";
  QTest::keyClick(&pad, Qt::Key_Home, Qt::ControlModifier);
  EXPECT_TRUE(pad.viewport()->rect().contains(pad.cursorRect()));
}

TEST_F(FormRtf, EnterWithinAParagraphLeavesItsEndAsItWas) {
  const std::string tracked = "{\\rtf1 One {\\deleted gone\\par} Two {\\revised in\\par} Three\\par}";
  const std::pair<QString, std::string> cases[] = {
      {u"One"_s, "One\\par "}, {u"go"_s, "go\\par "}, {u"Two"_s, "Two\\par "}, {u"Thr"_s, "Thr\\par "}};
  for (const auto& [text, with_end] : cases) {
    form_RTF& window = Open(tracked);
    RtfPad& pad = PadOf(window);
    pad.setTextCursor(pad.document()->find(text));
    QTest::keyClick(&pad, Qt::Key_Right);
    QTest::keyClick(&pad, Qt::Key_Return);
    window.SaveFile();
    std::string edited = tracked;
    edited.replace(edited.find(text.toStdString()), static_cast<std::size_t>(text.size()), with_end);
    EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), edited);
    QTest::keyClick(&pad, Qt::Key_Z, Qt::ControlModifier);
    window.SaveFile();
    EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), tracked);
    window.FileClose();
  }
}

TEST_F(FormRtf, TheBreakOfASectionSaysWhatItsPagesHave) {
  form_RTF& window =
      Open("{\\rtf1 one\\sect\\sectd\\sbknone two\\sect\\sectd\\pgbrdrt\\brdrs{\\header Head\\par}three\\par}");
  RtfPad& pad = PadOf(window);
  QStringList tips;
  for (const QString& text : {u"one"_s, u"two"_s}) {
    const QTextBlock block = pad.document()->find(text).block();
    QTextCursor cursor(block);
    cursor.movePosition(QTextCursor::EndOfBlock);
    tips.append(pad.TipOf(cursor.charFormat()));
  }
  EXPECT_EQ(tips.join(u'|'),
            u"New section|New section, new page\nHeader, from this section on: Head\nThe pages have borders");
}

TEST_F(FormRtf, JoiningOverTheBreakOfASectionTakesItOut) {
  const std::string two = "{\\rtf1 one\\sect\\sectd\\linex0 two\\par three\\par}";
  for (const int key : {Qt::Key_Delete, Qt::Key_Backspace}) {
    form_RTF& window = Open(two);
    RtfPad& pad = PadOf(window);
    pad.setTextCursor(pad.document()->find(u"two"_s));
    QTest::keyClick(&pad, Qt::Key_Home);
    if (key == Qt::Key_Delete) QTest::keyClick(&pad, Qt::Key_Left);
    QTest::keyClick(&pad, static_cast<Qt::Key>(key));
    window.SaveFile();
    EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), "{\\rtf1 onetwo\\par three\\par}");
    QTest::keyClick(&pad, Qt::Key_Z, Qt::ControlModifier);
    window.SaveFile();
    EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), two);
    window.FileClose();
  }
}

TEST_F(FormRtf, EnterInAListItemKeepsItsSpacing) {
  form_RTF& window = Open(kListed);
  RtfPad& pad = PadOf(window);
  pad.setTextCursor(pad.document()->find(u"one"_s));
  QTest::keyClick(&pad, Qt::Key_Right);
  QTest::keyClicks(&pad, u"\rx"_s);
  window.SaveFile();
  std::string edited = kListed;
  EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), edited.replace(edited.find("one"), 3, "one\\par x"));
  pad.setTextCursor(pad.document()->find(u"old"_s));
  QTest::keyClick(&pad, Qt::Key_Right);
  QTest::keyClicks(&pad, u"\r\r"_s);
  EXPECT_EQ(pad.toPlainText(), u"one\nx\ntwo\nnew old\n\n"_s) << "an empty paragraph is one, too";
  pad.setTextCursor(pad.document()->find(u"two"_s));
  QTest::keyClick(&pad, Qt::Key_Right);
  QTest::keyClicks(&pad, u"\r\r"_s);
  EXPECT_EQ(pad.toPlainText(), u"one\nx\ntwo\n\nnew old\n\n"_s);
  EXPECT_FALSE(pad.textCursor().currentList()) << "twice Return ends a list";
}

TEST(RtfNumbering, ListsShowTheirStartAndForm) {
  const auto labels = [](const std::string& body) {
    const rtf::RtfDocument document = rtf::ReadRtf(
        "{\\rtf1{\\fonttbl{\\f4\\fcharset2 Symbol;}{\\f5\\fcharset2 Wingdings;}}" + body + "}", BytesToUtf8);
    rtf::ListTables tables;
    tables.ReadHeader(document.kept_header);
    rtf::RtfNumbering numbering(&tables);
    std::string joined;
    for (const rtf::Paragraph& paragraph : document.paragraphs)
      joined += numbering.Next(document.paragraph_formats[paragraph.format]) + "|";
    return joined;
  };
  const auto listed = [&](const std::string& levels, const std::string& text) {
    return labels("{\\*\\listtable{\\list" + levels +
                  "\\listid7}}{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}{\\listoverride\\listid7\\ls2}"
                  "{\\listoverride\\listid7{\\lfolevel\\listoverridestartat\\levelstartat5}\\ls3}}" +
                  text);
  };
  const std::string level = "{\\listlevel\\levelnfc", form = "{\\leveltext\\'02\\'00.;}}";
  const std::string of_two = level + "0" + form + level + "0{\\leveltext\\'03\\'00.\\'01;}";
  const std::string two_of_it = "\\ls1\\ilvl1 a\\par\\ilvl0 b\\par\\ilvl1 c\\par";
  const struct {
    std::string levels, text, labels;
  } cases[] = {
      {level + "0\\levelstartat3{\\leveltext\\'02\\'00);}{\\levelnumbers\\'01;}}", "\\ls1 a\\par b\\par", "3)|4)|"},
      {level + "2\\levelstartat4{\\leveltext\\'03(\\'00);}}", "\\ls1 a\\par", "(iv)|"},
      {level + "0{\\leveltext\\'02\\'00.;}}" + level + "4{\\leveltext\\'04\\'00.\\'01.;}}",
       "\\ls1 a\\par\\ilvl1 b\\par c\\par\\ilvl0 d\\par", "1.|1.a.|1.b.|2.|"},
      {level + "1\\levelstartat9" + form, "\\ls1 a\\par", "IX.|"},
      {level + "3\\levelstartat28" + form, "\\ls1 a\\par", "BB.|"},
      {level + "5\\levelstartat12" + form, "\\ls1 a\\par b\\par", "12th.|13th.|"},
      {level + "6\\levelstartat121" + form, "\\ls1 a\\par", "One hundred twenty-one.|"},
      {level + "7\\levelstartat20" + form, "\\ls1 a\\par b\\par", "Twentieth.|Twenty-first.|"},
      {level + "22\\levelstartat9" + form, "\\ls1 a\\par b\\par", "09.|10.|"},
      {level + "255" + form, "\\ls1 a\\par", "|"},
      {of_two + "}", two_of_it, "1.1|1.|1.1|"},
      {of_two + "\\levelnorestart1}", two_of_it, "1.1|1.|1.2|"},
      {level + "1" + form + level + "0\\levellegal1{\\leveltext\\'03\\'00.\\'01;}}", two_of_it, "1.1|I.|1.1|"},
      {level + "23{\\leveltext\\'01\\u-3929 ?;}}" + level + "23{\\leveltext\\'01\\'b7;}}" + level +
           "23{\\leveltext\\'01o;}}",
       "\\ls1 a\\par\\ilvl1 b\\par\\ilvl2 c\\par", "\u25AA|\u2022|o|"},
      {level + "23{\\leveltext\\'01v;}\\f5}" + level + "23{\\leveltext\\'01\\u-3928 ?;}\\f5}" + level +
           "23{\\leveltext\\'01\\u-3928 ?;}\\f4}",
       "\\ls1 a\\par\\ilvl1 b\\par\\ilvl2 c\\par", "\u2756|\u25FB|\u2666|"},
      {level + "0{\\leveltext\\'00;}}", "\\ls1 a\\par", "|"},
      {level + "0" + form, "\\ls1 a\\par\\ls2 b\\par\\ls3 c\\par d\\par", "1.|2.|5.|6.|"},
  };
  for (const auto& [levels, text, expected] : cases) EXPECT_EQ(listed(levels, text), expected) << levels;
  EXPECT_EQ(labels("{\\pn\\pnlvlbody\\pnlcltr\\pnstart2{\\pntxtb (}{\\pntxta )}}a\\par b\\par"), "(b)|(c)|");
  EXPECT_EQ(labels("{\\pn\\pnlvlbody\\pnordt\\pnstart3{\\pntxta .}}a\\par"), "Third.|");
  EXPECT_EQ(labels("{\\pn\\pnlvlblt\\pnf5{\\pntxtb\\'d8}}a\\par"), "\u27A2|");
  EXPECT_EQ(labels("{\\pn\\pnlvlblt{\\pntxtb\\'b7}}a\\par"), "\u2022|");
  EXPECT_EQ(labels("{\\pn\\pnlvlblt{\\pntxtb\\'95}}a\\par{\\pn\\pnlvlblt{\\pntxtb\\u9642*}}b\\par"), "\u2022|\u25AA|");
}
