#include <QClipboard>
#include <QMimeData>
#include <QTest>
#include <algorithm>
#include <ostream>

#include "RtfProbe.h"
#include "RtfWindow.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view kBegin = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}";

void Offer(const char* type, const std::string& bytes) {
  auto* data = new QMimeData;
  data->setData(QString::fromLatin1(type), QByteArray::fromStdString(bytes));
  QGuiApplication::clipboard()->setMimeData(data);
}

std::string HeaderOf(const std::string& bytes) { return rtf::Read(bytes).kept_header; }

struct JoinCase {
  const char* tables;
  const char* clip_tables;
  const char* clip;
  const char* header;  ///< of the file that is saved
  const char* text;    ///< stands in it
};
const JoinCase kJoins[] = {
    {"{\\stylesheet{Normal;}{\\s1 Mine;}}", "{\\stylesheet{Normal;}{\\s1\\b\\sbasedon2\\snext0 Other;}{\\s2 Base;}}",
     "\\pard\\s1 b\\par c\\par", "{\\stylesheet{Normal;}{\\s1 Mine;}{\\s2\\b\\sbasedon3\\snext0 Other;}{\\s3 Base;}}",
     "\\s2"},
    {"{\\stylesheet{\\s4 other;}}", "{\\stylesheet{\\s1 Other;}}", "\\pard\\s1 b\\par c\\par",
     "{\\stylesheet{\\s4 other;}}", "\\s4"},
    {"", "{\\stylesheet{\\s1\\f0\\u8364?;}}", "\\pard\\s1 b\\par c\\par", "{\\stylesheet{\\s1\\uc1\\f0\\u8364?;}}",
     "\\s1"},
    {"\\uc0{\\stylesheet{\\s3 Mine;}}", "{\\stylesheet{\\s1\\u8364?;}}", "\\pard\\s1 b\\par c\\par",
     "{\\stylesheet\\uc0{\\s3 Mine;}{\\s1\\uc1\\u8364?;}}", "\\s1"},
    {"{\\*\\listtable{\\list\\listid7}}{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}}",
     "{\\*\\listtable{\\list{\\listlevel\\levelnfc4{\\leveltext\\'02\\'00);}}\\listid7}}"
     "{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}}",
     "\\pard\\ls1 b\\par c\\par",
     "{\\*\\listtable{\\list\\listid7}{\\list{\\listlevel\\levelnfc4{\\leveltext\\'02\\'00);}}\\listid8}}"
     "{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}{\\listoverride\\listid8\\ls2}}",
     "\\ls2"},
    {"{\\*\\revtbl{Unknown;}{Ann;}}", "{\\*\\revtbl{Unknown;}{Bob;}{Ann;}}",
     "\\pard{\\revised\\revauth1 b}{\\revised\\revauth2 c}\\par", "{\\*\\revtbl{Unknown;}{Ann;}{Bob;}}",
     "\\revauth2 b"},
    {"", "{\\stylesheet{\\s1 Note;}}", "\\pard{\\footnote\\pard\\s1 n}b\\par", "{\\stylesheet{\\s1 Note;}}",
     "{\\footnote\\pard\\s1 n}"},
};

void PrintTo(const JoinCase& it, std::ostream* out) { *out << it.tables << " and " << it.clip_tables; }

class FormRtfJoin : public FormRtf, public ::testing::WithParamInterface<JoinCase> {};

}  // namespace

// What text of another document names joins the file's own tables; all else of the file stays.
TEST_P(FormRtfJoin, BringsStylesListsAndAuthors) {
  const JoinCase& it = GetParam();
  const std::string before = std::string(kBegin).append(it.tables).append("\\pard one\\par last\\par}");
  Offer("text/rtf", std::string(kBegin).append(it.clip_tables).append(it.clip).append("}"));
  form_RTF& window = Open(before);
  RtfPad& pad = PadOf(window);
  pad.Select(pad.End(), pad.End());
  QTest::keyClick(&pad, Qt::Key_Return);
  window.EditPaste();
  const std::string after = window.Content();
  EXPECT_EQ(HeaderOf(after), it.header) << after;
  EXPECT_NE(after.find(it.text), std::string::npos) << after;
  EXPECT_TRUE(after.starts_with(kBegin)) << after;
  EXPECT_NE(after.find("\\pard one\\par last\\par"), std::string::npos) << after;
  window.EditPaste();
  EXPECT_EQ(HeaderOf(window.Content()), it.header) << "what came once does not come twice";
  while (pad.CanUndo()) pad.Undo();
  EXPECT_EQ(window.Content(), before);
}

INSTANTIATE_TEST_SUITE_P(Tables, FormRtfJoin, ::testing::ValuesIn(kJoins));

