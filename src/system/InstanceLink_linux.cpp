#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QTimer>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "system/InstanceClaim_linux.h"
#include "system/InstanceLink.h"
#include "system/RecordQueue.h"

namespace tme {

using namespace Qt::StringLiterals;

namespace {

/// A sender that has not sent its record by then is dropped.
constexpr std::chrono::seconds kRecordPatience{10};
/// As many launches as a file manager may start at once wait their turn (the system's own bound is 4096).
constexpr int kBacklog = 4096;
/// What a sender is told: the record has come whole, it was dealt with.
constexpr char kTaken = 2;
constexpr char kDone = 1;

bool IsPeerThisUser(int descriptor) {
  ucred peer{};
  socklen_t size = sizeof peer;
  return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

/// Takes records from other launches. Nothing here waits for a sender; the senders wait until theirs is dealt with.
class Listener : public QObject {
 public:
  explicit Listener(const RecordQueue::Receive& receive) : queue_(std::make_shared<RecordQueue>(receive)) {
    connect(&server_, &QLocalServer::newConnection, this, [this] { Accept(); });
  }
  ~Listener() override {
    server_.close();
    queue_->Clear();
    const auto senders = server_.findChildren<QLocalSocket*>();
    for (QLocalSocket* sender : senders) sender->abort();
  }

  bool Start(const QString& path) {
    QLocalServer::removeServer(path);  // left over from a process that died
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    server_.setListenBacklogSize(kBacklog);
    if (!server_.listen(path)) return false;
    ::chmod(QFile::encodeName(path).constData(), kKeptOwnerOnly);
    return true;
  }

 private:
  void Accept() {
    while (QLocalSocket* sender = server_.nextPendingConnection()) {
      connect(sender, &QLocalSocket::disconnected, sender, &QObject::deleteLater);
      if (!IsPeerThisUser(static_cast<int>(sender->socketDescriptor()))) {
        sender->abort();
        continue;
      }
      sender->setReadBufferSize(kMaxRecordBytes);  // a flood stays outside
      connect(sender, &QLocalSocket::readyRead, this, [this, sender] { Read(sender); });
      auto* patience = new QTimer(sender);
      patience->setSingleShot(true);
      connect(patience, &QTimer::timeout, sender, &QLocalSocket::abort);
      patience->start(kRecordPatience);
      if (sender->bytesAvailable() > 0) Read(sender);
    }
  }

  void Read(QLocalSocket* sender) {
    const QByteArray bytes = sender->peek(kMaxRecordBytes);
    if (IsBeginningOfRecord(bytes)) return;

    disconnect(sender, &QLocalSocket::readyRead, this, nullptr);
    const auto record = UnpackCopyData(bytes);
    if (!record) {
      sender->abort();
      return;
    }
    delete sender->findChild<QTimer*>();  // from here on the sender waits for us
    sender->write(&kTaken, 1);
    sender->flush();
    queue_->Add(*record, [alive = QPointer(sender)] {
      if (!alive || alive->state() != QLocalSocket::ConnectedState) return;
      alive->write(&kDone, 1);
      alive->disconnectFromServer();  // after the byte is written
    });
    // Not from inside the socket's signal: what receives may end this object and the socket with it.
    queue_->DeliverLater();
  }

  QLocalServer server_;
  const std::shared_ptr<RecordQueue> queue_;
};

bool FitsAddress(const QString& path) {
  return QFile::encodeName(path).size() < static_cast<qsizetype>(sizeof(sockaddr_un::sun_path));
}

/// A connected socket of this user's process; -1 when nobody listens, or too many wait already.
int Connect(const QString& path) {
  if (!FitsAddress(path)) return -1;
  const QByteArray name = QFile::encodeName(path);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));

  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (descriptor < 0) return -1;
  if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      !IsPeerThisUser(descriptor)) {
    ::close(descriptor);
    return -1;
  }
  return descriptor;
}

