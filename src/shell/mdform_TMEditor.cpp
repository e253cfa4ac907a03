#include "shell/mdform_TMEditor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QTemporaryDir>

#include "files/FileBytes.h"
#include "files/FileFailure.h"
#include "shell/AutoSave.h"
#include "shell/DocumentWindow.h"
#include "shell/FileDrop.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/OS_SendMessage.h"
#include "shell/OpenDispatch.h"
#include "shell/RecentFiles.h"
#include "shell/Rescue.h"
#include "shell/Tools.h"
#include "shell/WindowArrangement.h"
#include "shell/WindowMenu.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/FilePath.h"
#include "system/InstanceLink.h"
#include "system/MenuKeys.h"
#include "system/RegistryAccess.h"
#include "system/ShellUtilities.h"
#include "system/Twips.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kGeometryDelayMs = 150;
/// Part of the screen that a first start's frame takes in each direction.
constexpr double kFirstShare = 0.75;
/// Part of the frame's area that a cascaded window takes in each direction.
constexpr double kCascadeShare = 0.75;

}  // namespace

mdform_TMEditor::mdform_TMEditor(Global& global, WindowFactory make_window)
    : global_(global), make_window_(std::move(make_window)), area_(new QMdiArea(this)) {
  global_.frame = this;
  setObjectName(u"mdform_TMEditor"_s);
  area_->setObjectName(u"mdi_area"_s);
  area_->setAccessibleName(tr("Documents"));
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  area_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setCentralWidget(area_);
  menuBar()->setObjectName(u"menu_bar"_s);
  menuBar()->setAccessibleName(tr("Menu bar"));
  menus_ = std::make_unique<GlobalMenus>(global_, *menuBar());
  menu_keys_ = std::make_unique<MenuKeys>(*menuBar());
  rescue_ = std::make_unique<Rescue>(global_);
  recent_files_ = std::make_unique<RecentFiles>(global_);
  auto_save_ = std::make_unique<AutoSave>(global_);
  file_drop_ = std::make_unique<FileDrop>(global_);

  geometry_timer_.setSingleShot(true);
  geometry_timer_.setInterval(kGeometryDelayMs);
  connect(&geometry_timer_, &QTimer::timeout, this, &mdform_TMEditor::WriteGeometry);
  connect(area_, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* sub_window) {
    // Null when the whole program loses the focus: the document stays the active one.
    auto* window = sub_window ? qobject_cast<DocumentWindow*>(sub_window->widget()) : nullptr;
    if (window && !window->Tag().isEmpty()) window->Form_Activate();
  });
}

mdform_TMEditor::~mdform_TMEditor() {
  global_.registry.OnFailure({});
  global_.frame = nullptr;
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
  global_.settings.present = registry.CreateKey(SettingsRoot);
  const auto handle = static_cast<quint32>(winId());
  registry.WriteValue(SettingsRoot, u"Application Path"_s, kTextType, global_.shell_utilities.ProgramFolder());
  registry.WriteValue(SettingsRoot, u"WinRegistration"_s, kTextType, QString::number(handle));
  HookFrameWindow(global_, handle);
  registry.CreateKey(kMruKey);
  recent_files_->ReadRecentEntries();
  BindItems();
  global_.exiting = false;
  global_.windows_directory = global_.shell_utilities.WindowsDirectory();
  ReadSettings();
  PlaceFrame();
  registry.CreateKey(kRegKey);
  global_.settings.auto_save_period = ParseAutoSavePeriod(registry.ReadValue(SettingsRoot, u"AutoSave"_s));
  auto_save_->SetAutoSaveTimer(global_.settings.auto_save_period);
  CreateDocumentWindows();
  rescue_->ReopenAfterCrash();
  for (const QString& text : command_line_texts) OpenPathList(global_, text);
  OpenWelcomeDocument(global_.shell_utilities.ProgramFolder());
  RefreshMenus(DocumentKind::Mdi);
  show();
  rescue_->Start();
  if (active_document_) active_document_->Form_Activate();
  QTimer::singleShot(0, this, &mdform_TMEditor::TellSettingsFailure);
}

void mdform_TMEditor::ReadSettings() {
  Settings& settings = global_.settings;
  settings.txt_present = global_.registry.CreateKey(kTxtKey);
  settings.rtf_present = global_.registry.CreateKey(kRtfKey);
  if (settings.present) settings.ReadFrameGroup(global_.registry);
  menus_->SetChecked("menu_EditWordWrap", settings.word_wrap);
  if (settings.txt_present) settings.ReadTxtGroup(global_.registry);
  if (settings.rtf_present) settings.ReadRtfGroup(global_.registry);
}

