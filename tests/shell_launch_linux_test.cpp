#include <QApplication>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QThread>
#include <future>

#include "Editor.h"
#include "WaitFor.h"
#include "shell/CommandLineRecord.h"
#include "shell/DocumentArea.h"
#include "shell/OS_SendMessage.h"
#include "system/InstanceClaim_linux.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class Launch : public Editor {
 protected:
  /// Runs the program in the test's folder while this editor goes on. Its exit status.
  int Run(const QStringList& arguments) {
    second_.setProcessEnvironment(environment_);
    second_.setWorkingDirectory(folder_.path());
    second_.start(QStringLiteral(TME_PROGRAM), arguments);
    while (second_.state() != QProcess::NotRunning) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return second_.exitCode();
  }
  void ExpectNotAFile(const QString& path) {
    dialogs_.ExpectMsgBox(u"TME was unable to verify that your request was to open a file.\r( "_s + path +
                              u" )\rAs such, this action has been canceled."_s,
                          u"TME"_s);
  }
  QString Registered() const { return RegistryAccess().ReadValue(SettingsRoot, u"WinRegistration"_s); }

  QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
  QProcess second_;
};

}  // namespace

TEST_F(Launch, OpensInTheRunningFrame) {
  const QString paths[] = {File(u"a.ini"_s, kIni), File(u"b.ini"_s, kIni), File(u"c.ini"_s, kIni)};
  ASSERT_TRUE(link_.ClaimOnlyInstance());
  Start();
  EXPECT_EQ(Run({u"a.ini"_s}), 0);
  EXPECT_EQ(Ini(0).File().Path(), paths[0]);
  environment_.remove(u"XDG_RUNTIME_DIR"_s);
  EXPECT_EQ(Run({u"b.ini"_s}), 0);
  EXPECT_EQ(Ini(1).File().Path(), paths[1]) << "su, ssh and cron start without";
  registry_.WriteValue(SettingsRoot, u"WinRegistration"_s, u"99999"_s);
  registry_.Flush();
  EXPECT_EQ(Run({u"c.ini"_s}), 0);
  EXPECT_EQ(Ini(2).File().Path(), paths[2]) << "another machine's frame stands there";
  frame_->ExitApplication();
  EXPECT_EQ(Registered(), u"99999") << "and stays";

  InstanceLink other;
  EXPECT_FALSE(SendCommandLine(u"a.ini"_s, other, std::chrono::milliseconds(1))) << "nobody answers";
}

TEST_F(Launch, FindsTheFrameWithoutSettings) {
  const QString settings = registry_.Location(), path = File(u"a.ini"_s, "[A]\r\n\r\n");
  ASSERT_TRUE(QDir(settings).removeRecursively());
  QFile in_the_way(settings);
  ASSERT_TRUE(in_the_way.open(QIODevice::WriteOnly));
  ASSERT_TRUE(link_.ClaimOnlyInstance());
  Start({File(u"b.ini"_s, kIni)});
  environment_.remove(u"XDG_RUNTIME_DIR"_s);
  EXPECT_EQ(Run({u"a.ini"_s}), 0);
  EXPECT_EQ(Ini(1).File().Path(), path);
  ASSERT_TRUE(in_the_way.remove());
}

TEST_F(Launch, PathsArriveWholeAndAreNoOptions) {
  const QString cyrillic = QString(100, u'\u0436') + u'/' + QString(110, u'\u0431') + u".ini"_s;
  const QString words = u"many words "_s.repeated(20) + u'/' + u"and more "_s.repeated(20) + u"of them.ini"_s;
  for (const QString& path : {cyrillic, words}) ASSERT_TRUE(QDir(folder_.path()).mkpath(QFileInfo(path).path()));
  ASSERT_TRUE(link_.ClaimOnlyInstance());
  Start();
  for (const QString& name : {cyrillic, words, u"-platformpluginpath"_s, u"-session"_s, u"--help"_s,
                              u"ends in a blank.ini "_s, u":colon.ini"_s}) {
    const QString path = folder_.path() + u'/' + name;
    ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly)) << name.toStdString();
    EXPECT_EQ(Run(name.startsWith("--"_L1) ? QStringList{u"--"_s, name} : QStringList(name)), 0);
    DocumentWindow* document = global_.area.ActiveDocument();
    ASSERT_TRUE(document) << name.toStdString();
    EXPECT_EQ(document->File().Path(), path);
    document->FileClose();
  }
  ASSERT_TRUE(QDir(folder_.path()).mkpath(u"a folder of mine"_s));
  ExpectNotAFile(InFolder(u"a folder of mine"_s));
  EXPECT_EQ(Run({u"a folder of mine"_s}), 0);
  EXPECT_EQ(Run({u"--version"_s}), 0);
  EXPECT_TRUE(second_.readAllStandardOutput().startsWith("Tamarind Editor "));
}

TEST_F(Launch, CutsOnlyForAReceiverThatTakesNoMore) {
  QLocalServer older;
  const QString folder = registry_.Location();
  registry_.WriteValue(SettingsRoot, u"WinRegistration"_s, u"7"_s);
  registry_.Flush();
  ASSERT_TRUE(older.listen(folder + u'/' + EndpointName(folder, u"7"_s)));
  QByteArrayList received;
  QObject::connect(&older, &QLocalServer::newConnection, [&] {
    QLocalSocket* sender = older.nextPendingConnection();
    QObject::connect(sender, &QLocalSocket::readyRead, [sender, &received] {
      const std::optional<CopyData> record = UnpackCopyData(sender->readAll());
      if (!record || record->dwData != kCommandLineData) return sender->abort();
      received += record->data;
      sender->write("\x01", 1);
    });
  });
  auto sent = std::async(std::launch::async, [] {
    InstanceLink link;
    return SendCommandLine(QString(200, u'\u0436'), link);
  });
  WaitFor([&] { return sent.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
  EXPECT_TRUE(sent.get());
  EXPECT_EQ(received, QByteArrayList{QString(127, u'\u0436').toUtf8() + '\0'});
}

TEST_F(Launch, ThatReachesNobodySaysWhichFilesAreLeft) {
  ASSERT_TRUE(link_.ClaimOnlyInstance());  // and listens to nobody
  second_.setReadChannel(QProcess::StandardError);
  second_.start(QStringLiteral(TME_PROGRAM), {u"/one.ini"_s, u"/two.ini"_s});
  ASSERT_TRUE(second_.waitForStarted(-1));
  QByteArray told;
  const auto has_told = [&] { return (told += second_.readAllStandardError()).contains("two.ini"); };
  while (!has_told()) ASSERT_TRUE(second_.waitForReadyRead(15'000));
  EXPECT_TRUE(told.contains("( /one.ini )"));
  EXPECT_FALSE(second_.waitForFinished(200)) << "it asks";
  second_.kill();
  second_.waitForFinished(-1);
}

TEST_F(Editor, LaunchThatWaitsBecomesTheInstanceOnceTheOtherHasGone) {
  Start();
  form_INI& window = NewIni("[A]\n");
  window.File().SetChanged(true);
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
  EXPECT_FALSE(history_.versions.Keep({DocumentKind::Txt, u"/a.txt"_s, u"a.txt"_s}, KeptReason::BeforeSave, "text"));
  EXPECT_EQ(QFileInfo(history_.folder.Path()).permissions() & 0x0077, 0) << "neither group nor others";
}
