#pragma once

#include <QDialog>
#include <future>
#include <memory>

#include "history/History.h"

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QPushButton;
class QSplitter;
class QTreeWidget;

namespace tme {

class DifferenceView;
class DocumentWindow;
struct Global;
struct VersionComparison;

/// The kept versions of the active document's file, or of all files: looks at them, and brings one back.
class form_History : public QDialog {
  Q_OBJECT

 public:
  /// Lists the versions; those of the active document if it has any.
  explicit form_History(Global& global, QWidget* parent = nullptr);

  ~form_History() override;

  /// Remembers the size for the next time.
  void done(int result) override;

 private:
  void BuildControls();
  QWidget* BuildTextSide();
  void BuildButtons(QDialogButtonBox& box);
  void RestoreSize();
  /// Newest first; the version of that id becomes the selected one, else the newest.
  void ListVersions(const QString& selected_id = {});
  void ShowVersion();
  /// What the version's document holds when no file does; nothing otherwise.
  std::optional<std::string> UnsavedNow(const KeptVersion& version) const;
  void CompareVersion(const KeptVersion& version);
  /// On a thread of its own; the result is shown when it is there, unless another version is wanted by then.
  void StartComparing(const KeptVersion& version, std::optional<std::string> now);
  void ShowComparison(std::shared_ptr<const VersionComparison> comparison);
  void ShowLines();
  void EnableCommands(bool enabled);
  void ShowPlace();
  /// Null when nothing is selected.
  const KeptVersion* Selected() const;
  /// The content of the selected version; a message and nothing when it is gone.
  std::optional<std::string> SelectedContent();
  /// The window that holds the version's document now, the active one if there are several; null when it is not open.
  DocumentWindow* WindowOf(const KeptVersion& version) const;

  /// Where the copy goes; empty when cancelled.
  QString AskForCopyPath(const ContentOrigin& origin);

  void cmd_OpenAsNew_Click();
  void cmd_SaveCopy_Click();
  /// The document gets the version's content, marked changed; what it held is kept first.
  void cmd_Restore_Click();

  Global& global_;
  QList<KeptVersion> versions_;
  QComboBox* cb_Scope = nullptr;
  QTreeWidget* list_Versions = nullptr;
  QSplitter* splitter_ = nullptr;
  QLabel* lbl_Difference = nullptr;
  QLabel* lbl_Place = nullptr;
  QCheckBox* chk_DifferencesOnly = nullptr;
  QPushButton* cmd_Previous = nullptr;
  QPushButton* cmd_Next = nullptr;
  DifferenceView* txt_Version = nullptr;
  QPushButton* cmd_OpenAsNew = nullptr;
  QPushButton* cmd_SaveCopy = nullptr;
  QPushButton* cmd_Restore = nullptr;
  /// Of the selected version; null while it is not there yet.
  std::shared_ptr<const VersionComparison> comparison_;
  /// Grows with each selection.
  std::uint64_t wanted_ = 0;
  /// Last, so that it is waited for before anything else goes.
  std::future<void> comparing_;
};

}  // namespace tme
