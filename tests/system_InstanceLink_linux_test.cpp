#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <future>

#include "WaitFor.h"
#include "system/InstanceClaim_linux.h"
#include "system/InstanceLink.h"

namespace tme {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr std::uint32_t kHandle = 4000000001u;

class Instance : public testing::Test {
 protected:
  Instance() { qputenv("XDG_CONFIG_HOME", QFile::encodeName(config_.path())); }

  /// Runs in a process of its own, which ends with what it returns.
  static pid_t Fork(int (*work)()) {
    const pid_t process = ::fork();
    if (process == 0) ::_exit(work());
    return process;
  }
  static std::future<Delivery> Send(const QByteArray& data, std::uint32_t meaning = 3) {
    return std::async(std::launch::async, [data, meaning] { return InstanceLink::Send(kHandle, {meaning, data}); });
  }
  static bool IsDone(const std::future<Delivery>& sent) { return sent.wait_for(0s) == std::future_status::ready; }

  /// Sends what it likes.
  void Connect(QLocalSocket& sender, const QByteArray& bytes) const {
    sender.connectToServer(Endpoint());
    EXPECT_EQ(sender.write(bytes), bytes.size());
  }

  QByteArrayList received_;
  std::function<void(const CopyData&)> receive_ = [this](const CopyData& record) { received_ += record.data; };

  QString Settings() const { return config_.filePath(u"TamarindEditor"_s); }
  QString Endpoint() const { return Settings() + u'/' + EndpointName(Settings(), QString::number(kHandle)); }

