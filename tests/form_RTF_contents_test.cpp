#include <QClipboard>
#include <QDir>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTreeWidget>

#include "RtfWindow.h"
#include "WaitFor.h"
#include "windows/rich/RtfContentsWindow.h"
#include "windows/rich/RtfObjectView.h"
#include "windows/rich/RtfPartText.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST_F(FormRtf, ListsWhatItsFileContainsAndRunsNothing) {
  const std::string bytes =
      "{\\rtf1 {\\object\\objemb{\\*\\objclass Excel.Sheet.12}{\\*\\objdata 01050000}{\\result }}"
      "{\\field{\\*\\fldinst INCLUDETEXT \"http://a/b\"}{\\fldrslt <b>in</b>}}"
      "{\\field{\\*\\fldinst HYPERLINK \"http://x/&y\"}{\\fldrslt out}}\\par}";
  form_RTF& window = Open(bytes);
  EXPECT_TRUE(NoticeOf(window).contains(u"Other programs may run or fetch"_s));
  RtfPad& pad = PadOf(window);
  const auto tip_at = [&](int position) {
    QTextCursor cursor(pad.document());
    cursor.setPosition(position + 1);
    return pad.TipOf(cursor.charFormat());
  };
  EXPECT_EQ(tip_at(0), u"Embedded object: Excel.Sheet.12\n4 bytes"_s);
  EXPECT_TRUE(tip_at(1).endsWith(u"INCLUDETEXT: fetches another file\n\"http://a/b\""_s)) << tip_at(1).toStdString();
  EXPECT_EQ(tip_at(pad.document()->characterCount() - 3), u"Link, which is not opened here\nhttp://x/&y"_s);
  pad.Select(pad.End() - 2, pad.End() - 2);
  EXPECT_EQ(window.State().path, u"http://x/&y"_s);
  pad.Select(0, 0);
  EXPECT_EQ(window.State().path, QDir::toNativeSeparators(InFolder(u"letter.rtf"_s)));
  const QUrl file = QUrl::fromLocalFile(InFolder(u"letter.rtf"_s));
  EXPECT_FALSE(QTextDocument().resource(QTextDocument::ImageResource, file).isNull());
  EXPECT_TRUE(pad.document()->resource(QTextDocument::ImageResource, file).isNull());

  global_.menus.Action(u"menu_ToolsContents"_s)->trigger();
  QPointer<RtfContentsWindow> list = frame_->findChild<RtfContentsWindow*>();
  ASSERT_TRUE(list);
  list->findChild<QPushButton*>(u"cmd_Copy"_s)->click();
  const QString text = QGuiApplication::clipboard()->text();
  for (const QString& row :
       {u"\tEmbedded object: Excel.Sheet.12\t4 bytes\n"_s, u"\tINCLUDETEXT: fetches another file\t\"http://a/b\"\n"_s,
        u"\tLink\thttp://x/&y\n"_s, u"\tFields of all kinds\t2\n"_s})
    EXPECT_TRUE(text.contains(row)) << text.toStdString();
  auto* rows = list->findChild<QTreeWidget*>();
  QTest::keyClick(rows, Qt::Key_Down);
  QTest::keyClick(rows, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), u"\tEmbedded object: Excel.Sheet.12\t4 bytes\n"_s);
  EXPECT_EQ(list->findChild<QPlainTextEdit*>()->toPlainText(), u"Embedded object: Excel.Sheet.12\n4 bytes"_s);
  QTest::keyClick(rows, Qt::Key_Escape);
  WaitFor([&] { return !list; });
  EXPECT_FALSE(list);
  window.SaveFile();
  EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), bytes);
  window.FileClose();
  EXPECT_EQ(NoticeOf(Open("{\\rtf1 {\\field{\\*\\fldinst PAGE}{\\fldrslt 1}}}")), QString());
}

TEST_F(FormRtf, RescuedContentIsSaidToHoldWhatOtherProgramsRun) {
  form_RTF& window = New();
  window.PutContent("{\\rtf1{\\field{\\*\\fldinst DDEAUTO a b}{\\fldrslt x}}}", Holding::Whole);
  EXPECT_TRUE(NoticeOf(window).contains(u"Other programs may run or fetch"_s));
}

TEST(RtfPartText, SaysWhatIsDangerousFirstAndHidesNoName) {
  const struct {
    rtf::Part part;
    QString said;
  } cases[] = {
      {{.kind = rtf::PartKind::Object, .name = "Equation.3", .declared_class = "Word.Document.8"},
       u"Embedded object: Equation.3, called Word.Document.8"_s},
      {{.kind = rtf::PartKind::Object, .name = "htmlfile", .is_linked = true, .is_updated = true},
       u"Run when opened: linked object: htmlfile"_s},
      {{.kind = rtf::PartKind::ActiveField, .name = "DDEAUTO"},
       u"DDEAUTO: starts another program when the file opens"_s},
      {{.kind = rtf::PartKind::Unshown, .name = "themedata", .count = 2}, u"Theme \u2013 themedata (2 times)"_s},
      {{.kind = rtf::PartKind::Unshown, .name = "a\u202Egpj.exe"}, u"a[U+202E]gpj.exe"_s},
  };
  for (const auto& [part, said] : cases) EXPECT_EQ(RtfPartText::What(part), said);
  const struct {
    QString text, target;
    bool is_other;
  } links[] = {{u"http://a.org"_s, u"https://b.org/"_s, true},
               {u"www.A.org/x y"_s, u"http://a.org:80/"_s, false},
               {u"https://a.org"_s, u"http://a.org@b.org/"_s, true},
               {u"http://a.org"_s, u"javascript:x"_s, true},
               {u"click here"_s, u"http://b.org/"_s, false}};
  for (const auto& [text, target, is_other] : links)
    EXPECT_EQ(RtfPartText::IsOtherAddress(text, target), is_other) << text.toStdString();
}
