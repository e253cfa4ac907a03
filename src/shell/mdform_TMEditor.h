#pragma once

#include <QMainWindow>
#include <QTimer>
#include <functional>
#include <memory>

#include "documents/DocumentKind.h"

class QMdiArea;
class QMdiSubWindow;

namespace tme {

class AutoSave;
class DocumentWindow;
class FileDrop;
class GlobalMenus;
class MenuKeys;
class Rescue;
class RecentFiles;
class WindowMenu;
struct Global;

/// The frame: owns the menus, the document windows and the order of start-up and shutdown.
class mdform_TMEditor : public QMainWindow {
  Q_OBJECT

 public:
  /// Makes a window of a kind for a slot; null for a kind that has no editor.
  using WindowFactory = std::function<DocumentWindow*(DocumentKind kind, int slot)>;

  mdform_TMEditor(Global& global, WindowFactory make_window);
  ~mdform_TMEditor() override;

  /// Start-up in its order: settings, hand-over endpoint, placement, document windows, the files of the command line
  /// (each text opened by itself), then the frame is shown.
  void MDIForm_Load(const QStringList& command_line_texts);

  /// The one shutdown that every way of leaving goes through; it never cancels: the documents ask about their changes,
  /// but answering Cancel there only keeps that document from being saved. Intended.
  void ExitApplication();

  /// The document that menu commands go to; null when none is open.
  DocumentWindow* ActiveDocument() const { return active_document_; }
  void SetActiveDocument(DocumentWindow* window) { active_document_ = window; }
  /// Settings that did not reach their store are a notice in the active document, once; without one it waits.
  void TellSettingsFailure();
  /// It was told otherwise.
  void SettingsFailureTold() { settings_failure_untold_ = false; }
  /// Shows the welcome document of a folder once: the file is gone afterwards.
  void OpenWelcomeDocument(const QString& folder_path);
  void RefreshMenus(DocumentKind kind);
  GlobalMenus& Menus() { return *menus_; }
  Rescue& UnsavedContent() { return *rescue_; }
  RecentFiles& Recent() { return *recent_files_; }
  /// The options dialog sets its timer.
  AutoSave& Saver() { return *auto_save_; }

  /// 0 cascade, 1 tile horizontally, 2 tile vertically, 3 arrange icons; anything else does nothing.
  void ArrangeWindows(int arrangement);
  /// Cascades after files were opened; where the editors start maximised, the active one is maximised again.
  void CascadeAfterOpening();
  /// Questions are closed unanswered from now on: documents that are not saved then wait for the next start.
  void LeaveUnattended() { unattended_ = true; }
  /// True while the program is being left.
  bool IsLeaving() const { return leaving_; }
  /// A document that is shown becomes the active child.
  void Activate(const DocumentWindow& window);
  /// The same, from an icon as well; nothing while the document is not shown yet.
  void BringToFront(const DocumentWindow& window);
  /// Shows a document window as the active child.
  void ShowDocument(DocumentWindow* window);
  /// A window let its document go: the menus follow what is active now.
  void DocumentClosed(DocumentWindow* window);
  void ComeToFront();
  /// The Edit menu of the active document's kind, for a right click.
  void PopUpEditMenu(const QPoint& global_position);

 protected:
  /// MDIForm_QueryUnload: leaving by the frame's own close button.
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void BindItems();
  void ReadSettings();
  void PlaceFrame();
  void ApplyStoredPlacement();
  void WriteGeometry();
  void CreateDocumentWindows();
  void PrintActiveDocument();
  /// Stops at the first document that stays open.
  void CloseAllDocuments();
  QList<QMdiSubWindow*> ShownChildren(bool minimised) const;
  /// Where a cascade puts its n-th window, from 0.
  QRect CascadeRect(int place, const QWidget* window) const;

  Global& global_;
  const WindowFactory make_window_;
  QMdiArea* area_;
  std::unique_ptr<GlobalMenus> menus_;
  std::unique_ptr<MenuKeys> menu_keys_;
  std::unique_ptr<Rescue> rescue_;
  std::unique_ptr<RecentFiles> recent_files_;
  std::unique_ptr<AutoSave> auto_save_;
  std::unique_ptr<FileDrop> file_drop_;
  std::unique_ptr<WindowMenu> window_menu_;
  DocumentWindow* active_document_ = nullptr;
  /// Resize events come in bursts, and before the window knows whether it is maximised.
  QTimer geometry_timer_;
  bool leaving_ = false;
  bool unattended_ = false;
  bool settings_failure_untold_ = false;
  /// Files were opened before the frame had its real size.
  bool cascade_when_shown_ = false;
};

}  // namespace tme
