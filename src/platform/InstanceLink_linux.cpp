#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QTimer>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <deque>
#include <utility>

#include "platform/InstanceLink.h"

namespace tme {

using namespace Qt::StringLiterals;

namespace {

/// A sender that has not sent its record by then is dropped.
constexpr std::chrono::seconds kRecordPatience{10};
/// After it, whether the hourglass has gone is asked again.
constexpr std::chrono::milliseconds kHourglassPause{50};
/// With the sticky bit set, the clean-up of runtime folders passes a file by (XDG base directories).
constexpr mode_t kKeptOwnerOnly = 01600;

/// Owned by this user, and nobody else has any of the rights.
bool IsOwnFolder(const QString& path, mode_t refused_rights) {
  struct stat status {};
  return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid() && (status.st_mode & refused_rights) == 0;
}

/// A folder that only this user can enter; empty when there is none.
QString PrivateFolder() {
  QString folder = QDir::tempPath() + u"/tme-%1"_s.arg(::geteuid());
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  if (QDir::isAbsolutePath(runtime)) {
    const QString real = QFileInfo(runtime).canonicalFilePath();
    if (!real.isEmpty() && IsOwnFolder(real, 0022)) folder = real + "/tme"_L1;
  }
  ::mkdir(QFile::encodeName(folder).constData(), 0700);
  return IsOwnFolder(folder, 0077) ? folder : QString();
}

QString SocketPath(const QString& folder, std::uint32_t handle) { return u"%1/tme-%2"_s.arg(folder).arg(handle); }

bool IsPeerThisUser(int descriptor) {
  ucred peer{};
  socklen_t size = sizeof peer;
  return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

/// Takes records from other launches. Nothing here waits for a sender.
///
/// Records are delivered one after the other: while `receive` runs, perhaps inside a message box's event loop, or
/// something else is half done and only lets the windows repaint, records of further senders queue up, and their
/// senders go on waiting.
class Listener : public QObject {
 public:
  explicit Listener(std::function<void(const CopyData&)> receive) : receive_(std::move(receive)) {
    connect(&server_, &QLocalServer::newConnection, this, [this] { Accept(); });
  }
  ~Listener() override { Stop(); }

  bool Start(const QString& path) {
    QLocalServer::removeServer(path);  // left over from a process that died
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_.listen(path)) return false;
    ::chmod(QFile::encodeName(path).constData(), kKeptOwnerOnly);
    return true;
  }

  void Stop() {
    server_.close();
    waiting_.clear();
    const auto senders = server_.findChildren<QLocalSocket*>();
    for (QLocalSocket* sender : senders) sender->abort();
  }

  bool IsReceiving() const { return receiving_; }

 private:
  struct Waiting {
    QPointer<QLocalSocket> sender;
    CopyData record;
  };

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
    waiting_.push_back({sender, *record});
    // Not from inside the socket's signal: `receive` may end this object and the socket with it.
    QMetaObject::invokeMethod(
        this, [this] { Deliver(); }, Qt::QueuedConnection);
  }

  void Deliver() {
    if (receiving_ || waiting_.empty()) return;
    if (QGuiApplication::overrideCursor()) {
      QTimer::singleShot(kHourglassPause, this, [this] { Deliver(); });
      return;
    }
    const QPointer<QObject> alive(this);
    const auto receive = receive_;
    receiving_ = true;
    while (!waiting_.empty()) {
      const Waiting next = std::move(waiting_.front());
      waiting_.pop_front();
      receive(next.record);
      if (!alive) return;
      if (next.sender && next.sender->state() == QLocalSocket::ConnectedState) {
        next.sender->write("\x01", 1);
        next.sender->disconnectFromServer();  // after the byte is written
      }
    }
    receiving_ = false;
  }

