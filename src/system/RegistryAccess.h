#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <optional>

namespace tme {

/// The keys of the maker and of this program.
inline const QString kMakerKey = QStringLiteral("HKEY_CURRENT_USER\\SOFTWARE\\Zorvan");
inline const QString SettingsRoot = kMakerKey + QStringLiteral("\\TME");

/// Why the settings store did not take what was written to it. It is unchanged then.
struct StoreFailure {
  QString place;   ///< the file or key, for people
  QString reason;  ///< in the system's words
};

/// The settings store: a tree of keys with text values. On Windows the registry; elsewhere the same tree in one
/// per-user file (QSettings, INI format, "TamarindEditor/registry.ini" under the XDG configuration folder).
/// Paths are whole and begin with the hive's name ("HKEY_CURRENT_USER\SOFTWARE\..."); letter case counts, but not on
/// Windows.
/// Values reach the store at once on Windows; elsewhere with CreateKey, DeleteKey and Flush, at the next turn of
/// the event loop or when the object goes. A new object sees what other processes have written.
class RegistryAccess {
 public:
  RegistryAccess();
  ~RegistryAccess();
  RegistryAccess(const RegistryAccess&) = delete;
  RegistryAccess& operator=(const RegistryAccess&) = delete;

  /// Creates every missing key on the path. True when the key exists after the call.
  bool CreateKey(const QString& key);
  /// In a store that cannot be written, the value lasts as long as the program runs; on Windows it is lost.
  void WriteValue(const QString& key, const QString& name, const QString& data);
  /// Empty for a missing key or value, never an error. Elsewhere than on Windows, "Personal" under
  /// "HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders" is the user's documents
  /// folder.
  QString ReadValue(const QString& key, const QString& name) const;
  /// The key with its values and the keys below it.
  void DeleteKey(const QString& key);
  /// Brings to the store what still waits; nothing when the store has got everything.
  std::optional<StoreFailure> Flush();
  /// Called once, from within the first write that fails, or now when one has failed already.
  void OnFailure(std::function<void()> tell);
  /// Where the program's values lie, for people: the folder of the file; on Windows the key.
  QString Location() const;

 private:
  class Store;
  std::unique_ptr<Store> store_;
};

}  // namespace tme
