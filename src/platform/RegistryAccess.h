#pragma once

#include <QString>
#include <memory>

namespace tme {

/// The settings store: a tree of keys with text values. On Windows the registry; elsewhere the same tree in one
/// per-user file (QSettings, INI format, "TamarindEditor/registry.ini" under the XDG configuration folder).
/// Paths are whole and begin with the hive's name ("HKEY_CURRENT_USER\SOFTWARE\..."), parts joined by "\"; they are
/// compared without regard to letter case on Windows and exactly elsewhere.
/// Values reach the store at once on Windows; elsewhere CreateKey and DeleteKey write through, values at the next turn
/// of the event loop or when the object goes. A new object sees what other processes have written.
class RegistryAccess {
 public:
  RegistryAccess();
  ~RegistryAccess();
  RegistryAccess(const RegistryAccess&) = delete;
  RegistryAccess& operator=(const RegistryAccess&) = delete;

  /// Creates every missing key on the path. True when the key exists after the call.
  bool CreateKey(const QString& key);
  /// type: always "REG_SZ". A store that cannot be written is ignored.
  void WriteValue(const QString& key, const QString& name, const QString& type, const QString& data);
  /// Empty for a missing key or value, never an error. Elsewhere than on Windows, "Personal" under
  /// "HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders" is the user's documents
  /// folder.
  QString ReadValue(const QString& key, const QString& name) const;
  /// The key with its values and the keys below it.
  void DeleteKey(const QString& key);
  /// Where a key's values lie, for people: the folder of the file; on Windows the key itself.
  QString Location(const QString& key) const;

 private:
  class Store;
  std::unique_ptr<Store> store_;
};

}  // namespace tme
