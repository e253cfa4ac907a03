#pragma once

#include <QString>

#include "shell/DocumentTable.h"
#include "shell/Settings.h"

namespace tme {

class CommonDialog;
class Dialogs;
class FileSteps;
class History;
class InstanceLink;
class RegistryAccess;
class ShellUtilities;
class mdform_TMEditor;

/// What every window of the process shares: the ways to the system and the shell's state. One for the process, made in
/// Startup (or by a test, with stand-ins); it outlives every window.
struct Global {
  RegistryAccess& registry;
  ShellUtilities& shell_utilities;
  Dialogs& dialogs;
  CommonDialog& common_dialog;
  InstanceLink& instance_link;
  History& history;

  /// The file layer of every save; null for the system's own. Tests fail at its steps.
  FileSteps* file_steps = nullptr;
  Settings settings{};
  DocumentTable documents{};
  /// The Windows folder, empty where there is none.
  QString windows_directory{};
  /// Set once documents are gone for good at exit.
  bool exiting = false;
  /// A save runs that nobody asked for: it shows no question and no dialog, and what would have to be asked is a
  /// notice.
  bool saving_unasked = false;
  /// Cutting deletes what it copied without asking.
  bool skip_confirmation = false;
  /// The document that a save dialog is for which the user did not call up, for its title; empty for all others.
  QString asked_for{};
  /// The next file that is opened does not join the recent files.
  bool skip_recent_once = false;
  /// The frame; set by its constructor, null before.
  mdform_TMEditor* frame = nullptr;
};

/// Title of the program's own messages.
inline const QString kProgramTitle = QStringLiteral("Tamarind Editor");

}  // namespace tme
