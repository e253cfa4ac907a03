#include <QApplication>
#include <QFileInfo>
#include <QProcess>

#include "Editor.h"
#include "shell/OS_SendMessage.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST_F(Editor, SecondLaunchOpensInTheFirst) {
  const QString path = File(u"a.ini"_s, "[A]\r\nx=1\r\n\r\n");
  Start();
  ASSERT_TRUE(link_.ClaimOnlyInstance());
  QProcess second;
  second.setWorkingDirectory(folder_.path());
  second.start(QStringLiteral(TME_PROGRAM), {u"a.ini"_s});
  while (second.state() != QProcess::NotRunning) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  EXPECT_EQ(second.exitCode(), 0);
  EXPECT_EQ(Ini(0).Slot().path, path);

  UnhookFrameWindow(global_);
  registry_.WriteValue(SettingsRoot, u"WinRegistration"_s, kTextType, {});
  ASSERT_TRUE(registry_.CreateKey(SettingsRoot));
  second.start(QStringLiteral(TME_PROGRAM), {u"a.ini"_s});
  ASSERT_TRUE(second.waitForFinished());
  EXPECT_EQ(second.exitCode(), 1) << "nobody answers";
  EXPECT_TRUE(second.readAllStandardError().contains("does not answer"));
}

TEST_F(Editor, HistoryIsForItsUserOnly) {
  EXPECT_FALSE(history_.Keep({DocumentKind::Txt, u"/a.txt"_s, u"a.txt"_s}, KeptReason::BeforeSave, "text"));
  EXPECT_EQ(QFileInfo(history_.Folder()).permissions() & 0x0077, 0) << "neither group nor others";
}
