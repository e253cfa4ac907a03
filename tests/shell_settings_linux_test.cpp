#include <QDir>
#include <QFile>
#include <QPushButton>

#include "Editor.h"
#include "shell/NoticeBar.h"
#include "windows/options/ShellIntegration.h"
#include "windows/options/form_TMEOptions.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST_F(Editor, SettingsThatCannotBeSavedAreToldOnceAndAfterOk) {
  const QString folder = registry_.Location();
  ASSERT_TRUE(QDir(folder).removeRecursively());
  QFile in_the_way(folder);
  ASSERT_TRUE(in_the_way.open(QIODevice::WriteOnly));
  const QString told = u"The settings could not be saved in "_s + folder +
                       u"/registry.ini: Not a directory.  What is stored there is unchanged."_s;
  Start({File(u"a.ini"_s, kIni)});
  DocumentWindow& window = Ini();
  EXPECT_EQ(window.findChild<NoticeBar*>()->Text(), told);
  window.findChild<NoticeBar*>()->Clear();
  window.Form_Activate();
  EXPECT_EQ(window.findChild<NoticeBar*>()->Text(), u"");

  ShellIntegration integration(registry_, u"/tme"_s);
  form_TMEOptions options(
      global_, integration, [](int /*minutes*/) {}, frame_.get());
  dialogs_.ExpectMsgBox(told, kProgramTitle, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Warning);
  options.findChild<QPushButton*>(u"cmd_OK"_s)->click();
  EXPECT_EQ(window.findChild<NoticeBar*>()->Text(), u"");
}

TEST_F(Editor, SettingsThatCannotBeReadAreToldWithoutADocumentToo) {
  const QString folder = registry_.Location();
  ASSERT_TRUE(QDir(folder).removeRecursively());
  ASSERT_TRUE(QFile(folder).open(QIODevice::WriteOnly));
  dialogs_.ExpectMsgBox(u"The settings could not be saved in "_s + folder +
                            u"/registry.ini: Not a directory.  What is stored there is unchanged."_s,
                        kProgramTitle, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Warning);
  Start();
}
