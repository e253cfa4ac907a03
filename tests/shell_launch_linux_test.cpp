#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <QThread>

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
  InstanceLink other;
  EXPECT_FALSE(SendCommandLine(u"a.ini"_s, other, std::chrono::milliseconds(1))) << "nobody answers";
}

TEST_F(Editor, LaunchThatWaitsBecomesTheInstanceOnceTheOtherHasGone) {
  Start();
  form_INI& window = NewIni("[A]\n");
  window.Slot().changed = true;
  const auto registration = [this] {
    return QString::fromStdString(BytesOf(registry_.Location() + u"/registry.ini"_s))
        .section(u"WinRegistration="_s, 1)
        .section(u'\n', 0, 0);
  };
  ASSERT_TRUE(link_.ClaimOnlyInstance());
  UnhookFrameWindow(global_);
  QProcess second;
  second.start(QStringLiteral(TME_PROGRAM), {File(u"a.ini"_s, "[A]\r\n\r\n")});
  ASSERT_TRUE(second.waitForStarted(-1));
  dialogs_.ExpectMsgBox(u"Save this file?\r"_s, u"Document Changed"_s, MsgButtons::YesNoCancel, MsgAnswer::No);
  // While the last question stands; no event loop runs there that could write the settings later.
  dialogs_.while_asking = [&] {
    while (registration().isEmpty()) QThread::msleep(10);
  };
  frame_->ExitApplication();
  ASSERT_TRUE(registry_.CreateKey(SettingsRoot));
  EXPECT_FALSE(registration().isEmpty()) << "the way to the new one stays";
  second.terminate();
  ASSERT_TRUE(second.waitForFinished(-1));
  EXPECT_EQ(second.exitCode(), 0);
}

TEST_F(Editor, HistoryIsForItsUserOnly) {
  EXPECT_FALSE(history_.Keep({DocumentKind::Txt, u"/a.txt"_s, u"a.txt"_s}, KeptReason::BeforeSave, "text"));
  EXPECT_EQ(QFileInfo(history_.Folder()).permissions() & 0x0077, 0) << "neither group nor others";
}
