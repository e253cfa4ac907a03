#pragma once

#include <QString>
#include <cstdint>
#include <vector>

namespace tme {

class RegistryAccess;

/// The two ways in which the file manager offers the program: among those that a file can be sent to or opened with,
/// and as a command in the context menu of every file.
enum class ShellHook : std::uint8_t { SendTo, ContextMenu };
enum class HookState : std::uint8_t { Off, On };

struct IntegrationFailure {
  QString place;   ///< the file or key that could not be written or removed
  QString reason;  ///< in the system's words
};

/// Switches the hooks. Nothing of their state is kept: the system is asked each time.
class ShellIntegration {
 public:
  /// program: whole path of the executable that the hooks start. The registry outlives this.
  ShellIntegration(RegistryAccess& registry, QString program);

  /// Where the file manager of this system offers the program by the SendTo hook; "&" is before the access key.
  static QString SendToPlace();

  /// Off also when the hook starts another copy of the program; only the link in the SendTo folder of Windows is on
  /// whenever it is there.
  HookState State(ShellHook hook) const;
  /// Writes or removes everything that belongs to the hook, another copy's included, and the folders that were made for
  /// it. Returns the parts that failed; the others are done all the same.
  std::vector<IntegrationFailure> Set(ShellHook hook, HookState state);

 private:
  RegistryAccess& registry_;
  QString program_;
};

}  // namespace tme
