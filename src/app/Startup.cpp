#include "app/Startup.h"

#include <QApplication>
#include <QFile>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <string_view>

#include "history/History.h"
#include "shell/AutoSave.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/Icon.h"
#include "shell/OS_SendMessage.h"
#include "shell/SessionShutdown.h"
#include "shell/mdform_TMEditor.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/InstanceLink.h"
#include "system/Process.h"
#include "system/RegistryAccess.h"
#include "system/SessionEnd.h"
#include "system/ShellUtilities.h"
#include "windows/history/form_Compare.h"
#include "windows/history/form_History.h"
#include "windows/ini/form_INI.h"
#include "windows/options/ShellIntegration.h"
#include "windows/options/form_TMEOptions.h"
#include "windows/reg/form_REG.h"
#include "windows/rich/form_RTF.h"
#include "windows/text/form_TXT.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

// Untranslated: said before there is a program that could.
constexpr const char* kHelp =
    "Usage: tme [--] [FILE]...\n"
    "Opens the files in the Tamarind Editor; a running instance of the same user opens them.\n"
    "  --help     this text\n"
    "  --version  the version\n"
    "  --         what follows are files, whatever their names\n";

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

struct Arguments {
  bool help = false;
  bool version = false;
  QStringList paths;
};

/// All that is no option of ours is a path, however it begins; after "--" everything is.
Arguments ParseArguments(int argc, char** argv) {
  Arguments arguments;
  bool options_end = false;
  for (int index = 1; index < argc; ++index) {
    const std::string_view argument = argv[index];
    if (!options_end && argument == "--")
      options_end = true;
    else if (!options_end && argument == "--help")
      arguments.help = true;
    else if (!options_end && argument == "--version")
      arguments.version = true;
    else
      arguments.paths.append(QFile::decodeName(argv[index]));
  }
  return arguments;
}

/// Takes off what was handed over; false when not all of it could be.
bool HandOver(QStringList& texts, InstanceLink& link) {
  while (!texts.isEmpty() && SendCommandLine(texts.first(), link)) texts.removeFirst();
  return texts.isEmpty();
}

QString NotHandedOver(const QStringList& texts) {
  constexpr qsizetype kMostNamed = 10;
  QString text = QCoreApplication::translate("Startup",
                                             "The Tamarind Editor that is running does not answer, so these files were "
                                             "not handed over to it:");
  for (const QString& path : texts.first(std::min(texts.size(), kMostNamed))) text += u"\r( "_s + path + u" )"_s;
  if (texts.size() > kMostNamed)
    text += u'\r' +
            QCoreApplication::translate("Startup", "and %n more", nullptr, static_cast<int>(texts.size() - kMostNamed));
  return text;
}

/// Hands over until all is taken, and asks when nobody takes it. True when this process is to be the frame, for the
/// texts that are left.
bool HandOverOrTakeOver(QStringList& texts, InstanceLink& link, int& argc, char** argv) {
  {
    const QCoreApplication application(argc, argv);
    texts = ShellUtilities().CommandLineTexts(texts);
    if (HandOver(texts, link)) return false;
  }
  // The one that did not answer may have been leaving.
  if (link.ClaimOnlyInstance()) return true;
  // Where there is no display to ask on, this is all that is said.
  std::fprintf(stderr, "tme: %s\n", qPrintable(NotHandedOver(texts).replace(u'\r', u'\n')));
  const QApplication application(argc, argv);
  while (Dialogs().MsgBox(NotHandedOver(texts), MsgButtons::TryAgainCancel, MsgIcon::Warning, kProgramTitle) ==
         MsgAnswer::TryAgain) {
    if (HandOver(texts, link)) return false;
    if (link.ClaimOnlyInstance()) return true;
  }
  return false;
}

int RunFrame(QApplication& application, RegistryAccess& registry, InstanceLink& link, const QStringList& texts) {
  ShellUtilities shell_utilities;
  Dialogs dialogs;
  CommonDialog common_dialog;
  History history(shell_utilities.UserDataFolder() + u"/history"_s);
  mdform_TMEditor frame({registry, shell_utilities, dialogs, common_dialog, link, history}, MakeWindow);
  Global& global = frame.Shared();
  ShellIntegration integration(registry, QCoreApplication::applicationFilePath());
  global.menus.Handle("menu_ToolsOptions", [&] {
    form_TMEOptions(
        global, integration, [&frame](int minutes) { frame.Saver().SetAutoSaveTimer(minutes); }, &frame)
        .exec();
  });
  global.menus.Handle("menu_ToolsHistory", [&] { form_History(global, &frame).exec(); });
  global.menus.Handle("menu_ToolsCompare", [&] { form_Compare(global, &frame).exec(); });
  SessionShutdown shutdown(frame);
  const SessionEnd session_end([&shutdown](SessionEnd::Questions questions) { shutdown.EndSession(questions); });
  frame.MDIForm_Load(texts);
  return application.exec();
}

}  // namespace

int Main(int argc, char** argv) {
  EnterProcess();
  const Arguments arguments = ParseArguments(argc, argv);
  if (arguments.help) return std::fputs(kHelp, stdout) < 0;
  if (arguments.version) return std::puts("Tamarind Editor " TME_VERSION) < 0;
  int own_name = std::min(argc, 1);  // all that Qt may see, which has options of its own
  // Desktops find the icon of a window by the name of the desktop entry.
  QGuiApplication::setDesktopFileName(u"tamarind-editor"_s);
  // A launch that only hands over needs no display and no fonts.
  QCoreApplication::setApplicationName(u"TamarindEditor"_s);
  QCoreApplication::setApplicationVersion(QStringLiteral(TME_VERSION));
  RegistryAccess registry;
  InstanceLink link;
  QStringList texts = arguments.paths;
  const bool is_first = link.ClaimOnlyInstance();
  if (!is_first && !HandOverOrTakeOver(texts, link, own_name, argv)) return texts.isEmpty() ? 0 : 1;
  QApplication application(own_name, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  // After the frame is on the screen, which need not wait for a picture.
  QTimer::singleShot(0, &application, [] { QApplication::setWindowIcon(Icon(u"tme"_s)); });
  return RunFrame(application, registry, link, is_first ? ShellUtilities().CommandLineTexts(texts) : texts);
}

}  // namespace tme
