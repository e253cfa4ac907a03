#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <cstdio>

namespace {

/// Points everything that a program takes from its surroundings into `home`, which is empty: no test sees the
/// developer's settings, session bus or Wine prefix, nor what another test left. Before QApplication, which reads them.
bool EnterHome(const QString& home) {
  struct Place {
    const char* variable;
    const char* folder;
  };
  // TMP, TEMP, USERPROFILE and the two APPDATA are the names that Windows uses.
  constexpr Place kPlaces[] = {
      {"HOME", "home"},
      {"USERPROFILE", "home"},
      {"XDG_CONFIG_HOME", "home/.config"},
      {"XDG_DATA_HOME", "home/.local/share"},
      {"XDG_STATE_HOME", "home/.local/state"},
      {"XDG_CACHE_HOME", "home/.cache"},
      {"APPDATA", "home/AppData/Roaming"},
      {"LOCALAPPDATA", "home/AppData/Local"},
      {"XDG_RUNTIME_DIR", "run"},
      {"TMPDIR", "tmp"},
      {"TMP", "tmp"},
      {"TEMP", "tmp"},
  };
  for (const Place& place : kPlaces) {
    const QString folder = QDir(home).filePath(QLatin1String(place.folder));
    if (!QDir().mkpath(folder)) {
      return false;
    }
    qputenv(place.variable, QFile::encodeName(QDir::toNativeSeparators(folder)));
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
  if (GTEST_FLAG_GET(list_tests)) {
    return RUN_ALL_TESTS();
  }
  const QTemporaryDir home(QDir::tempPath() + QStringLiteral("/tme-test-XXXXXX"));
  if (!home.isValid() || !EnterHome(home.path())) {
    std::fputs("tme_tests: cannot make a temporary home\n", stderr);
    return 1;
  }
  QLocale::setDefault(QLocale::c());
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
