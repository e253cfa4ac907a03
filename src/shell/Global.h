#pragma once

#include <QString>

#include "shell/DocumentTable.h"
#include "shell/Settings.h"

namespace tme {

class CommonDialog;
class Dialogs;
class DocumentArea;
class FileSteps;
class GlobalMenus;
class History;
class InstanceLink;
class RecentFiles;
class RegistryAccess;
class RecoverySnapshots;
class ShellUtilities;
class StatusLine;
class mdform_TMEditor;

/// The ways to the system and to the disk. Startup makes them (or a test, with stand-ins) before the frame, and they
/// outlive it.
struct Services {
  RegistryAccess& registry;
  ShellUtilities& shell_utilities;
  Dialogs& dialogs;
  CommonDialog& common_dialog;
  InstanceLink& instance_link;
  History& history;
  /// The file layer of every save; null for the system's own. Tests fail at its steps.
  FileSteps* file_steps = nullptr;
};

/// What every window shares: the services and the parts of the shell. The frame makes it, and it lives as long as the
/// frame: longer than every document window.
struct Global : Services {
  Settings& settings;
  DocumentTable& documents;
  mdform_TMEditor& frame;
  DocumentArea& area;
  GlobalMenus& menus;
  RecentFiles& recent_files;
  RecoverySnapshots& snapshots;
  StatusLine& status;
};

/// Title of the program's own messages.
inline const QString kProgramTitle = QStringLiteral("Tamarind Editor");

}  // namespace tme
