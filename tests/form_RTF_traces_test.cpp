#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

#include "RtfWindow.h"
#include "documents/rtf/RtfNumbering.h"
#include "documents/rtf/RtfReader.h"
#include "files/CodePage.h"

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
    "{\\rtf1\\ansi{\\*\\listtable{\\list{\\listlevel\\levelnfc0\\levelstartat3{\\leveltext\\'02\\'00);}}\\listid7}}"
    "{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}}{\\header\\pard top\\par}{\\footer\\pard low\\par}\\pgbrdrt"
    "\\pard\\ls1\\li720\\fi-360\\sb60\\sa120 one\\par two\\par\\pard {\\revised new} {\\deleted old}"
    "{\\*\\annotation said}\\par}";

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
  EXPECT_EQ(tips, (QStringList{u"Comment: said"_s, u"Footer: low. Saving keeps it."_s,
                               u"Header: top \u2013 The pages have borders. Saving keeps it."_s,
                               u"Tracked change: deleted"_s, u"Tracked change: inserted"_s}));
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

TEST_F(FormRtf, EnterInAListItemKeepsItsSpacing) {
  form_RTF& window = Open(kTraced);
  RtfPad& pad = PadOf(window);
  pad.setTextCursor(pad.document()->find(u"one"_s));
  QTest::keyClick(&pad, Qt::Key_Right);
  QTest::keyClicks(&pad, u"\rx"_s);
  window.SaveFile();
  std::string edited = kTraced;
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
    const rtf::RtfDocument document = rtf::ReadRtf("{\\rtf1" + body + "}", BytesToUtf8);
    rtf::RtfNumbering numbering;
    std::string joined;
    for (const rtf::Paragraph& paragraph : document.paragraphs)
      joined += numbering.Next(document.paragraph_formats[paragraph.format]) + "|";
    return joined;
  };
  const auto listed = [&](const std::string& levels, const std::string& text) {
    return labels("{\\*\\listtable{\\list" + levels +
                  "\\listid7}}{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}}" + text);
  };
  const std::string level = "{\\listlevel\\levelnfc";
  EXPECT_EQ(listed(level + "0\\levelstartat3{\\leveltext\\'02\\'00);}{\\levelnumbers\\'01;}}", "\\ls1 a\\par b\\par"),
            "3)|4)|");
  EXPECT_EQ(listed(level + "2\\levelstartat4{\\leveltext\\'03(\\'00);}}", "\\ls1 a\\par"), "(iv)|");
  EXPECT_EQ(listed(level + "0{\\leveltext\\'02\\'00.;}}" + level + "4{\\leveltext\\'04\\'00.\\'01.;}}",
                   "\\ls1 a\\par\\ilvl1 b\\par c\\par\\ilvl0 d\\par"),
            "1.|1.a.|1.b.|2.|");
  EXPECT_EQ(listed(level + "23{\\leveltext\\'01\\u-3929 ?;}}" + level + "23{\\leveltext\\'01\\'b7;}}" + level +
                       "23{\\leveltext\\'01o;}}",
                   "\\ls1 a\\par\\ilvl1 b\\par\\ilvl2 c\\par"),
            "\u25AA|\u2022|o|");
  EXPECT_EQ(listed(level + "0{\\leveltext\\'00;}}", "\\ls1 a\\par"), "|");
  EXPECT_EQ(labels("{\\pn\\pnlvlbody\\pnlcltr\\pnstart2{\\pntxtb (}{\\pntxta )}}a\\par b\\par"), "(b)|(c)|");
  EXPECT_EQ(labels("{\\pn\\pnlvlblt{\\pntxtb\\'b7}}a\\par"), "\u2022|");
  EXPECT_EQ(labels("{\\pn\\pnlvlblt{\\pntxtb\\'95}}a\\par{\\pn\\pnlvlblt{\\pntxtb\\u9642*}}b\\par"), "\u2022|\u25AA|");
}
