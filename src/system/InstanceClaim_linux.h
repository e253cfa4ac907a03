#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>

namespace tme {

/// Where the claim of the only instance and its endpoint may lie, best first: beside the settings that it guards, and
/// for settings that take no file, in folders that only this user can enter. What the environment of one start may have
/// and that of another not comes last. Not all of them need exist.
QStringList InstanceFolders();
/// Makes the folder where it is missing. False when nothing of this user's can lie there safely.
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

  /// False when another process holds it. True, too, when no folder can tell: rather a second frame than none.
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
