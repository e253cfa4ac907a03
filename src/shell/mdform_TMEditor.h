#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>

#include "shell/AutoSave.h"
#include "shell/FileDrop.h"
#include "shell/FrameGeometry.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/HistoryPruning.h"
#include "shell/RecentFiles.h"
#include "shell/RecoverySnapshots.h"
#include "system/MenuKeys.h"

namespace tme {

class DocumentWindow;
class StatusLine;

/// The frame: owns the parts of the shell and the document windows, and the order of start-up and shutdown.
class mdform_TMEditor : public QMainWindow {
  Q_OBJECT

 public:
  /// Makes a window of a kind for a slot; null for a kind that has no editor.
  using WindowFactory = std::function<DocumentWindow*(Global& global, DocumentKind kind, int slot)>;

  mdform_TMEditor(const Services& services, WindowFactory make_window);
  ~mdform_TMEditor() override;

  /// Start-up in its order: settings, hand-over endpoint, placement, document windows, the files of the command line
  /// (each text opened by itself), then the frame is shown.
  void MDIForm_Load(const QStringList& command_line_texts);

  /// The one shutdown that every way of leaving goes through; it never cancels: the documents ask about their changes,
  /// but answering Cancel there only keeps that document from being saved. Intended.
  void ExitApplication();
  /// Questions are closed unanswered from now on: documents that are not saved then wait for the next start.
  void LeaveUnattended() { unattended_ = true; }
  /// True while the program is being left, and from then on.
  bool IsLeaving() const { return leaving_ != Leaving::No; }
  /// True once the documents are gone for good.
  bool HasLeft() const { return leaving_ == Leaving::Done; }

  /// What the document windows and the dialogs share; lives as long as the frame.
  Global& Shared() { return global_; }
  /// The options dialog sets its timer.
  AutoSave& Saver() { return auto_save_; }

  /// Settings that did not reach their store are a notice in the active document, once; without one it waits.
  void TellSettingsFailure();
  /// It was told otherwise.
  void SettingsFailureTold() { settings_failure_untold_ = false; }
  /// Shows the welcome document of a folder once: the file is gone afterwards.
  void OpenWelcomeDocument(const QString& folder_path);
  void ComeToFront();
  /// The Edit menu of the active document's kind, for a right click. first_item: of that menu; comes first and is
  /// marked as what a double-click does.
  void PopUpEditMenu(const QPoint& global_position, const QString& first_item = {});

 protected:
  /// MDIForm_QueryUnload: leaving by the frame's own close button.
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  enum class Leaving : std::uint8_t { No, Asks, Done };

  /// To the active document.
  void Send(const QByteArray& command);
  void BindItems();
  void BindWindowItems();
  void ReadSettings();
  void CreateDocumentWindows();
  void PrintActiveDocument();
  /// Stops at the first document that stays open.
  void CloseAllDocuments();
  /// Later launches find no frame any more.
  void GiveUpInstance();
  void LeaveDocument(DocumentWindow& window);

  const WindowFactory make_window_;
  Settings settings_;
  DocumentTable documents_;
  GlobalMenus menus_;
  MenuKeys menu_keys_;
  DocumentArea& area_;
  StatusLine& status_;
  RecentFiles recent_files_;
  /// Some of the parts that it refers to begin to live after it.
  Global global_;
  RecoverySnapshots snapshots_;
  HistoryPruning pruning_;
  AutoSave auto_save_;
  FileDrop file_drop_;
  FrameGeometry geometry_;
  Leaving leaving_ = Leaving::No;
  bool unattended_ = false;
  bool settings_failure_untold_ = false;
};

}  // namespace tme
