#include <QClipboard>
#include <QMimeData>
#include <QTest>
#include <ostream>

#include "RtfProbe.h"
#include "RtfWindow.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view kStyled =
    "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red1\\green2\\blue3;\\red4\\green5\\blue6;}"
    "{\\stylesheet{\\s3 Mine;}}{\\*\\listtable{\\list{\\listlevel\\levelnfc0{\\leveltext\\'02\\'00);}}\\listid7}}"
    "{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}}"
    "\\pard\\s3\\keepn\\brdrb\\brdrs\\brdrcf2\\cbpat1\\lang1031 one\\par\\pard\\ls1\\li720 two\\par\\pard end\\par}";

}  // namespace

TEST_F(FormRtf, APasteKeepsWhatTheClipboardHolds) {
  form_RTF& window = Open(std::string(kStyled));
  const auto marks_of_last = [](form_RTF& written) {
    const rtf::RtfDocument document = rtf::Read(written.Content());
    std::string marks;
    for (const rtf::Paragraph& paragraph : document.paragraphs)
      marks += MarksOf(document, document.paragraph_formats[paragraph.format]) + "|";
    return marks;
  };
  RtfPad& pad = PadOf(window);
  pad.Select(0, 8);
  window.EditCopy();
  pad.Select(pad.End(), pad.End());
  QTest::keyClick(&pad, Qt::Key_Return);
  window.EditPaste();
  const std::string styled = "\\s3\\keepn\\brdrb\\brdrs\\brdrcf2\\cbpat1|";
  EXPECT_EQ(marks_of_last(window), styled + "li720,list2,start1,ls1||" + styled + "li720,list2,start1,ls1||");
  form_RTF& other = static_cast<form_RTF&>(*NewDocument(global_, DocumentKind::Rtf));
  other.EditPaste();
  EXPECT_EQ(marks_of_last(other), "\\s3\\keepn\\brdrb\\brdrs\\brdrcf1\\cbpat2|li720,list2,start1,ls1||")
      << "colours under their numbers there; styles and lists come along";
}

TEST_F(FormRtf, PastedMarkupIsSavedAsItLooks) {
  form_RTF& window = Open("{\\rtf1\\ansi{\\*\\unknown x}\\pard first}");
  RtfPad& pad = PadOf(window);
  pad.Select(pad.End(), pad.End());
  QTest::keyClick(&pad, Qt::Key_Return);
  auto* html = new QMimeData;
  html->setHtml(
      u"<h1>big</h1><ol start=4><li>one<ol type=a><li>inner</li></ol></li></ol><p style='font-family:monospace'>c</p>"
      u"<table border=0><tr><td bgcolor=#ff0000>bare</td></tr></table><table border=1 "
      u"width=200><tr><td>framed</td></tr></table>"
      u"<img src='file:///x.png'><img src='data:image/png;base64,iVBORw0KGgo='>"_s);
  QGuiApplication::clipboard()->setMimeData(html);
  window.EditPaste();
  const std::string written = window.Content();
  EXPECT_NE(written.find("\\pard first\\par"), std::string::npos) << "the rest stays as it is: " << written;
  const rtf::RtfDocument document = rtf::Read(written);
  const auto format_at = [&](std::string_view text) -> const rtf::CharFormat& {
    std::size_t at = 0, run = 0;
    for (const std::size_t wanted = document.text.find(text); at + document.runs[run].bytes <= wanted; ++run)
      at += document.runs[run].bytes;
    return document.char_formats[document.runs[run].format];
  };
  EXPECT_EQ(format_at("big").half_points, document.char_formats.front().half_points * 2);
  EXPECT_EQ(document.fonts[format_at("c").font].name, "Courier New");
  const auto list_of = [&](std::size_t paragraph) {
    const rtf::ParagraphFormat& format = document.paragraph_formats[document.paragraphs[paragraph].format];
    return std::to_string(static_cast<int>(format.list)) + " " + std::to_string(format.list_level) + " " +
           std::to_string(format.left) + " " + std::to_string(format.list_start);
  };
  EXPECT_EQ(list_of(2), "2 0 720 4");
  EXPECT_EQ(list_of(3), "3 1 1440 1");
  ASSERT_EQ(document.rows.size(), 2U);
  EXPECT_EQ(document.rows[0].definition.find("brdrs"), std::string::npos);
  EXPECT_NE(document.rows[0].definition.find("clcbpat"), std::string::npos);
  EXPECT_NE(document.rows[1].definition.find("brdrs"), std::string::npos);
  EXPECT_EQ(document.cells[1].right_edge, 3000);
  EXPECT_EQ(document.objects.size(), 1U) << "what stands elsewhere is not asked for";
}

