#pragma once

#include <QDialog>
#include <memory>

#include "windows/history/LatestComparison.h"
#include "windows/history/VersionCommands.h"

class QComboBox;
class QDialogButtonBox;
class QPushButton;
class QSplitter;

namespace tme {

class ComparisonPane;
class VersionList;
struct VersionComparison;

/// The kept versions of the active document's file, or of all files: shows each beside what is there now, and brings
/// one back.
class form_History : public QDialog {
  Q_OBJECT

 public:
  /// Lists the versions; those of the active document if it has any.
  explicit form_History(Global& global, QWidget* parent = nullptr);

  /// Remembers the size for the next time.
  void done(int result) override;

 private:
  void BuildControls();
  void BuildButtons(QDialogButtonBox& box);
  void RestoreSize();
  /// The version of that id becomes the current one, else the newest.
  void ListVersions(const QString& current_id = {});
  void ShowVersion();
  void SayThatNothingIsKept();
  /// The version beside what is there now.
  LatestComparison::Job ComparisonOf(const KeptVersion& version);
  void ShowComparison(std::shared_ptr<const VersionComparison> comparison);
  void EnableCommands(bool enabled);

  void cmd_OpenAsNew_Click();
  void cmd_SaveCopy_Click();
  void cmd_Restore_Click();

  Global& global_;
  VersionCommands commands_;
  QComboBox* cb_Scope = nullptr;
  VersionList* list_Versions = nullptr;
  QSplitter* splitter_ = nullptr;
  ComparisonPane* pane_ = nullptr;
  QPushButton* cmd_OpenAsNew = nullptr;
  QPushButton* cmd_SaveCopy = nullptr;
  QPushButton* cmd_Restore = nullptr;
  LatestComparison comparing_;
};

}  // namespace tme
