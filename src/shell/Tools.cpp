#include "shell/Tools.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcessEnvironment>
#include <QProgressDialog>
#include <QThread>
#include <QTimer>
#include <memory>

#include "shell/BackgroundWork.h"
#include "shell/DisplayText.h"
#include "shell/FolderListing.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/OpenDispatch.h"
#include "shell/PlainText.h"
#include "shell/mdform_TMEditor.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/RegistryAccess.h"
#include "system/ShellUtilities.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

struct Tools {
  Q_DECLARE_TR_FUNCTIONS(Tools)
};

/// Listings that take no longer come without a word.
constexpr unsigned long kQuietMs = 200;
constexpr int kRefreshMs = 100;

void Say(Global& global, const QString& text, MsgIcon icon) {
  global.dialogs.MsgBox(text, MsgButtons::Ok, icon, kProgramTitle);
}

void ReportCompletion(Global& global, const QString& text) {
  if (!global.settings.supress_results) Say(global, text, MsgIcon::Information);
}

/// Shows how far the listing is, with a way to stop it, until the thread has ended.
void WatchListing(Global& global, QThread& thread, FolderListingWatch& watch) {
  QProgressDialog progress(&global.frame);
  progress.setObjectName(u"FolderListingProgress"_s);
  progress.setLabel(PlainLabel());
  progress.setWindowTitle(kProgramTitle);
  progress.setAccessibleName(kProgramTitle);
  progress.setWindowModality(Qt::ApplicationModal);
  progress.setRange(0, 0);
  progress.setAutoReset(false);
  progress.setMinimumWidth(progress.fontMetrics().averageCharWidth() * 50);
  const auto show_count = [&] {
    progress.setLabelText(
        watch.cancelled ? Tools::tr("Cancelling...")
                        : Counted(watch.entries, Tools::tr("Listing: 1 entry"), Tools::tr("Listing: %1 entries")));
  };
  QEventLoop until_done;
  QObject::connect(&thread, &QThread::finished, &until_done, &QEventLoop::quit);
  QObject::connect(&progress, &QProgressDialog::canceled, &until_done, [&] {
    watch.cancelled = true;
    // The box closes on that, but the frame must wait for the thread.
    show_count();
    progress.show();
  });
  QTimer refresh;
  QObject::connect(&refresh, &QTimer::timeout, &progress, show_count);
  refresh.start(kRefreshMs);
  show_count();
  progress.show();
  if (!thread.isFinished()) until_done.exec();
}

void GatherDirectoryList(Global& global) {
  CommonDialog& dialog = global.common_dialog;
  dialog.title = Tools::tr("Gather DIR list");
  dialog.init_dir = InitialOpenFolder(global);
  const QString folder = dialog.ShowFolder();
  if (folder.isEmpty()) return;
  if (!QDir(folder).isReadable())
    return Say(global, Tools::tr("The folder\r( %1 )\rcan not be read.").arg(folder), MsgIcon::Warning);

  FolderListingWatch watch;
  QString listing;
  std::exception_ptr thrown;
  const auto list = [&] {
    try {
      listing = ListFolder(folder, watch);
    } catch (...) {
      thrown = std::current_exception();
    }
  };
  const std::unique_ptr<QThread> thread(QThread::create(list));
  thread->start();
  if (!thread->isRunning() && !thread->isFinished()) list();  // no thread to be had
  if (!thread->wait(kQuietMs)) WatchListing(global, *thread, watch);
  thread->wait();
  if (watch.cancelled) return;
  if (thrown)
    return Say(global, Tools::tr("The folder\r( %1 )\rcould not be listed: %2.").arg(folder, ExceptionText(thrown)),
               MsgIcon::Warning);
  QGuiApplication::clipboard()->setText(listing);
  ReportCompletion(global, Tools::tr("Directory List Gathering Complete"));
}

void GatherEnvironmentVariables(Global& global) {
  QStringList lines = QProcessEnvironment::systemEnvironment().toStringList();
  lines.sort();
  QGuiApplication::clipboard()->setText(lines.join(u'\n') + u'\n');
  ReportCompletion(global, Tools::tr("Environmental Variable Gathering Complete"));
}

/// Whole path of a folder's file, found without regard to letter case; the given name where there is none.
QString InFolder(const QString& folder, const QString& name) {
  const QStringList found =
      QDir(folder).entryList({name}, QDir::Files | QDir::Hidden | QDir::System);  // wildcards, so of any case
  return QDir::toNativeSeparators(QDir(folder).filePath(found.value(0, name)));
}

/// Opens those of the files that exist, then names the others.
void OpenSystemFiles(Global& global, const QStringList& in_windows_folder, const QStringList& on_drive) {
  const QString windows = global.shell_utilities.WindowsDirectory();
  if (windows.isEmpty()) {
    const QString names = (in_windows_folder + on_drive).join(u", "_s);
    return Say(global, Tools::tr("There is no Windows folder on this system, so there is no %1 to edit.").arg(names),
               MsgIcon::Information);
  }
  QStringList paths, missing;
  for (const QString& name : in_windows_folder) paths += InFolder(windows, name);
  // Drive C: is the one with the Windows folder.
  for (const QString& name : on_drive) paths += InFolder(QFileInfo(windows).path(), name);
  for (const QString& path : paths) {
    if (global.shell_utilities.FileExists(path))
      OpenPathList(global, path);
    else
      missing += path;
  }
  if (!missing.isEmpty())
    Say(global, Tools::tr("This system does not have\r") + missing.join(u'\r'), MsgIcon::Information);
}

void ShowAbout(Global& global) {
  const QString text = Tools::tr(
      "%1 %2\r\rFree software under the GNU General Public License, version 3 or any later one (GPL-3.0-or-later)."
      "\r\rSettings: %3\rQt %4");
  Say(global,
      text.arg(kProgramTitle, QCoreApplication::applicationVersion(), global.registry.Location(),
               QLatin1StringView(qVersion())),
      MsgIcon::Program);
}

}  // namespace

void BindTools(Global& global) {
  GlobalMenus& menus = global.menus;
  menus.Handle("menu_FeatureDIR", [&global] { GatherDirectoryList(global); });
  menus.Handle("menu_FeatureVars", [&global] { GatherEnvironmentVariables(global); });
  menus.Handle("menu_FeaturesSysEdit", [&global] {
    OpenSystemFiles(global, {u"WIN.INI"_s, u"SYSTEM.INI"_s, u"PROTOCOL.INI"_s}, {u"AUTOEXEC.BAT"_s, u"CONFIG.SYS"_s});
  });
  menus.Handle("menu_ToolsMSDOS", [&global] { OpenSystemFiles(global, {}, {u"MSDOS.SYS"_s}); });
  // Paths are untranslated.
  menus.Handle("ASDF",
               [&global] { OpenPathList(global, u"c:\\windows\\win.ini c:\\autoexec.bat c:\\windows\\system.ini"_s); });
  menus.Handle("menu_HelpAbout", [&global] { ShowAbout(global); });
}

}  // namespace tme
