#pragma once

#include <QString>
#include <array>
#include <functional>

namespace tme {

class Dialogs;
class GlobalMenus;
class RegistryAccess;
class ShellUtilities;
struct Services;

/// The recently opened files: four entries in order of first opening, the oldest first, shown as the items `menu_mru` 1
/// to 4 of the File menu and kept in the settings store.
class RecentFiles {
 public:
  static constexpr int kEntries = 4;

  /// open: opens an existing file. All must outlive it.
  RecentFiles(const Services& services, GlobalMenus& menus, std::function<void(const QString& path)> open);

  /// Takes the entries from the store and builds the menu.
  void ReadRecentEntries();
  /// A path that is in the list keeps its place, and nothing is written. In a full list the oldest one goes.
  void AddRecentFile(const QString& path);
  /// Opens the file of an item. One that no longer exists: a message, and it leaves the list.
  void OpenRecentFile(int index);
  /// The items show the entries whose files exist now.
  void RebuildRecentMenu();

  /// index: 1 to 4, as everywhere here; empty for a free entry.
  const QString& Entry(int index) const { return entries_[static_cast<std::size_t>(index - 1)]; }

 private:
  void SetEntry(int index, const QString& path);
  void WriteRecentEntry(const QString& path, int index);
  void RemoveRecentEntry(int index);

  RegistryAccess& registry_;
  ShellUtilities& shell_utilities_;
  Dialogs& dialogs_;
  GlobalMenus& menus_;
  const std::function<void(const QString& path)> open_;
  std::array<QString, kEntries> entries_;
};

}  // namespace tme
