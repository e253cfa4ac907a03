#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <cstdio>

#include "TestSystem.h"

namespace {

/// Points everything that a program takes from its surroundings into `home`, which is empty: no test sees the
/// developer's settings, session bus or Wine prefix, nor what another test left. Before QApplication, which reads them.
bool EnterHome(const QString& home) {
  constexpr const char* kPlaces[][2] = {{"home", "HOME USERPROFILE"},
                                        {"home/.config", "XDG_CONFIG_HOME"},
                                        {"home/.local/share", "XDG_DATA_HOME"},
                                        {"home/.local/state", "XDG_STATE_HOME"},
                                        {"home/.cache", "XDG_CACHE_HOME"},
                                        {"home/AppData/Roaming", "APPDATA"},
                                        {"home/AppData/Local", "LOCALAPPDATA"},
                                        {"run", "XDG_RUNTIME_DIR"},
                                        {"tmp", "TMPDIR TMP TEMP"}};
  for (const auto& [name, variables] : kPlaces) {
    const QString folder = QDir(home).filePath(QLatin1String(name));
    if (!QDir().mkpath(folder)) return false;
    for (const QByteArray& variable : QByteArray(variables).split(' ')) {
      qputenv(variable.constData(), QFile::encodeName(QDir::toNativeSeparators(folder)));
    }
  }
  for (const char* variable :
       {"XDG_CONFIG_DIRS", "WINEPREFIX", "DBUS_SESSION_BUS_ADDRESS", "SESSION_MANAGER", "DISPLAY", "WAYLAND_DISPLAY",
        "QT_STYLE_OVERRIDE", "QT_SCALE_FACTOR", "QT_QPA_PLATFORMTHEME", "LANGUAGE", "LANG"}) {
    qunsetenv(variable);
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("LC_ALL", "C.UTF-8");  // Qt takes plain "C" as this one, with a warning
  constexpr QFile::Permissions kOwnerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
  return QFile::setPermissions(QDir(home).filePath(QStringLiteral("run")), kOwnerOnly);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  const QTemporaryDir home(QDir::tempPath() + QStringLiteral("/tme-test-XXXXXX"));
  if (!home.isValid() || !EnterHome(home.path()) || !EnterSystem(home.filePath(QStringLiteral("home")))) {
    std::fputs("tme_tests: cannot make a temporary home\n", stderr);
    return 1;
  }
  QLocale::setDefault(QLocale::c());
  const QApplication application(argc, argv);
  const int result = RUN_ALL_TESTS();
  LeaveSystem();
  return result;
}
