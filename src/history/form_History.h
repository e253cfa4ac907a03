#pragma once

#include <QDialog>

#include "shell/History.h"

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTreeWidget;

namespace tme {

class DocumentWindow;
struct Global;

/// The kept versions of the active document's file, or of all files: looks at them, and brings one back.
class form_History : public QDialog {
  Q_OBJECT

 public:
  /// Lists the versions; those of the active document if it has any.
  explicit form_History(Global& global, QWidget* parent = nullptr);

 private:
  void BuildControls();
  void ListVersions();
  void ShowVersion();
  /// Null when nothing is selected.
  const KeptVersion* Selected() const;
  /// The content of the selected version; a message and nothing when it is gone.
  std::optional<std::string> SelectedContent();
  /// The window that holds the version's document now; null when it is not open.
  DocumentWindow* WindowOf(const KeptVersion& version) const;

  void cmd_OpenAsNew_Click();
  void cmd_SaveCopy_Click();
  /// The document gets the version's content, marked changed; what it held is kept first.
  void cmd_Restore_Click();

  Global& global_;
  QList<KeptVersion> versions_;
  QComboBox* cb_Scope = nullptr;
  QTreeWidget* list_Versions = nullptr;
  QLabel* lbl_Difference = nullptr;
  QPlainTextEdit* txt_Version = nullptr;
  QPushButton* cmd_OpenAsNew = nullptr;
  QPushButton* cmd_SaveCopy = nullptr;
  QPushButton* cmd_Restore = nullptr;
};

}  // namespace tme