void mdform_TMEditor::TellSettingsFailure() {
  const bool has_place = active_document_ || isVisible();
  if (!has_place || leaving_ || !std::exchange(settings_failure_untold_, false)) return;
  const std::optional<StoreFailure> failure = global_.registry.Flush();
  if (!failure) return;
  if (active_document_)
    active_document_->AddNotice(SettingsFailureText(*failure));
  else
    global_.dialogs.MsgBox(SettingsFailureText(*failure), MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
}

void mdform_TMEditor::PlaceFrame() {
  const QRect available = screen()->geometry();
  const QSize size = (QSizeF(available.size()) * kFirstShare).toSize();
  resize(size);
  move(available.center() - QRect(QPoint(), size).center());
  if (global_.settings.present) ApplyStoredPlacement();
  if (global_.registry.ReadValue(SettingsRoot, u"MDI Max"_s) == u"1")
    setWindowState(windowState() | Qt::WindowMaximized);
}

void mdform_TMEditor::ApplyStoredPlacement() {
  const auto stored = [this](const QString& name) { return global_.registry.ReadValue(SettingsRoot, name); };
  const QString top = stored(u"MDI Top"_s), left = stored(u"MDI Left"_s);
  const QString width = stored(u"MDI Width"_s), height = stored(u"MDI Height"_s);
  if (top.isEmpty() || left.isEmpty() || width.isEmpty() || height.isEmpty()) return;
  // Each that can be read is applied; the first that cannot ends it, and the frame keeps what it has by then.
  const auto apply = [this](const QString& text, const std::function<void(int)>& place) {
    const std::optional<int> twips = ParseTwips(text);
    if (twips) place(TwipsToPixels(*twips, logicalDpiX()));
    return twips.has_value();
  };
  QRect placement(pos(), QMainWindow::size());
  static_cast<void>(apply(top, [&](int pixels) { placement.moveTop(pixels); }) &&
                    apply(left, [&](int pixels) { placement.moveLeft(pixels); }) &&
                    apply(width, [&](int pixels) { placement.setWidth(std::max(pixels, 0)); }) &&
                    apply(height, [&](int pixels) { placement.setHeight(std::max(pixels, 0)); }));
  // A screen that is gone must not take the frame with it: off every one, it comes back onto the first.
  const QScreen* on = QGuiApplication::screenAt(placement.center());
  const QRect room = (on ? on : screen())->availableGeometry();
  // One that stretches over several screens is as large as they are.
  if (!screen()->virtualGeometry().contains(placement)) placement.setSize(placement.size().boundedTo(room.size()));
  resize(placement.size());
  move(on ? placement.topLeft()
          : QPoint(std::clamp(placement.x(), room.x(), room.right() + 1 - placement.width()),
                   std::clamp(placement.y(), room.y(), room.bottom() + 1 - placement.height())));
}

void mdform_TMEditor::WriteGeometry() {
  geometry_timer_.stop();
  if (!global_.settings.present || isMinimized()) return;
  const auto write = [this](const QString& name, const QString& text) {
    global_.registry.WriteValue(SettingsRoot, name, kTextType, text);
  };
  write(u"MDI Max"_s, isMaximized() ? u"1"_s : u"0"_s);
  if (isMaximized()) return;
  const auto twips = [this](int pixels) { return QString::number(PixelsToTwips(pixels, logicalDpiX())); };
  // Without the decoration, which is not there yet when the next start places the window.
  write(u"MDI Top"_s, twips(geometry().y()));
  write(u"MDI Left"_s, twips(geometry().x()));
  write(u"MDI Height"_s, twips(height()));
  write(u"MDI Width"_s, twips(width()));
}

void mdform_TMEditor::CreateDocumentWindows() {
  for (int slot = 0; slot < kSlotsPerKind; ++slot)
    for (const KindTraits& traits : kKinds) {
      DocumentWindow* window = make_window_(traits.kind, slot);
      if (!window) continue;
      window->setParent(area_);
      window->hide();
      window->setObjectName(u"form_"_s + QLatin1StringView(traits.name) + QString::number(slot));
      global_.documents.At(traits.kind, slot).window = window;
    }
  for (const KindTraits& traits : kKinds) {
    if (!global_.documents.Offers(traits.kind)) continue;
    const QByteArray item = QByteArray("global_FileNew") + traits.name;
    menus_->Handle(item, [this, code = traits.slot_code] { NewDocument(global_, code); });
    // The table has them for the two kinds that take any text.
    for (const char* menu : {"TME_EditPaste", "menu_EditPaste"})
      menus_->Handle(QByteArray(menu) + traits.name,
                     [this, code = traits.slot_code] { PasteToNewDocument(global_, code); });
  }
}

void mdform_TMEditor::BindItems() {
  menus_->Handle("global_FileOpen", [this] { OpenFileDialog(global_); });
  menus_->Handle("global_FileExit", [this] { ExitApplication(); });
  menus_->Handle("menu_FileSaveAll", [this] { auto_save_->SaveAllDocuments(); });
  menus_->Handle("menu_FileCloseAll", [this] { CloseAllDocuments(); });
  for (int index = 1; index <= RecentFiles::kEntries; ++index)
    menus_->Handle("menu_mru" + QByteArray::number(index), [this, index] { recent_files_->OpenRecentFile(index); });
  BindTools(global_);
  menus_->Handle("menu_FilePrint", [this] { PrintActiveDocument(); });
  menus_->Handle("global_WindowCascade", [this] { ArrangeWindows(0); });
  menus_->Handle("global_WindowTileH", [this] { ArrangeWindows(1); });
  menus_->Handle("global_WIndowTileV", [this] { ArrangeWindows(2); });
  menus_->Handle("global_WindowIcons", [this] { ArrangeWindows(3); });
  window_menu_ = std::make_unique<WindowMenu>(global_, *area_, *menus_->Menu(u"md_menu_window"_s));
  // Beside the area's own Ctrl+Tab, which goes by use, these go round all documents.
  const auto on_key = [this](const QKeySequence& key, void (QMdiArea::*go)()) {
    connect(new QShortcut(key, this), &QShortcut::activated, area_, go);
  };
  on_key(Qt::CTRL | Qt::Key_F6, &QMdiArea::activateNextSubWindow);
  on_key(Qt::CTRL | Qt::SHIFT | Qt::Key_F6, &QMdiArea::activatePreviousSubWindow);
}

void mdform_TMEditor::OpenWelcomeDocument(const QString& folder_path) {
  const QDir folder(folder_path);
  for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
    if (name.toUpper() != u"WELCOME.RTF") continue;
    // Shown once, and only where there is a window for it.
    if (!global_.documents.Offers(DocumentKind::Rtf)) return;
    const QString path = QDir::toNativeSeparators(folder.absoluteFilePath(name));
    // Gone at once, it would be no use among the recent files.
    global_.skip_recent_once = true;
    OpenWholePath(global_, path);
    global_.skip_recent_once = false;
    if (!QFile::remove(path)) return;
    // Saved under that name, it would be shown once more and then be gone with all that was written.
    return global_.documents.ForEach([&path](const DocumentSlot& slot) {
      if (!slot.window->Tag().isEmpty() && slot.path == path) slot.window->LoseFile();
    });
  }
}

