#include "shell/Startup.h"

#include <QApplication>
#include <QTimer>
#include <cstdio>

#include "history/form_History.h"
#include "ini/form_INI.h"
#include "options/ShellIntegration.h"
#include "options/form_TMEOptions.h"
#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"
#include "platform/InstanceLink.h"
#include "platform/Process.h"
#include "platform/RegistryAccess.h"
#include "platform/SessionEnd.h"
#include "platform/ShellUtilities.h"
#include "reg/form_REG.h"
#include "shell/AutoSave.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/History.h"
#include "shell/Icon.h"
#include "shell/OS_SendMessage.h"
#include "shell/SessionShutdown.h"
#include "shell/mdform_TMEditor.h"
#include "text/form_RTF.h"
#include "text/form_TXT.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr const char* kHelp =
    "Usage: tme [FILE]...\n"
    "Opens the files in the Tamarind Editor; a running instance of the same user opens them.\n"
    "  --help     this text\n"
    "  --version  the version\n";

/// The one place that knows every form.
DocumentWindow* MakeWindow(Global& global, DocumentKind kind, int slot) {
  switch (kind) {
    case DocumentKind::Ini:
      return new form_INI(global, slot);
    case DocumentKind::Reg:
      return new form_REG(global, slot);
    case DocumentKind::Txt:
      return new form_TXT(global, slot);
    case DocumentKind::Rtf:
      return new form_RTF(global, slot);
    default:
      return nullptr;
  }
}

int HandOver(const QStringList& texts) {
  for (const QString& text : texts) {
    if (SendCommandLine(text)) continue;
    std::fputs("tme: the running instance does not answer\n", stderr);
    return 1;
  }
  return 0;
}

int RunFrame(QApplication& application, RegistryAccess& registry, InstanceLink& link, const QStringList& texts) {
  ShellUtilities shell_utilities;
  Dialogs dialogs;
  CommonDialog common_dialog;
  History history(shell_utilities.UserDataFolder() + u"/history"_s);
  Global global{registry, shell_utilities, dialogs, common_dialog, link, history};
  mdform_TMEditor frame(global, [&](DocumentKind kind, int slot) { return MakeWindow(global, kind, slot); });
  ShellIntegration integration(registry, QCoreApplication::applicationFilePath());
  frame.Menus().Handle("menu_ToolsOptions", [&] {
    form_TMEOptions(
        global, integration, [&frame](int minutes) { frame.Saver().SetAutoSaveTimer(minutes); }, &frame)
        .exec();
  });
  frame.Menus().Handle("menu_ToolsHistory", [&] { form_History(global, &frame).exec(); });
  SessionShutdown shutdown(global);
  const SessionEnd session_end([&shutdown](SessionEnd::Questions questions) { shutdown.EndSession(questions); });
  frame.MDIForm_Load(texts);
  return application.exec();
}

}  // namespace

int Main(int argc, char** argv) {
  EnterProcess();
  for (int index = 1; index < argc; ++index) {
    const std::string_view argument = argv[index];
    if (argument == "--help") return std::fputs(kHelp, stdout) < 0;
    if (argument == "--version") return std::puts("Tamarind Editor " TME_VERSION) < 0;
  }
  // Desktops find the icon of a window by the name of the desktop entry.
  QGuiApplication::setDesktopFileName(u"tamarind-editor"_s);
  // A launch that only hands over needs no display and no fonts.
  QCoreApplication::setApplicationName(u"TamarindEditor"_s);
  QCoreApplication::setApplicationVersion(QStringLiteral(TME_VERSION));
  RegistryAccess registry;
  InstanceLink link;
  if (!link.ClaimOnlyInstance()) {
    const QCoreApplication application(argc, argv);
    const int status = HandOver(ShellUtilities().CommandLineTexts());
    // The one that did not answer may have been leaving.
    if (status == 0 || !link.ClaimOnlyInstance()) return status;
  }
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  // After the frame is on the screen, which need not wait for a picture.
  QTimer::singleShot(0, &application, [] { QApplication::setWindowIcon(Icon(u"tme"_s)); });
  return RunFrame(application, registry, link, ShellUtilities().CommandLineTexts());
}

}  // namespace tme
