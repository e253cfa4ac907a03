#include "shell/RecentFiles.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileInfo>
#include <algorithm>
#include <functional>

#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/PlainText.h"
#include "system/Dialogs.h"
#include "system/RegistryAccess.h"
#include "system/ShellUtilities.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString ValueName(int index) { return u"mru"_s + QString::number(index); }

QString ItemName(int index) { return u"menu_mru"_s + QString::number(index); }

}  // namespace

RecentFiles::RecentFiles(const Services& services, GlobalMenus& menus, std::function<void(const QString& path)> open)
    : registry_(services.registry),
      shell_utilities_(services.shell_utilities),
      dialogs_(services.dialogs),
      menus_(menus),
      open_(std::move(open)) {}

void RecentFiles::SetEntry(int index, const QString& path) {
  entries_[static_cast<std::size_t>(index - 1)] = path;
  WriteRecentEntry(path, index);
}

void RecentFiles::ReadRecentEntries() {
  for (int index = 1; index <= kEntries; ++index)
    entries_[static_cast<std::size_t>(index - 1)] = registry_.ReadValue(kMruKey, ValueName(index));
  RebuildRecentMenu();
}

void RecentFiles::AddRecentFile(const QString& path) {
  if (std::find(entries_.begin(), entries_.end(), path) != entries_.end()) return;
  for (int index = 1; index <= kEntries; ++index)
    if (Entry(index).isEmpty()) return SetEntry(index, path);
  for (int index = 2; index <= kEntries; ++index) SetEntry(index - 1, Entry(index));
  SetEntry(kEntries, path);
}

void RecentFiles::WriteRecentEntry(const QString& path, int index) {
  registry_.WriteValue(kMruKey, ValueName(index), path);
}

void RecentFiles::RemoveRecentEntry(int index) {
  for (; index < kEntries; ++index) SetEntry(index, Entry(index + 1));
  SetEntry(kEntries, {});
}

void RecentFiles::RebuildRecentMenu() {
  for (int index = 1; index <= kEntries; ++index) {
    const QString& path = Entry(index);
    const bool exists = !path.isEmpty() && shell_utilities_.FileExists(path);
    QAction* item = menus_.Action(ItemName(index));
    item->setText(exists ? MenuText(QFileInfo(path).fileName()) : QString());
    SetTip(*item, exists ? path : QString());
    menus_.SetHidden(ItemName(index), !exists);
  }
  menus_.SetHidden(u"mrusep"_s, std::all_of(entries_.begin(), entries_.end(), std::mem_fn(&QString::isEmpty)));
}

void RecentFiles::OpenRecentFile(int index) {
  const QString path = registry_.ReadValue(kMruKey, ValueName(index));
  if (shell_utilities_.FileExists(path)) return open_(path);
  // Before the message: while it stands, another launch may add to the list.
  RemoveRecentEntry(index);
  RebuildRecentMenu();
  dialogs_.MsgBox(QCoreApplication::translate("RecentFiles", "This file no longer exists"), MsgButtons::Ok,
                  MsgIcon::None, kProgramTitle);
}

}  // namespace tme