struct MarkupCase {
  const char* html;
  const char* saved;    ///< stands in the file
  const char* missing;  ///< does not
};
void PrintTo(const MarkupCase& it, std::ostream* out) { *out << it.html; }

class FormRtfMarkup : public FormRtf, public ::testing::WithParamInterface<MarkupCase> {};

// As word processors and browsers hand it over.
TEST_P(FormRtfMarkup, IsSavedAsItLooks) {
  const std::string before = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}\\pard one\\par two}";
  form_RTF& window = Open(before);
  auto* data = new QMimeData;
  data->setHtml(QString::fromUtf8(GetParam().html));
  QGuiApplication::clipboard()->setMimeData(data);
  RtfPad& pad = PadOf(window);
  pad.Select(3, 3);
  QTest::keyClick(&pad, Qt::Key_Return);
  window.EditPaste();
  const std::string after = window.Content();
  EXPECT_NE(after.find(GetParam().saved), std::string::npos) << after;
  EXPECT_EQ(after.find(GetParam().missing), std::string::npos) << after;
  while (pad.CanUndo()) pad.Undo();
  EXPECT_EQ(window.Content(), before);
}

const MarkupCase kMarkups[] = {
    {"<style>p { background: transparent }</style><p>a</p>", "a", "cbpat"},
    {"<p style='background-color: rgba(9, 9, 9, 0)'>a <code>background: transparent;</code></p>",
     "background: transparent;", "cbpat"},
    {"<span style='background: rgba(255, 0, 0, 0.5)'>a</span>", "\\red255\\green128\\blue128;", "\\red255\\green0"},
    {"<style>p { background: transparent }</style><table><tr><td bgcolor=#ffff00><p>a</p></td></tr></table>",
     "\\clcbpat1\\cellx", "brdr"},
    {"<table><tr><td style='border: 1.50pt solid #ff0000'>a</td></tr></table>", "\\clbrdrt\\brdrs\\brdrw30\\brdrcf1",
     "trbrdr"},
    {"<table style='width: 200px'><tr><td>a</td></tr></table>", "\\cellx3000", "brdr"},
    {"<table><tr><td style='border-width: 300px; border-style: none'>a</td></tr></table>", "\\cellx", "\\cellx4500"},
    {"<ul><li>a<ul><li>b</li></ul></li></ul>", "\\ls1\\ilvl1", "\\ls2"},
    {"<h2>a</h2>", "\\b", "\\ls"},
};
INSTANTIATE_TEST_SUITE_P(Clips, FormRtfMarkup, ::testing::ValuesIn(kMarkups));

TEST_F(FormRtf, APastedPictureIsAllThatChanges) {
  const std::string before = "{\\rtf1\\ansi{\\*\\unknown x}\\pard one \\par two}";
  form_RTF& window = Open(before);
  auto* picture = new QMimeData;
  picture->setImageData(QImage(3, 2, QImage::Format_RGB32));
  QGuiApplication::clipboard()->setMimeData(picture);
  PadOf(window).Select(4, 4);
  window.EditPaste();
  const std::string after = window.Content();
  constexpr std::string_view kGroup = "{\\pict\\pngblip\\picw3\\pich2\\picwgoal45\\pichgoal30\r\n";
  const std::size_t begin = before.find("\\par two");
  ASSERT_EQ(after.substr(begin, kGroup.size()), kGroup) << after;
  EXPECT_EQ(before.substr(0, begin) + after.substr(after.find('}', begin) + 1), before);
}

// An item of a list that is moved stands where it was put, and its new neighbours stay what they are.
TEST_F(FormRtf, AMovedItemLeavesItsNeighboursAlone) {
  const std::string tables =
      "{\\rtf1\\ansi{\\*\\listtable{\\list{\\listlevel\\levelnfc0{\\leveltext\\'02\\'00.;}}\\listid7}}"
      "{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}}\\pard top\\par";
  const std::string items =
      "\\pard\\ls1{\\listtext 1.\\tab}one\\par{\\listtext 2.\\tab}two\\par\\pard\\qc three\\par\\pard four\\par}";
  form_RTF& window = Open(tables + items);
  RtfPad& pad = PadOf(window);
  pad.Select(4, 8);
  window.EditCut();
  pad.Select(8, 8);
  window.EditPaste();
  EXPECT_EQ(pad.toPlainText(), u"top\ntwo\none\nthree\nfour"_s);
  EXPECT_EQ(window.Content(), tables +
                                  "\\pard\\ls1{\\listtext 2.\\tab}two\\par{\\listtext 2.\\tab}one\\par"
                                  "\\pard\\qc three\\par\\pard four\\par}");
  while (pad.CanUndo()) pad.Undo();
  EXPECT_EQ(window.Content(), tables + items);
}
