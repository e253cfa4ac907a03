#include "shell/mdform_TMEditor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QShortcut>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <array>

#include "files/FileBytes.h"
#include "files/FileFailure.h"
#include "shell/CrashRecovery.h"
#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/OS_SendMessage.h"
#include "shell/OpenDispatch.h"
#include "shell/StatusLine.h"
#include "shell/Tools.h"
#include "shell/WindowMenu.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/FilePath.h"
#include "system/InstanceLink.h"
#include "system/RegistryAccess.h"
#include "system/ShellUtilities.h"

using namespace Qt::StringLiterals;

namespace tme {
mdform_TMEditor::mdform_TMEditor(const Services& services, WindowFactory make_window)
    : make_window_(std::move(make_window)),
      menus_(*menuBar(), [this](const QByteArray& command) { Send(command); }),
      menu_keys_(*menuBar()),
      area_(*new DocumentArea(menus_, settings_, this)),
      status_(*new StatusLine(*statusBar(), {[this] { return area_.ActiveDocument(); },
                                             [this](const QByteArray& command) { Send(command); }})),
      recent_files_(services, menus_, [this](const QString& path) { OpenFileByName(global_, path); }),
      global_{services, settings_, documents_, *this, area_, menus_, recent_files_, snapshots_, status_},
      snapshots_(global_),
      pruning_(global_),
      auto_save_(global_),
      file_drop_(*this,
                 [this](const QStringList& paths) {
                   ComeToFront();
                   for (const QString& path : paths) OpenWholePath(global_, path);
                 }),
      geometry_(*this, services.registry, settings_) {
  setObjectName(u"mdform_TMEditor"_s);
  setCentralWidget(&area_);
  menuBar()->setObjectName(u"menu_bar"_s);
  menuBar()->setAccessibleName(tr("Menu bar"));
}

void mdform_TMEditor::Send(const QByteArray& command) {
  if (DocumentWindow* active = area_.ActiveDocument()) SendCommand(global_, *active, command);
}

mdform_TMEditor::~mdform_TMEditor() {
  global_.registry.OnFailure({});
  // The windows go before what they share.
  area_.disconnect();
  delete &area_;
}

void mdform_TMEditor::MDIForm_Load(const QStringList& command_line_texts) {
  RegistryAccess& registry = global_.registry;
  setWindowTitle(kProgramTitle);
  // Later, since the options dialog may be the one that tells.
  registry.OnFailure([this] {
    settings_failure_untold_ = true;
    QTimer::singleShot(0, this, &mdform_TMEditor::TellSettingsFailure);
  });
  registry.CreateKey(kMakerKey);
  settings_.present = registry.CreateKey(SettingsRoot);
  const auto handle = static_cast<quint32>(winId());
  registry.WriteValue(SettingsRoot, u"Application Path"_s, global_.shell_utilities.ProgramFolder());
  registry.WriteValue(SettingsRoot, u"WinRegistration"_s, QString::number(handle));
  HookFrameWindow(global_, handle);
  registry.CreateKey(kMruKey);
  recent_files_.ReadRecentEntries();
  BindItems();
  ReadSettings();
  geometry_.Restore();
  registry.CreateKey(kRegKey);
  settings_.auto_save_period = ParseAutoSavePeriod(registry.ReadValue(SettingsRoot, u"AutoSave"_s));
  auto_save_.SetAutoSaveTimer(settings_.auto_save_period);
  CreateDocumentWindows();
  CrashRecovery(global_, snapshots_).Run();
  for (const QString& text : command_line_texts) OpenPathList(global_, text);
  OpenWelcomeDocument(global_.shell_utilities.ProgramFolder());
  menus_.RefreshMenus(DocumentKind::Mdi);
  show();
  snapshots_.Start();
  pruning_.Start();
  if (DocumentWindow* active = area_.ActiveDocument()) active->Form_Activate();
  QTimer::singleShot(0, this, &mdform_TMEditor::TellSettingsFailure);
}

void mdform_TMEditor::ReadSettings() {
  settings_.txt_present = global_.registry.CreateKey(kTxtKey);
  settings_.rtf_present = global_.registry.CreateKey(kRtfKey);
  if (settings_.present) settings_.ReadFrameGroup(global_.registry);
  menus_.SetChecked("menu_EditWordWrap", settings_.word_wrap);
  if (settings_.txt_present) settings_.ReadTxtGroup(global_.registry);
  if (settings_.rtf_present) settings_.ReadRtfGroup(global_.registry);
}

void mdform_TMEditor::TellSettingsFailure() {
  DocumentWindow* const active = area_.ActiveDocument();
  const bool has_place = active || isVisible();
  if (!has_place || IsLeaving() || !std::exchange(settings_failure_untold_, false)) return;
  const std::optional<StoreFailure> failure = global_.registry.Flush();
  if (!failure) return;
  if (active)
    active->AddNotice(SettingsFailureText(*failure));
  else
    global_.dialogs.MsgBox(SettingsFailureText(*failure), MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

void mdform_TMEditor::CreateDocumentWindows() {
  for (int slot = 0; slot < kSlotsPerKind; ++slot)
    for (const DocumentKind kind : kKinds) {
      DocumentWindow* window = make_window_(global_, kind, slot);
      if (!window) continue;
      window->setParent(&area_);
      window->hide();
      window->setObjectName(u"form_"_s + QLatin1StringView(NameOf(kind)) + QString::number(slot));
      documents_.Put(kind, slot, window);
    }
  for (const DocumentKind kind : kKinds) {
    if (!documents_.Offers(kind)) continue;
    const QByteArray name = NameOf(kind);
    menus_.Handle("global_FileNew" + name, [this, kind] { NewDocument(global_, kind); });
    // The table has them for the two kinds that take any text.
    for (const char* menu : {"TME_EditPaste", "menu_EditPaste"})
      menus_.Handle(menu + name, [this, kind] { PasteToNewDocument(global_, kind); });
  }
}

void mdform_TMEditor::BindItems() {
  menus_.Handle("global_FileOpen", [this] { OpenFileDialog(global_); });
  menus_.Handle("global_FileExit", [this] { ExitApplication(); });
  menus_.Handle("menu_FileSaveAll", [this] { auto_save_.SaveAllDocuments(); });
  menus_.Handle("menu_FileCloseAll", [this] { CloseAllDocuments(); });
  for (int index = 1; index <= RecentFiles::kEntries; ++index)
    menus_.Handle("menu_mru" + QByteArray::number(index), [this, index] { recent_files_.OpenRecentFile(index); });
  BindTools(global_);
  menus_.SetHidden(u"menu_FileSaveForm"_s, true);  // until the active document is held whole
  menus_.Handle("menu_SearchGoToLine", [this] { status_.AskForLine(); });
  menus_.Handle("menu_FilePrint", [this] { PrintActiveDocument(); });
  BindWindowItems();
}

void mdform_TMEditor::BindWindowItems() {
  constexpr std::array kItems{"global_WindowCascade", "global_WindowTileH", "global_WIndowTileV", "global_WindowIcons"};
  for (std::size_t code = 0; code < kItems.size(); ++code)
    menus_.Handle(kItems[code], [this, code] { area_.ArrangeWindows(static_cast<int>(code)); });
  new WindowMenu(documents_, area_, *menus_.Menu(u"md_menu_window"_s));
  // Beside the area's own Ctrl+Tab, which goes by use, these go round all documents.
  const auto on_key = [this](const QKeySequence& key, void (QMdiArea::*go)()) {
    connect(new QShortcut(key, this), &QShortcut::activated, &area_, go);
  };
  on_key(Qt::CTRL | Qt::Key_F6, &QMdiArea::activateNextSubWindow);
  on_key(Qt::CTRL | Qt::SHIFT | Qt::Key_F6, &QMdiArea::activatePreviousSubWindow);
}

void mdform_TMEditor::OpenWelcomeDocument(const QString& folder_path) {
  const QDir folder(folder_path);
  for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
    if (name.toUpper() != u"WELCOME.RTF") continue;
    // Shown once, and only where there is a window for it.
    if (!documents_.Offers(DocumentKind::Rtf)) return;
    const QString path = QDir::toNativeSeparators(folder.absoluteFilePath(name));
    // Gone at once, it would be no use among the recent files.
    OpenWholePath(global_, path, DocumentFile::Recent::StaysOut);
    if (!QFile::remove(path)) return;
    // Saved under that name, it would be shown once more and then be gone with all that was written.
    return documents_.ForEachOpen([&path](DocumentWindow& window) {
      if (window.File().Path() == path) window.File().ForgetPath();
    });
  }
}

void mdform_TMEditor::GiveUpInstance() {
  UnhookFrameWindow(global_);
  // Another frame may stand there, of another machine with the same settings or of a start that found no claim.
  const QString registered = RegistryAccess().ReadValue(SettingsRoot, u"WinRegistration"_s);
  if (registered == QString::number(static_cast<quint32>(winId())))
    global_.registry.WriteValue(SettingsRoot, u"WinRegistration"_s, {});
  // Later, it would replace what the next instance writes there.
  global_.registry.Flush();
  global_.instance_link.GiveUpClaim();
}

void mdform_TMEditor::LeaveDocument(DocumentWindow& window) {
  window.ExitForm();
  // A document that nobody answered for, or that could be kept nowhere, comes back with the next start.
  const bool dropped = window.IsOpen() && window.IsModified();
  if (dropped && (unattended_ || !window.KeepUnsaved()))
    snapshots_.LeaveForNextStart(window);
  else
    snapshots_.Forget(&window);
  snapshots_.PassOver(window);
}

void mdform_TMEditor::ExitApplication() {
  if (IsLeaving()) return;
  leaving_ = Leaving::Asks;
  area_.StopActivating();
  geometry_.Finish();
  auto_save_.SetAutoSaveTimer(0);
  GiveUpInstance();
  setWindowTitle(tr("Exiting - Please Wait"));
  const auto release = [this](DocumentWindow& window) {
    QWidget* sub_window = window.SubWindow();
    (sub_window ? sub_window : &window)->deleteLater();
    documents_.Release(window);
  };
  documents_.ForEachOpen([](DocumentWindow& window) { window.CommitTyping(); });
  documents_.ForEach([&](DocumentWindow& window) {
    if (window.IsOpen())
      window.SubWindow()->showMinimized();
    else
      release(window);
  });
  documents_.ForEach([this](DocumentWindow& window) { LeaveDocument(window); });
  snapshots_.Stop();
  pruning_.Stop();
  leaving_ = Leaving::Done;
  area_.SetActiveDocument(nullptr);
  documents_.ForEach(release);
  close();
  QCoreApplication::quit();
}

void mdform_TMEditor::CloseAllDocuments() {
  bool stopped = false;
  documents_.ForEachOpen([&](DocumentWindow& window) {
    if (stopped) return;
    // The one that the question is about.
    if (window.File().IsChanged()) area_.Activate(window);
    window.FileClose();
    stopped = window.IsOpen();
  });
}

void mdform_TMEditor::PrintActiveDocument() {
  // Another launch may make another document the active one while the dialog is up.
  DocumentWindow* const document = area_.ActiveDocument();
  if (!document) return;
  CommonDialog& dialog = global_.common_dialog;
  if (const QString obstacle = dialog.PrintObstacle(); !obstacle.isEmpty()) {
    global_.dialogs.MsgBox(obstacle, MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
    return;
  }
  dialog.flags = CommonDialog::kNoPageNumbers | CommonDialog::kReturnDc;
  const std::unique_ptr<QPrinter> printer = dialog.ShowPrinter();
  if (!printer) return;
  // A file is printed elsewhere and then written like any other, whole or not at all: the print engine tells of no
  // failure.
  const QString target = printer->outputFileName();
  const QTemporaryDir folder;
  const QString printed = folder.filePath(u"print"_s);
  if (!target.isEmpty()) printer->setOutputFileName(printed);
  document->PrintDoc(*printer);
  if (target.isEmpty()) return;
  std::string bytes;
  std::optional<FileFailure> failure = ReadFileBytes(FilePath(printed), bytes);
  if (!failure && bytes.rfind("%%EOF") == std::string::npos)
    failure = FileFailure{tr("The pages could not be prepared").toStdString()};
  if (!failure)
    failure = global_.history.files.Replace({document->Kind(), target, QFileInfo(target).fileName()}, bytes);
  if (failure) document->ShowWriteFailure(target, *failure);
}

void mdform_TMEditor::PopUpEditMenu(const QPoint& global_position, const QString& first_item) {
  for (const QString& name : {u"menu_Edit"_s, u"menu_EditReg"_s}) {
    QMenu* edit = menus_.Menu(name);
    if (!menus_.Action(name)->isVisible()) continue;
    if (first_item.isEmpty()) return edit->popup(global_position);
    emit edit->aboutToShow();  // it brings the pictures
    auto* menu = new QMenu(this);
    menu->setObjectName(u"context_menu"_s);
    menu->setAccessibleName(edit->accessibleName());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* first = menus_.Action(first_item);
    menu->addAction(first);
    menu->setDefaultAction(first);
    menu->addSeparator();
    for (QAction* action : edit->actions())
      if (action != first) menu->addAction(action);
    menu->popup(global_position);
  }
}

void mdform_TMEditor::ComeToFront() {
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  raise();
  activateWindow();
}

void mdform_TMEditor::closeEvent(QCloseEvent* event) {
  ExitApplication();
  event->setAccepted(HasLeft());
}

void mdform_TMEditor::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  // Back from another program, which may have written the file.
  if (event->type() != QEvent::ActivationChange || !isActiveWindow() || IsLeaving()) return;
  if (DocumentWindow* active = area_.ActiveDocument()) active->CheckDisk();
}

}  // namespace tme
