#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <string>

#include "ScriptedDialogs.h"
#include "history/History.h"
#include "shell/Global.h"
#include "shell/mdform_TMEditor.h"
#include "system/InstanceLink.h"
#include "system/RegistryAccess.h"
#include "system/ShellUtilities.h"
#include "windows/ini/form_INI.h"

/// The whole editor with scripted questions, its settings in the test's own home.
class Editor : public testing::Test {
 protected:
  /// A small INI file as a save writes it.
  static constexpr const char* kIni = "[A]\r\nx=1\r\n\r\n";

  Editor();
  ~Editor() override;

  /// Loads and shows the frame.
  void Start(const QStringList& command_line = {});
  tme::form_INI& Ini(int slot = 0);
  /// A new INI document whose tree holds this text, pasted; its changed flag is clear.
  tme::form_INI& NewIni(const std::string& text);

  /// Whole path of a file with these bytes in the test's folder.
  QString File(const QString& name, const std::string& bytes);
  static std::string BytesOf(const QString& path);
  QString InFolder(const QString& name) const { return QDir::toNativeSeparators(folder_.filePath(name)); }

  /// The tree as text, a line a node, indented by level; the selected node is marked with ">".
  static std::string Dump(const tme::IniTree& tree);
  /// Selects the node at a path of texts below the root ("Boot", "shell=x"); none selects the root.
  static void Select(tme::form_INI& window, const QStringList& path = {});
  /// Runs once a modal dialog of this name is up.
  static void OnDialog(const QString& object_name, std::function<void(QWidget&)> drive);

  QTemporaryDir folder_;
  tme::RegistryAccess registry_;
  tme::ShellUtilities shell_utilities_;
  ScriptedDialogs dialogs_;
  ScriptedCommonDialog common_dialog_;
  tme::InstanceLink link_;
  tme::History history_{folder_.filePath(QStringLiteral("history"))};
  std::unique_ptr<tme::mdform_TMEditor> frame_;
  tme::Global& global_;
};