/// Whether something of `events` is there before the end.
bool Await(int descriptor, short events, QDeadlineTimer end) {
  pollfd awaited{descriptor, events, 0};
  int ready = 0;
  do {
    ready = ::poll(&awaited, 1, static_cast<int>(end.remainingTime()));
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

/// False when nobody took them all in time.
bool SendAll(int descriptor, const QByteArray& bytes) {
  const QDeadlineTimer hung(InstanceLink::kHangPatience);
  qsizetype sent = 0;
  while (sent < bytes.size()) {
    const ssize_t count =
        ::send(descriptor, bytes.constData() + sent, static_cast<std::size_t>(bytes.size() - sent), MSG_NOSIGNAL);
    const int error = count < 0 ? errno : 0;
    if (error == EINTR || (error == EAGAIN && Await(descriptor, POLLOUT, hung))) continue;
    if (count <= 0) return error != EAGAIN;  // a receiver that refuses has an answer all the same
    sent += count;
  }
  return true;
}

/// The next byte that the receiver says; 0 when it hung up.
char NextAnswer(int descriptor) {
  char answer = 0;
  ssize_t count = 0;
  do {
    count = ::recv(descriptor, &answer, 1, 0);
  } while (count < 0 && errno == EINTR);
  return count == 1 ? answer : '\0';
}

Delivery Exchange(int descriptor, const CopyData& record) {
  if (!SendAll(descriptor, PackCopyData(record))) return Delivery::NobodyThere;
  if (!Await(descriptor, POLLIN, QDeadlineTimer(InstanceLink::kHangPatience))) {
    ::send(descriptor, "", 1, MSG_NOSIGNAL | MSG_DONTWAIT);  // a byte too many: the record is none any more
    return Delivery::NobodyThere;
  }
  char answer = NextAnswer(descriptor);
  if (answer == '\0') return record.dwData == kLongData ? Delivery::NotTaken : Delivery::NobodyThere;
  // No time limit from here on: the receiver may have a question to its user open.
  while (answer == kTaken && Await(descriptor, POLLIN, QDeadlineTimer::Forever)) answer = NextAnswer(descriptor);
  return answer == kDone ? Delivery::DealtWith : Delivery::NobodyThere;
}

}  // namespace

struct InstanceLink::System {
  InstanceClaim claim;
  std::unique_ptr<Listener> listener;
};

InstanceLink::InstanceLink() : system_(std::make_unique<System>()) {}

InstanceLink::~InstanceLink() = default;

bool InstanceLink::ClaimOnlyInstance() { return system_->claim.Take(); }

void InstanceLink::GiveUpClaim() { system_->claim.GiveUp(); }

bool InstanceLink::Listen(std::uint32_t handle, const std::function<void(const CopyData&)>& receive) {
  StopListening();
  const QStringList folders = InstanceFolders();
  for (const QString& folder : folders) {
    const QString path = folder + u'/' + EndpointName(folder, QString::number(handle));
    if (!FitsAddress(path) || !PrepareInstanceFolder(folder)) continue;
    // What lies here was left by processes that died, since only the claim's holder listens.
    if (system_->claim.IsHeld())
      for (const QString& name : QDir(folder).entryList({EndpointName(folder, u"*"_s)}, QDir::System))
        QFile::remove(folder + u'/' + name);
    auto listener = std::make_unique<Listener>(receive);
    if (!listener->Start(path)) continue;
    system_->listener = std::move(listener);
    system_->claim.TellEndpoint(path);
    return true;
  }
  return false;
}

void InstanceLink::StopListening() { system_->listener.reset(); }

Delivery InstanceLink::Send(std::optional<std::uint32_t> handle, const CopyData& record) {
  QStringList endpoints;
  if (handle) {
    const QStringList folders = InstanceFolders();
    for (const QString& folder : folders)
      endpoints.append(folder + u'/' + EndpointName(folder, QString::number(*handle)));
  }
  endpoints += InstanceClaim::ToldEndpoints();
  for (const QString& endpoint : std::as_const(endpoints)) {
    const int descriptor = Connect(endpoint);
    if (descriptor < 0) continue;
    const Delivery delivery = Exchange(descriptor, record);
    ::close(descriptor);
    return delivery;
  }
  return Delivery::NobodyThere;
}

}  // namespace tme
