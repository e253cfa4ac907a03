#pragma once

#include <sys/types.h>

#include <QString>
#include <QStringList>
#include <cstdint>

namespace tme {

/// With the sticky bit set, the clean-up of runtime folders leaves a file alone (XDG base directories).
inline constexpr mode_t kKeptOwnerOnly = 01600;

/// Where the claim of the only instance and its endpoint may lie, best first: beside the settings, else in folders that
/// only this user can enter. What only the environment of this start may name comes last. Not all of them need exist.
QStringList InstanceFolders();
/// Makes the folder where it is missing. Returns false if nothing of this user's can lie there safely.
bool PrepareInstanceFolder(const QString& folder);
/// File name of the endpoint for a frame's handle; "*" for the pattern of all.
QString EndpointName(const QString& folder, const QString& handle);

/// The claim of one process to be the only instance: the system's lock on an open file, which ends with the process
/// however it ends. The file tells the process, for people to read, and the endpoint, for later launches. Where a home
/// is shared, each machine has its own.
class InstanceClaim {
 public:
  InstanceClaim() = default;
  ~InstanceClaim() { GiveUp(); }
  InstanceClaim(const InstanceClaim&) = delete;
  InstanceClaim& operator=(const InstanceClaim&) = delete;

  /// Returns false if another process holds it; true if no folder can tell: rather a second frame than none.
  bool Take();
  bool IsHeld() const { return descriptor_ >= 0; }
  /// Where later launches find this process; nothing without the claim.
  void TellEndpoint(const QString& path);
  /// Takes the file away, too.
  void GiveUp();

  /// The endpoints that the claims tell of, those of dead processes included.
  static QStringList ToldEndpoints();

 private:
  enum class Found : std::uint8_t { Free, Foreign, Unknown };
  Found TakeIn(const QString& folder);
  bool Write(const QByteArray& endpoint) const;

  int descriptor_ = -1;
  QByteArray path_;  ///< of the file, as the system takes it
};

}  // namespace tme
