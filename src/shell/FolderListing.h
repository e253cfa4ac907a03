#pragma once

#include <QString>
#include <atomic>
#include <cstdint>

namespace tme {

/// How far a listing has come, and the wish to stop it: shared by the thread that makes the listing and its watcher.
struct FolderListingWatch {
  std::atomic<std::uint64_t> entries = 0;
  std::atomic<bool> cancelled = false;
};

/// The folder's files and folders, hidden ones included, as the DIR command lists them: date, time, "<DIR>" or size in
/// bytes, name; folders and files in one order, by name without regard to letter case; totals at the end. Lines end in
/// "\n". Empty when cancelled. A folder that cannot be read gives a listing without entries.
QString ListFolder(const QString& folder, FolderListingWatch& watch);

}  // namespace tme
