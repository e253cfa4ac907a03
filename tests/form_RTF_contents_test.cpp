#include <QClipboard>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTreeWidget>

#include "RtfWindow.h"
#include "WaitFor.h"
#include "windows/rich/RtfContentsWindow.h"
#include "windows/rich/RtfObjectView.h"

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
  EXPECT_TRUE(tip_at(1).endsWith(u"INCLUDETEXT\n\"http://a/b\""_s)) << tip_at(1).toStdString();
  EXPECT_EQ(tip_at(pad.document()->characterCount() - 3), u"http://x/&y"_s);
  const QUrl file = QUrl::fromLocalFile(InFolder(u"letter.rtf"_s));
  EXPECT_FALSE(QTextDocument().resource(QTextDocument::ImageResource, file).isNull());
  EXPECT_TRUE(pad.document()->resource(QTextDocument::ImageResource, file).isNull());

  global_.menus.Action(u"menu_ToolsContents"_s)->trigger();
  QPointer<RtfContentsWindow> list = frame_->findChild<RtfContentsWindow*>();
  ASSERT_TRUE(list);
  list->findChild<QPushButton*>(u"cmd_Copy"_s)->click();
  const QString text = QGuiApplication::clipboard()->text();
  for (const QString& row : {u"\tEmbedded object: Excel.Sheet.12\t4 bytes\n"_s, u"\tINCLUDETEXT\t\"http://a/b\"\n"_s,
                             u"\tLink\thttp://x/&y\n"_s, u"\tFields of all kinds\t2\n"_s})
    EXPECT_TRUE(text.contains(row)) << text.toStdString();
  QTest::keyClick(list->findChild<QTreeWidget*>(), Qt::Key_Escape);
  WaitFor([&] { return !list; });
  EXPECT_FALSE(list);
  window.SaveFile();
  EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), bytes);
  window.FileClose();
  EXPECT_EQ(NoticeOf(Open("{\\rtf1 {\\field{\\*\\fldinst PAGE}{\\fldrslt 1}}}")), QString());
}
