#include <QClipboard>
#include <QMimeData>
#include <QTest>
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