  QTemporaryDir config_;
};

TEST(CopyDataRecord, RefusesWhatIsNotWhole) {
  const QByteArray packed = PackCopyData({3, "a.ini"_ba + '\0'});
  EXPECT_EQ(packed, "\x03\0\0\0\x06\0\0\0\x0C\0\0\0a.ini\0"_ba);
  EXPECT_EQ(UnpackCopyData(packed)->data, "a.ini\0"_ba);
  for (qsizetype size = 0; size < packed.size(); ++size) EXPECT_FALSE(UnpackCopyData(packed.first(size))) << size;
  EXPECT_FALSE(UnpackCopyData(packed + 'x'));
  EXPECT_TRUE(UnpackCopyData(PackCopyData({3, QByteArray(255, 'x')})));
  EXPECT_FALSE(UnpackCopyData(PackCopyData({3, QByteArray(256, 'x')})));
  EXPECT_FALSE(UnpackCopyData("\x03\0\0\0\0\0\0\0\x0D\0\0\0"_ba));
  EXPECT_TRUE(UnpackCopyData(PackCopyData({kLongData, QByteArray(kMaxLongDataBytes, 'x')})));
  EXPECT_FALSE(UnpackCopyData(PackCopyData({kLongData, QByteArray(kMaxLongDataBytes + 1, 'x')})));
}

TEST_F(Instance, ClaimEndsWithTheProcessThatHoldsIt) {
  const pid_t first = Fork([] {
    InstanceLink link;
    return link.ClaimOnlyInstance() ? ::raise(SIGSTOP) : 1;
  });
  int status = 0;
  ::waitpid(first, &status, WUNTRACED);
  EXPECT_TRUE(WIFSTOPPED(status));
  InstanceLink second;
  EXPECT_FALSE(second.ClaimOnlyInstance());

  ::kill(first, SIGKILL);
  siginfo_t ended{};
  ::waitid(P_PID, static_cast<id_t>(first), &ended, WEXITED | WNOWAIT);  // dead, but its number is not free yet
  EXPECT_TRUE(second.ClaimOnlyInstance());
  EXPECT_TRUE(second.ClaimOnlyInstance());
  EXPECT_FALSE(InstanceLink().ClaimOnlyInstance());
  ::waitpid(first, nullptr, 0);
}

TEST_F(Instance, ClaimTellsTheEndpointWhereverItLies) {
  const auto reach = [](std::optional<std::uint32_t> handle) {
    auto sent = std::async(std::launch::async, [handle] { return InstanceLink::Send(handle, {3, "x"_ba}); });
    WaitFor([&] { return IsDone(sent); });
    return sent.get();
  };
  for (const bool settings_are_there : {true, false}) {
    if (!settings_are_there) {
      QDir(Settings()).removeRecursively();
      EXPECT_TRUE(QFile(Settings()).open(QIODevice::WriteOnly));
    }
    InstanceLink link;
    EXPECT_TRUE(link.ClaimOnlyInstance());
    for (const char* runtime : {"", "/nowhere", "/tmp"}) {
      qputenv("XDG_RUNTIME_DIR", runtime);
      EXPECT_FALSE(InstanceLink().ClaimOnlyInstance()) << runtime;
    }
    ASSERT_TRUE(link.Listen(kHandle, receive_));
    EXPECT_EQ(reach(std::nullopt), Delivery::DealtWith);
    EXPECT_EQ(reach(5), Delivery::DealtWith) << "another machine's handle";
    const QStringList left = QDir(Settings()).entryList(QDir::Files | QDir::System);
    EXPECT_EQ(left.size(), settings_are_there ? 2 : 0);
  }
  EXPECT_EQ(reach(std::nullopt), Delivery::NobodyThere);
}

TEST_F(Instance, WhatLiesInTheWayOfTheClaimHoldsNobodyUp) {
  ASSERT_TRUE(QDir().mkpath(Settings()));
  QString claim;
  {
    InstanceLink link;
    ASSERT_TRUE(link.ClaimOnlyInstance());
    claim = Settings() + u'/' + QDir(Settings()).entryList({u"*.lock"_s}).value(0);
  }
  EXPECT_FALSE(QFile::exists(claim)) << "nothing is left";
  ASSERT_EQ(::mkfifo(QFile::encodeName(claim).constData(), 0600), 0);
  InstanceLink link;
  EXPECT_TRUE(link.ClaimOnlyInstance());
  EXPECT_FALSE(InstanceLink().ClaimOnlyInstance()) << "the next folder has it";
}

TEST_F(Instance, HandsOverAndTakesTheEndpointOfADeadProcess) {
  EXPECT_EQ(InstanceLink::Send(kHandle, {3, "early"_ba}), Delivery::NobodyThere);
  const pid_t dead = Fork([] {
    InstanceLink link;
    return link.Listen(kHandle, [](const CopyData&) {}) ? ::raise(SIGKILL) : 1;
  });
  ::waitpid(dead, nullptr, 0);
  EXPECT_EQ(InstanceLink::Send(kHandle, {3, "x"_ba}), Delivery::NobodyThere) << "nobody behind it, and no waiting";

  InstanceLink link;
  ASSERT_TRUE(link.Listen(kHandle, receive_));
  const QByteArray longest(255, 'x');
  auto sent = Send(longest);
  WaitFor([&] { return IsDone(sent); });
  EXPECT_EQ(sent.get(), Delivery::DealtWith);
  EXPECT_EQ(received_, QByteArrayList{longest});
  link.StopListening();
  EXPECT_EQ(InstanceLink::Send(kHandle, {3, "late"_ba}), Delivery::NobodyThere);
}

TEST_F(Instance, RecordsWaitWhileOneIsDealtWith) {
  InstanceLink link;
  std::future<Delivery> second;
  ASSERT_TRUE(link.Listen(kHandle, [&](const CopyData& record) {
    received_ += record.data + " begins";
    if (record.data == "1") {
      second = Send("2"_ba);
      QTest::qWait(100);  // like a message box that the opening shows
      EXPECT_FALSE(IsDone(second));
    }
    received_ += record.data + " ends";
  }));
  const auto first = Send("1"_ba);
  WaitFor([&] { return IsDone(first) && IsDone(second); });
  EXPECT_EQ(received_.join(","), "1 begins,1 ends,2 begins,2 ends");
}

TEST_F(Instance, RecordsWaitUntilTheWaitCursorIsGone) {
  InstanceLink link;
  ASSERT_TRUE(link.Listen(kHandle, receive_));
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  const auto sent = Send("1"_ba);
  QTest::qWait(200);  // like an import that repaints
  EXPECT_EQ(received_.size(), 0);
  QGuiApplication::restoreOverrideCursor();
  WaitFor([&] { return IsDone(sent); });
  EXPECT_EQ(received_, QByteArrayList{"1"_ba});
}

TEST_F(Instance, FrameThatHangsIsNobodyAndOpensNothingLater) {
  InstanceLink link;
  ASSERT_TRUE(link.Listen(kHandle, receive_));
  EXPECT_EQ(InstanceLink::Send(kHandle, {3, "given up"_ba}), Delivery::NobodyThere) << "no event loop runs meanwhile";
  const QByteArray text(100'000, 'x');
  const auto sent = Send(text, kLongData);
  WaitFor([&] { return IsDone(sent); });
  EXPECT_EQ(received_, QByteArrayList{text});
}

TEST_F(Instance, MayGoWhileItReceives) {
  auto link = std::make_unique<InstanceLink>();
  ASSERT_TRUE(link->Listen(kHandle, [&](const CopyData&) {
    link.reset();
    QTest::qWait(10);
  }));
  auto sent = Send("x"_ba);
  WaitFor([&] { return IsDone(sent); });
  EXPECT_EQ(sent.get(), Delivery::NobodyThere);
}

TEST_F(Instance, HostileSendersHarmNobody) {
  InstanceLink link;
  ASSERT_TRUE(link.Listen(kHandle, receive_));
  QLocalSocket silent;
  Connect(silent, {});
  const QByteArray records[] = {"\x03\0\0\0\xFF\xFF\xFF\xFF\x0C\0\0\0"_ba, QByteArray(100000, 'x'),
                                PackCopyData({3, "x"_ba}) + 'y', PackCopyData({3, "cut"_ba}).chopped(1)};
  for (const QByteArray& record : records) {
    QLocalSocket sender;
    Connect(sender, record);
    sender.disconnectFromServer();
    WaitFor([&] { return sender.state() == QLocalSocket::UnconnectedState; });
  }
  const auto sent = Send("good"_ba);
  WaitFor([&] { return IsDone(sent); });
  EXPECT_EQ(received_, QByteArrayList{"good"_ba});
}

}  // namespace
}  // namespace tme
