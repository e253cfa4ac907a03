#include <gtest/gtest.h>

#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <cstring>
#include <future>

#include "platform/InstanceLink.h"

namespace tme {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr std::uint32_t kHandle = 4000000001u;

class Instance : public testing::Test {
 protected:
  Instance() { qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime_.path())); }

  /// Runs in a process of its own, which ends with what it returns.
  template <typename Work>
  static pid_t Fork(const Work& work) {
    const pid_t process = ::fork();
    if (process == 0) ::_exit(work());
    return process;
  }
  static std::future<bool> Send(const QByteArray& data) {
    return std::async(std::launch::async, [data] { return InstanceLink::Send(kHandle, {3, data}); });
  }
  static bool IsDone(const std::future<bool>& sent) { return sent.wait_for(0s) == std::future_status::ready; }

  /// A sender that may misbehave.
  int Connect() const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(runtime_.path() + u"/tme/tme-%1"_s.arg(kHandle));
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
    EXPECT_EQ(::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return descriptor;
  }

  QByteArrayList received_;
  std::function<void(const CopyData&)> receive_ = [this](const CopyData& record) { received_ += record.data; };

 private:
  QTemporaryDir runtime_;
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
}

TEST_F(Instance, ClaimEndsWithTheProcessThatHoldsIt) {
  int pipe_ends[2];
  ASSERT_EQ(::pipe(pipe_ends), 0);
  const pid_t first = Fork([&pipe_ends] {
    InstanceLink link;
    const char claimed = link.ClaimOnlyInstance() ? 'y' : 'n';
    if (::write(pipe_ends[1], &claimed, 1) == 1) ::pause();
    return 0;
  });
  char claimed = '?';
  ASSERT_EQ(::read(pipe_ends[0], &claimed, 1), 1);
  EXPECT_EQ(claimed, 'y');
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

TEST_F(Instance, HandsOverFromAnotherProcess) {
  EXPECT_FALSE(InstanceLink::Send(kHandle, {3, "early"_ba}));
  InstanceLink link;
  ASSERT_TRUE(link.Listen(kHandle, receive_));
  int status = -1;
  const pid_t sender = Fork([] { return InstanceLink::Send(kHandle, {3, QByteArray(255, 'x')}) ? 7 : 1; });
  EXPECT_TRUE(QTest::qWaitFor([&] { return ::waitpid(sender, &status, WNOHANG) == sender; }));
  EXPECT_EQ(WEXITSTATUS(status), 7);
  EXPECT_EQ(received_, QByteArrayList{QByteArray(255, 'x')});
  link.StopListening();
  EXPECT_FALSE(InstanceLink::Send(kHandle, {3, "late"_ba}));
}

TEST_F(Instance, TakesTheEndpointOfADeadProcess) {
  const pid_t dead = Fork([] {
    InstanceLink link;
    const bool listening = link.Listen(kHandle, [](const CopyData&) {});
    ::kill(::getpid(), SIGKILL);
    return listening ? 0 : 1;
  });
  ::waitpid(dead, nullptr, 0);
  EXPECT_FALSE(InstanceLink::Send(kHandle, {3, "x"_ba})) << "nobody behind it, and no waiting";
  InstanceLink link;
  ASSERT_TRUE(link.Listen(kHandle, receive_));
  const auto sent = Send("x"_ba);
  EXPECT_TRUE(QTest::qWaitFor([&] { return IsDone(sent); }));
  EXPECT_EQ(received_.size(), 1);
}

TEST_F(Instance, RecordsWaitWhileOneIsDealtWith) {
  InstanceLink link;
  std::future<bool> second;
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
  EXPECT_TRUE(QTest::qWaitFor([&] { return IsDone(first) && IsDone(second); }));
  EXPECT_EQ(received_.join(","), "1 begins,1 ends,2 begins,2 ends");
}

TEST_F(Instance, MayGoWhileItReceives) {
  auto link = std::make_unique<InstanceLink>();
  ASSERT_TRUE(link->Listen(kHandle, [&](const CopyData&) {
    link.reset();
    QTest::qWait(10);
  }));
  auto sent = Send("x"_ba);
  EXPECT_TRUE(QTest::qWaitFor([&] { return IsDone(sent); }));
  EXPECT_FALSE(sent.get());
}

TEST_F(Instance, HostileSendersHarmNobody) {
  InstanceLink link;
  ASSERT_TRUE(link.Listen(kHandle, receive_));
  const int silent = Connect();
  const QByteArray records[] = {"\x03\0\0\0\xFF\xFF\xFF\xFF\x0C\0\0\0"_ba, QByteArray(100000, 'x'),
                                PackCopyData({3, "x"_ba}) + 'y', PackCopyData({3, "cut"_ba}).chopped(1)};
  for (const QByteArray& record : records) {
    const int descriptor = Connect();
    [[maybe_unused]] const ssize_t sent =
        ::send(descriptor, record.constData(), static_cast<std::size_t>(record.size()), MSG_NOSIGNAL);
    ::shutdown(descriptor, SHUT_WR);
    char answer = 0;
    EXPECT_TRUE(QTest::qWaitFor([&] { return ::recv(descriptor, &answer, 1, 0) != -1 || errno == ECONNRESET; }));
    EXPECT_EQ(answer, 0);
    ::close(descriptor);
  }
  const auto sent = Send("good"_ba);
  EXPECT_TRUE(QTest::qWaitFor([&] { return IsDone(sent); }));
  EXPECT_EQ(received_, QByteArrayList{"good"_ba});
  ::close(silent);
}

}  // namespace
}  // namespace tme