void mdform_TMEditor::ExitApplication() {
  if (std::exchange(leaving_, true)) return;
  if (geometry_timer_.isActive()) WriteGeometry();
  auto_save_->SetAutoSaveTimer(0);
  UnhookFrameWindow(global_);
  // Another frame may stand there, of another machine with the same settings or of a start that found no claim.
  const QString registered = RegistryAccess().ReadValue(SettingsRoot, u"WinRegistration"_s);
  if (registered == QString::number(static_cast<quint32>(winId())))
    global_.registry.WriteValue(SettingsRoot, u"WinRegistration"_s, kTextType, {});
  // Later, it would replace what the next instance writes there.
  global_.registry.Flush();
  global_.instance_link.GiveUpClaim();
  setWindowTitle(tr("Exiting - Please Wait"));
  const auto release = [](DocumentSlot& slot) {
    QWidget* sub_window = slot.window->SubWindow();
    (sub_window ? sub_window : slot.window)->deleteLater();
    slot.window = nullptr;
  };
  global_.documents.ForEach([&](DocumentSlot& slot) {
    if (slot.window->Tag().isEmpty())
      release(slot);
    else
      slot.window->SubWindow()->showMinimized();
  });
  global_.documents.ForEach([this](DocumentSlot& slot) {
    slot.window->ExitForm();
    // A document that nobody answered for, or that could be kept nowhere, comes back with the next start.
    const bool dropped = !slot.window->Tag().isEmpty() && slot.window->IsTouched();
    if (dropped && (unattended_ || !slot.window->KeepUnsaved()))
      rescue_->LeaveForNextStart(*slot.window);
    else
      rescue_->Forget(slot.window);
    rescue_->PassOver(*slot.window);
  });
  rescue_->Stop();
  global_.exiting = true;
  active_document_ = nullptr;
  global_.documents.ForEach(release);
  close();
  QCoreApplication::quit();
}

