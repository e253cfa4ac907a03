#include "system/InstanceClaim_linux.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <algorithm>
#include <cerrno>
#include <utility>

#include "system/SettingsFolder_linux.h"

namespace tme {

using namespace Qt::StringLiterals;

namespace {

/// Room for the process number and a path, taken at once: a disk that is full must not show only later.
constexpr qsizetype kClaimBytes = 512;
/// So often at most a claim is taken away just when it is opened.
constexpr int kMostAttempts = 100;

/// Owned by this user, and nobody else has any of the rights.
bool IsOwnFolder(const QString& path, mode_t refused_rights) {
  struct stat status {};
  return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid() && (status.st_mode & refused_rights) == 0;
}

QString ShortDigest(const QByteArray& bytes) {
  constexpr qsizetype kDigits = 12;
  const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
  return QString::fromLatin1(digest.toHex().first(kDigits));
}

/// What tells apart files that lie in one folder: the machine, and away from the settings whose they are. A digest,
/// since the number of a machine is not for everybody to know.
QString Mark(const QString& folder) {
  QByteArray machine = QSysInfo::machineUniqueId();
  if (machine.isEmpty()) machine = QSysInfo::machineHostName().toUtf8();
  const QString settings = SettingsFolder();
  return ShortDigest("tme " + machine + (folder == settings ? QByteArray() : '\n' + QFile::encodeName(settings)));
}

QString ClaimPath(const QString& folder) { return u"%1/instance-%2.lock"_s.arg(folder, Mark(folder)); }

enum class Lock : std::uint8_t { Got, Foreign, Replaced, Refused };

/// Of an open file that was found under this name.
Lock LockFile(int descriptor, const QByteArray& path) {
  struct stat open {};
  struct stat named {};
  if (::fstat(descriptor, &open) != 0 || !S_ISREG(open.st_mode) || open.st_uid != ::geteuid()) return Lock::Refused;
  if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) return errno == EWOULDBLOCK ? Lock::Foreign : Lock::Refused;
  // Its holder may have taken the file away in between, and another have made it anew.
  const bool is_named = ::lstat(path.constData(), &named) == 0 && open.st_ino == named.st_ino;
  return is_named && open.st_dev == named.st_dev ? Lock::Got : Lock::Replaced;
}

}  // namespace

QStringList InstanceFolders() {
  const QString own = u"tme-%1"_s.arg(::geteuid());
  QStringList folders{SettingsFolder()};
  for (const QString& runtime :
       {u"/run/user/%1"_s.arg(::geteuid()), u"/tmp"_s, qEnvironmentVariable("XDG_RUNTIME_DIR"), QDir::tempPath()}) {
    const QString real = QDir::isAbsolutePath(runtime) ? QFileInfo(runtime).canonicalFilePath() : QString();
    if (real.isEmpty()) continue;
    const QString folder = real + u'/' + (IsOwnFolder(real, 0022) ? u"tme"_s : own);
    if (!folders.contains(folder)) folders.append(folder);
  }
  return folders;
}

bool PrepareInstanceFolder(const QString& folder) {
  if (folder == SettingsFolder()) {
    // A link of the user's own will do; another user's folder belongs to that user's editor.
    return !MakeOwnFolder(folder) && IsOwnFolder(QFileInfo(folder).canonicalFilePath(), 0);
  }
  ::mkdir(QFile::encodeName(folder).constData(), 0700);
  return IsOwnFolder(folder, 0077);
}

QString EndpointName(const QString& folder, const QString& handle) { return u"tme-%1-%2"_s.arg(Mark(folder), handle); }

bool InstanceClaim::Take() {
  if (IsHeld()) return true;
  // In all of them: one may have taken no file when the other process began.
  const QStringList folders = InstanceFolders();
  for (const QString& folder : folders) {
    if (TakeIn(folder) != Found::Foreign) continue;
    GiveUp();
    return false;
  }
  return true;
}

InstanceClaim::Found InstanceClaim::TakeIn(const QString& folder) {
  if (!IsHeld() && !PrepareInstanceFolder(folder)) return Found::Unknown;
  const QByteArray path = QFile::encodeName(ClaimPath(folder));
  constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;  // whatever lies there, opening does not wait
  Lock lock = Lock::Replaced;
  for (int attempt = 0; lock == Lock::Replaced && attempt < kMostAttempts; ++attempt) {
    int descriptor = IsHeld() ? -1 : ::open(path.constData(), O_RDWR | O_CREAT | kFlags, 0600);
    const bool may_hold = descriptor >= 0;
    // Reading is enough where the claim lies elsewhere, or has to.
    if (!may_hold) descriptor = ::open(path.constData(), O_RDONLY | kFlags);
    if (descriptor < 0) return Found::Unknown;
    lock = LockFile(descriptor, path);
    if (lock == Lock::Got && may_hold) {
      descriptor_ = descriptor;
      path_ = path;
      ::fchmod(descriptor, kKeptOwnerOnly);
      if (Write({})) return Found::Free;
      GiveUp();
      return Found::Unknown;
    }
    ::close(descriptor);
  }
  return lock == Lock::Foreign ? Found::Foreign : Found::Unknown;
}

bool InstanceClaim::Write(const QByteArray& endpoint) const {
  const QByteArray text = (QByteArray::number(::getpid()) + '\n' + endpoint).leftJustified(kClaimBytes - 1) + '\n';
  return ::pwrite(descriptor_, text.constData(), kClaimBytes, 0) == kClaimBytes &&
         ::ftruncate(descriptor_, kClaimBytes) == 0;
}

void InstanceClaim::TellEndpoint(const QString& path) {
  if (IsHeld()) Write(QFile::encodeName(path));
}

void InstanceClaim::GiveUp() {
  if (!IsHeld()) return;
  ::unlink(path_.constData());  // while it is held, so that no other process's can be meant
  ::close(std::exchange(descriptor_, -1));
}

QStringList InstanceClaim::ToldEndpoints() {
  QStringList endpoints;
  const QStringList folders = InstanceFolders();
  for (const QString& folder : folders) {
    const QByteArray path = QFile::encodeName(ClaimPath(folder));
    const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0) continue;
    QByteArray text(kClaimBytes, '\0');
    const ssize_t size = ::read(descriptor, text.data(), kClaimBytes);
    ::close(descriptor);
    const QByteArray endpoint = text.first(std::max<ssize_t>(size, 0)).mid(text.indexOf('\n') + 1).trimmed();
    if (endpoint.startsWith('/')) endpoints.append(QFile::decodeName(endpoint));
  }
  return endpoints;
}

}  // namespace tme