  std::function<void(const CopyData&)> receive_;
  QLocalServer server_;
  std::deque<Waiting> waiting_;
  bool receiving_ = false;
};

/// A connected socket of this user's process; -1 when nobody listens.
int Connect(const QString& path) {
  const QByteArray name = QFile::encodeName(path);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (name.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return -1;
  std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));

  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return -1;
  if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      !IsPeerThisUser(descriptor)) {
    ::close(descriptor);
    return -1;
  }
  return descriptor;
}

bool SendAll(int descriptor, const QByteArray& bytes) {
  qsizetype sent = 0;
  while (sent < bytes.size()) {
    const ssize_t count =
        ::send(descriptor, bytes.constData() + sent, static_cast<std::size_t>(bytes.size() - sent), MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    sent += count;
  }
  return true;
}

/// No time limit: the receiver may have a question to its user open.
bool AwaitAnswer(int descriptor) {
  char answer = 0;
  ssize_t count = 0;
  do {
    count = ::recv(descriptor, &answer, 1, 0);
  } while (count < 0 && errno == EINTR);
  return count == 1;
}

}  // namespace

class InstanceLink::Endpoint {
 public:
  ~Endpoint() {
    StopListening();
    GiveUpClaim();
  }

  void GiveUpClaim() {
    if (claim_ >= 0) ::close(std::exchange(claim_, -1));
  }

  /// The claim is the system's lock on an open file, which ends with the process however it ends; the process number
  /// in the file is for people to read.
  bool Claim() {
    if (claim_ >= 0) return true;
    const QString folder = PrivateFolder();
    const QByteArray path = QFile::encodeName(folder + "/instance.lock"_L1);
    const int descriptor =
        folder.isEmpty() ? -1 : ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0) return true;  // nobody can be found out about: rather a second frame than none
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
      const bool held = errno == EWOULDBLOCK;
      ::close(descriptor);
      return !held;
    }
    claim_ = descriptor;
    ::fchmod(descriptor, kKeptOwnerOnly);
    if (::ftruncate(descriptor, 0) == 0) ::dprintf(descriptor, "%ld\n", static_cast<long>(::getpid()));
    return true;
  }

  bool Listen(std::uint32_t handle, std::function<void(const CopyData&)> receive) {
    StopListening();
    const QString folder = PrivateFolder();
    if (folder.isEmpty()) return false;
    // What lies here was left by processes that died, since only the claim's holder listens.
    if (claim_ >= 0)
      for (const QString& name : QDir(folder).entryList({"tme-*"_L1}, QDir::System))
        QFile::remove(folder + u'/' + name);
    auto listener = std::make_unique<Listener>(std::move(receive));
    if (!listener->Start(SocketPath(folder, handle))) return false;
    listener_ = std::move(listener);
    return true;
  }

  void StopListening() {
    if (!listener_) return;
    listener_->Stop();
    // Called from inside `receive`, the listener is still on the stack.
    if (listener_->IsReceiving()) {
      listener_.release()->deleteLater();
    } else {
      listener_.reset();
    }
  }

 private:
  int claim_ = -1;
  std::unique_ptr<Listener> listener_;
};

InstanceLink::InstanceLink() : endpoint_(std::make_unique<Endpoint>()) {}

InstanceLink::~InstanceLink() = default;

bool InstanceLink::ClaimOnlyInstance() { return endpoint_->Claim(); }

void InstanceLink::GiveUpClaim() { endpoint_->GiveUpClaim(); }

bool InstanceLink::Listen(std::uint32_t handle, std::function<void(const CopyData&)> receive) {
  return endpoint_->Listen(handle, std::move(receive));
}

void InstanceLink::StopListening() { endpoint_->StopListening(); }

bool InstanceLink::Send(std::uint32_t handle, const CopyData& record) {
  const QString folder = PrivateFolder();
  const int descriptor = folder.isEmpty() ? -1 : Connect(SocketPath(folder, handle));
  if (descriptor < 0) return false;
  const bool dealt_with = SendAll(descriptor, PackCopyData(record)) && AwaitAnswer(descriptor);
  ::close(descriptor);
  return dealt_with;
}

}  // namespace tme