void mdform_TMEditor::RefreshMenus(DocumentKind kind) { menus_->RefreshMenus(kind); }

QList<QMdiSubWindow*> mdform_TMEditor::ShownChildren(bool minimised) const {
  QList<QMdiSubWindow*> children;
  for (QMdiSubWindow* child : area_->subWindowList(QMdiArea::StackingOrder))
    if (!child->isHidden() && child->isMinimized() == minimised) children.append(child);
  return children;
}

QRect mdform_TMEditor::CascadeRect(int place, const QWidget* window) const {
  const QSize room = area_->viewport()->size();
  const QSize share = (QSizeF(room) * kCascadeShare).toSize();
  const int step =
      style()->pixelMetric(QStyle::PM_TitleBarHeight) + style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
  const auto* document = qobject_cast<const DocumentWindow*>(window);
  const int width = document && document->PreferredWidth() > 0 ? document->PreferredWidth() : share.width();
  return {CascadeOrigin(place, room, step, share), QSize(width, share.height())};
}

void mdform_TMEditor::ArrangeWindows(int arrangement) {
  // Tiles need no scroll bars: those that stand now make room.
  const bool cascades = arrangement == static_cast<int>(Arrangement::Cascade);
  const QSize room = cascades ? area_->viewport()->size() : area_->maximumViewportSize();
  const QList<QMdiSubWindow*> icons = ShownChildren(true);
  if (!icons.isEmpty()) {
    const std::vector<QPoint> origins = IconOrigins(static_cast<int>(icons.size()), room, icons.first()->size());
    for (qsizetype index = 0; index < icons.size(); ++index)
      icons[index]->move(origins[static_cast<std::size_t>(index)]);
  }
  const QList<QMdiSubWindow*> children = ShownChildren(false);
  if (children.isEmpty()) return;
  QMdiSubWindow* active = children.last();
  const auto count = static_cast<int>(children.size());
  std::vector<QRect> rects;
  if (cascades) {
    for (int place = 0; place < count; ++place) rects.push_back(CascadeRect(place, children[place]->widget()));
  } else if (arrangement == static_cast<int>(Arrangement::TileHorizontally) ||
             arrangement == static_cast<int>(Arrangement::TileVertically)) {
    rects = TileRects(count, room, static_cast<Arrangement>(arrangement));
  } else {
    return;
  }
  for (qsizetype index = 0; index < children.size(); ++index) {
    if (children[index]->isMaximized()) children[index]->showNormal();
    children[index]->setGeometry(rects[static_cast<std::size_t>(index)]);
  }
  area_->setActiveSubWindow(active);
}

void mdform_TMEditor::CascadeAfterOpening() {
  if (!isVisible()) {
    cascade_when_shown_ = true;
    return;
  }
  QMdiSubWindow* active = area_->activeSubWindow();
  QWidget* const keys = active ? active->widget()->focusWidget() : nullptr;
  ArrangeWindows(0);
  active = area_->activeSubWindow();
  if (global_.settings.start_editors_max && active && !active->isHidden()) active->showMaximized();
  // A window that is resized so is hidden for a moment, which hands the keys on to its next control.
  if (keys && active && active->isAncestorOf(keys)) keys->setFocus();
}

void mdform_TMEditor::ShowDocument(DocumentWindow* window) {
  QMdiSubWindow* sub_window = window->SubWindow();
  if (!sub_window) {
    sub_window = area_->addSubWindow(window);
    sub_window->setAttribute(Qt::WA_DeleteOnClose, false);
    sub_window->setObjectName(window->objectName() + u"_child"_s);
    sub_window->setWindowIcon(window->windowIcon());
    window_menu_->Watch(*sub_window);
    // The File menu holds the keys for closing.
    for (QAction* action : sub_window->systemMenu()->actions()) action->setShortcuts({});
  }
  // The next place of the cascade; the area's own choice may lie out of sight.
  const auto place = static_cast<int>((ShownChildren(false) + ShownChildren(true)).size());
  // Maximised documents stay so: the new one is, too.
  const QMdiSubWindow* before = area_->activeSubWindow();
  const bool maximised = global_.settings.start_editors_max || (before && !before->isHidden() && before->isMaximized());
  window->show();
  sub_window->showNormal();
  sub_window->setGeometry(CascadeRect(place, window));
  if (maximised) sub_window->showMaximized();
  area_->setActiveSubWindow(sub_window);
  window->Form_Activate();
}

