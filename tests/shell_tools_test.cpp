#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QRegularExpression>
#include <QUrl>

#include "Editor.h"
#include "shell/GlobalMenus.h"
#include "system/Process.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class ToolsTest : public Editor {
 protected:
  void Choose(const QString& item) { global_.menus.Action(item)->trigger(); }
};

}  // namespace

TEST_F(ToolsTest, GatheredListsGoToTheClipboard) {
  EnterProcess();
  qputenv("TME_TEST_B", "2=3");
  qputenv("TME_TEST_A", "1");
  Start();
  File(u"b.txt"_s, std::string(1234567, 'x'));
  File(u".A"_s, "12");
  QDir(folder_.path()).mkdir(u"Sub"_s);
  common_dialog_.ExpectFolder(folder_.path());
  dialogs_.ExpectMsgBox(u"Directory List Gathering Complete"_s, u"Tamarind Editor"_s);
  Choose(u"menu_FeatureDIR"_s);
  QString listing = QGuiApplication::clipboard()->text();
  listing.replace(QRegularExpression(u"\\d{4}-\\d\\d-\\d\\d  \\d\\d:\\d\\d"_s), u"TIME"_s);
  listing.replace(QRegularExpression(u" +[\\d,]+ bytes free"_s), u" FREE"_s);
  EXPECT_EQ(listing, u" Directory of "_s + QDir::toNativeSeparators(folder_.path()) +
                         u"\n\nTIME    <DIR>         .\nTIME    <DIR>         ..\nTIME                2 .A\n"
                         "TIME        1,234,567 b.txt\nTIME    <DIR>         Sub\n"
                         "               2 File(s)      1,234,569 bytes\n               3 Dir(s) FREE\n"_s);
  dialogs_.ExpectMsgBox(u"Environmental Variable Gathering Complete"_s, u"Tamarind Editor"_s);
  Choose(u"menu_FeatureVars"_s);
  EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(u"\nTME_TEST_A=1\nTME_TEST_B=2=3\n"_s));
  EXPECT_FALSE(QGuiApplication::clipboard()->text().contains(u"REGEXP"_s)) << "not the user's";
  global_.settings.supress_results = true;
  Choose(u"menu_FeatureVars"_s);
}

TEST_F(ToolsTest, DroppedFilesOpenAndDroppedTextDoesNot) {
  const QString first = File(u"a b.ini"_s, "[A]\r\n\r\n"), path = File(u"c d.ini"_s, "[A]\r\n\r\n");
  Start();
  form_INI& open = NewIni("[A]\n");
  QMimeData files, text;
  files.setUrls({QUrl::fromLocalFile(first), QUrl::fromLocalFile(path)});
  text.setText(path);
  for (const QMimeData* data : {&text, &files}) {
    QDragEnterEvent enter({1, 1}, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QDropEvent drop({1, 1}, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    for (QDropEvent* event : {static_cast<QDropEvent*>(&enter), &drop}) {
      event->ignore();
      QApplication::sendEvent(open.focusProxy(), event);
      EXPECT_EQ(event->isAccepted(), data == &files);
    }
  }
  QApplication::processEvents();
  EXPECT_EQ(Ini(2).File().Path(), path);
  EXPECT_EQ(Ini(3).Tag(), u"");
}