// Wherever a letter with lists, lines and a table is pasted, it comes whole, and undone it leaves the file as it was.
TEST_F(FormRtf, ALetterIsPastedAnywhere) {
  const std::string tables =
      "{\\*\\listtable{\\list{\\listlevel\\levelnfc4{\\leveltext\\'02\\'00);}}\\listid7}}"
      "{\\*\\listoverridetable{\\listoverride\\listid7\\ls1}}";
  const std::string clip =
      std::string(kBegin) + "{\\colortbl;\\red200\\green220\\blue200;}{\\stylesheet{\\s1 Head;}}" + tables +
      "\\pard\\s1\\keepn\\b Head\\par\\pard\\plain\\ls1\\li720 item\\par"
      "\\pard\\brdrb\\brdrs\\cbpat1\\lang1031 boxed\\par\\trowd\\clcbpat1\\cellx2000\\pard\\intbl C\\cell\\row"
      "\\pard End\\par}";
  const std::string before =
      std::string(kBegin) + tables +
      "\\pard top\\par\\trowd\\cellx3000\\cellx6000\\pard\\intbl in\\cell\\pard\\intbl\\cell\\row"
      "\\pard\\ls1\\li720{\\listtext a)\\tab}one\\par{\\listtext b)\\tab}two\\par\\pard\\qc last\\par}";
  Offer("text/rtf", clip);
  form_RTF& window = Open(before);
  RtfPad& pad = PadOf(window);
  for (int at = 0; at <= pad.End(); ++at) {
    pad.Select(at, at);
    const bool is_free = pad.textCursor().atBlockStart() && pad.textCursor().currentList() == nullptr;
    window.EditPaste();
    const rtf::RtfDocument saved = rtf::Read(window.Content());
    EXPECT_EQ(saved.rows.size(), 2U) << at;
    const auto has = [&saved](std::string_view words) {
      return std::ranges::any_of(saved.extras, [&](const std::string& extra) { return extra.starts_with(words); });
    };
    EXPECT_TRUE(has("\\brdrb\\brdrs\\cbpat1")) << at;
    EXPECT_EQ(has("\\s1\\keepn"), is_free) << "what it comes into keeps its format; at " << at;
    EXPECT_NE(saved.text.find("item"), std::string::npos) << at;
    std::size_t items = 0;
    for (const rtf::Paragraph& paragraph : saved.paragraphs)
      items += saved.paragraph_formats[paragraph.format].list == rtf::ListKind::LowerLetter ? 1 : 0;
    EXPECT_GE(items, 3U) << "the pasted one and the two that are there, at " << at;
    while (pad.CanUndo()) pad.Undo();
    EXPECT_EQ(window.Content(), before) << at;
  }
}

struct CopyCase {
  const char* body;
  int begin, end;
  const char* saved;  ///< stands in a new document that it is pasted into
  const char* missing = "\\footer";
};
void PrintTo(const CopyCase& it, std::ostream* out) { *out << it.body; }

const CopyCase kCopies[] = {
    {"\\pard a{\\field{\\*\\fldinst HYPERLINK \"http://x/\"}{\\fldrslt link}}b\\par", 2, 4,
     "{\\field{\\*\\fldinst HYPERLINK \"http://x/\"}{\\fldrslt in}}"},
    {"\\pard a{\\v hidden}b\\par", 0, 2, "hidden"},
    {"\\pard a{\\revised\\revauth1 new}b\\par", 1, 4, "\\revauth1"},
    {"\\pard{\\lang1031\\chcbpat1 x}y\\par", 0, 1, "\\lang1031\\chcbpat1"},
    {"\\trowd\\cellx900\\pard\\intbl word\\cell\\row\\pard z\\par", 2, 4, "or", "\\trowd"},
    {"\\pard\\keepn\\qc one\\par\\pard two\\par", 0, 4, "\\keepn\\qc one"},
    {"\\pard a\\u-3913?\\par", 1, 2, "\\u-3913"},
    {"{\\footer\\pard f\\par}\\pard x\\par", 0, 1, "x"},
    {"\\pard a{\\*\\bkmkstart m}b{\\*\\bkmkend m}c\\par", 0, 3, "{\\*\\bkmkstart m}b{\\*\\bkmkend m}"},
};

class FormRtfCopy : public FormRtf, public ::testing::WithParamInterface<CopyCase> {};

// A part of a document keeps in another one what it stands in.
TEST_P(FormRtfCopy, KeepsWhatItStandsIn) {
  const CopyCase& it = GetParam();
  form_RTF& window = Open(std::string(kBegin) + "{\\colortbl;\\red9;}{\\*\\revtbl{Unknown;}{Ann;}}" + it.body + "}");
  PadOf(window).Select(it.begin, it.end);
  window.EditCopy();
  form_RTF& other = static_cast<form_RTF&>(*NewDocument(global_, DocumentKind::Rtf));
  other.EditPaste();
  const std::string saved = other.Content();
  EXPECT_NE(saved.find(it.saved), std::string::npos) << saved;
  EXPECT_EQ(saved.find(it.missing), std::string::npos) << saved;
}

INSTANTIATE_TEST_SUITE_P(Parts, FormRtfCopy, ::testing::ValuesIn(kCopies));
