#include "shell/RecentFiles.h"

#include <QAction>
#include <QFileInfo>
#include <algorithm>
#include <functional>

#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/OpenDispatch.h"
#include "shell/PlainText.h"
#include "shell/mdform_TMEditor.h"
#include "system/Dialogs.h"
#include "system/RegistryAccess.h"
#include "system/ShellUtilities.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString ValueName(int index) { return u"mru"_s + QString::number(index); }

QString ItemName(int index) { return u"menu_mru"_s + QString::number(index); }

}  // namespace

void RecentFiles::SetEntry(int index, const QString& path) {
  entries_[static_cast<std::size_t>(index - 1)] = path;
  WriteRecentEntry(path, index);
}

void RecentFiles::ReadRecentEntries() {
  for (int index = 1; index <= kEntries; ++index)
    entries_[static_cast<std::size_t>(index - 1)] = global_.registry.ReadValue(kMruKey, ValueName(index));
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
  global_.registry.WriteValue(kMruKey, ValueName(index), kTextType, path);
}

void RecentFiles::RemoveRecentEntry(int index) {
  for (; index < kEntries; ++index) SetEntry(index, Entry(index + 1));
  SetEntry(kEntries, {});
}

void RecentFiles::RebuildRecentMenu() {
  GlobalMenus& menus = global_.frame->Menus();
  for (int index = 1; index <= kEntries; ++index) {
    const QString& path = Entry(index);
    const bool exists = !path.isEmpty() && global_.shell_utilities.FileExists(path);
    QAction* item = menus.Action(ItemName(index));
    item->setText(exists ? MenuText(QFileInfo(path).fileName()) : QString());
    SetTip(*item, exists ? path : QString());
    menus.SetHidden(ItemName(index), !exists);
  }
  menus.SetHidden(u"mrusep"_s, std::all_of(entries_.begin(), entries_.end(), std::mem_fn(&QString::isEmpty)));
}

void RecentFiles::OpenRecentFile(int index) {
  const QString path = global_.registry.ReadValue(kMruKey, ValueName(index));
  if (global_.shell_utilities.FileExists(path)) {
    global_.skip_recent_once = false;
    return OpenFileByName(global_, path);
  }
  // Before the message: while it stands, another launch may add to the list.
  RemoveRecentEntry(index);
  RebuildRecentMenu();
  global_.dialogs.MsgBox(u"This file no longer exists"_s, MsgButtons::Ok, MsgIcon::None, kProgramTitle);
}

}  // namespace tme