void mdform_TMEditor::Activate(const DocumentWindow& window) { area_->setActiveSubWindow(window.SubWindow()); }

void mdform_TMEditor::BringToFront(const DocumentWindow& window) {
  QMdiSubWindow* sub_window = window.SubWindow();
  // While it is being read, a question may stand before its window does.
  if (!sub_window || sub_window->isHidden()) return;
  if (sub_window->isMinimized()) sub_window->showNormal();
  area_->setActiveSubWindow(sub_window);
}

void mdform_TMEditor::CloseAllDocuments() {
  bool stopped = false;
  global_.documents.ForEach([&](const DocumentSlot& slot) {
    DocumentWindow& window = *slot.window;
    if (stopped || window.Tag().isEmpty()) return;
    // The one that the question is about.
    if (slot.changed) Activate(window);
    window.FileClose();
    stopped = !window.Tag().isEmpty();
  });
}

void mdform_TMEditor::DocumentClosed(DocumentWindow* window) {
  if (active_document_ != window) return;
  active_document_ = nullptr;
  RefreshMenus(DocumentKind::Mdi);
  const QList<QMdiSubWindow*> children = ShownChildren(false) + ShownChildren(true);
  if (children.isEmpty() || leaving_) return;
  area_->setActiveSubWindow(children[std::max<qsizetype>(0, ShownChildren(false).size() - 1)]);
  if (auto* next = qobject_cast<DocumentWindow*>(area_->activeSubWindow()->widget())) next->Form_Activate();
}

void mdform_TMEditor::PrintActiveDocument() {
  // Another launch may make another document the active one while the dialog is up.
  DocumentWindow* const document = active_document_;
  if (!document) return;
  CommonDialog& dialog = global_.common_dialog;
  if (const QString obstacle = dialog.PrintObstacle(); !obstacle.isEmpty()) {
    global_.dialogs.MsgBox(obstacle, MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
    return;
  }
  dialog.flags = CommonDialog::kNoPageNumbers | CommonDialog::kReturnDc;
  const std::unique_ptr<QPrinter> printer = dialog.ShowPrinter();
  if (!printer) return;
  // A file is printed aside and then written like any other, whole or not at all: the print engine tells of no failure.
  const QString target = printer->outputFileName();
  const QTemporaryDir aside;
  const QString printed = aside.filePath(u"print"_s);
  if (!target.isEmpty()) printer->setOutputFileName(printed);
  QMetaObject::invokeMethod(document, "PrintDoc", Q_ARG(QPrinter*, printer.get()));
  if (target.isEmpty()) return;
  std::string bytes;
  std::optional<FileFailure> failure = ReadFileBytes(FilePath(printed), bytes);
  if (!failure && bytes.rfind("%%EOF") == std::string::npos) failure = FileFailure{"The pages could not be prepared"};
  if (!failure)
    failure = global_.history.files.Replace({document->Kind(), target, QFileInfo(target).fileName()}, bytes);
  if (failure) document->ShowWriteFailure(target, *failure);
}

void mdform_TMEditor::PopUpEditMenu(const QPoint& global_position) {
  for (const QString& name : {u"menu_Edit"_s, u"menu_EditReg"_s})
    if (menus_->Action(name)->isVisible()) menus_->Menu(name)->popup(global_position);
}

void mdform_TMEditor::ComeToFront() {
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  raise();
  activateWindow();
}

void mdform_TMEditor::closeEvent(QCloseEvent* event) {
  ExitApplication();
  event->setAccepted(global_.exiting);
}

void mdform_TMEditor::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (isVisible() && !leaving_) geometry_timer_.start();
}

void mdform_TMEditor::moveEvent(QMoveEvent* event) {
  QMainWindow::moveEvent(event);
  if (isVisible() && !leaving_) geometry_timer_.start();
}

void mdform_TMEditor::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  // Back from another program, which may have written the file.
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && active_document_ && !leaving_)
    active_document_->CheckDisk();
  if (event->type() == QEvent::WindowStateChange && isVisible() && !leaving_) geometry_timer_.start();
}

void mdform_TMEditor::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (std::exchange(cascade_when_shown_, false)) QTimer::singleShot(0, this, &mdform_TMEditor::CascadeAfterOpening);
}

}  // namespace tme
