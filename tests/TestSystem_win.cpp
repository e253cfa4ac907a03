#include <windows.h>

#include <QDir>
#include <string>

#include "TestSystem.h"
#include "files/SystemMessage_win.h"

namespace {

HKEY stand_in = nullptr;
QString send_to;

std::wstring StandInPath() { return L"Software\\Tamarind Editor Tests\\" + std::to_wstring(::GetCurrentProcessId()); }

}  // namespace

bool EnterSystem(const QString& home) {
  // A process of the same number that was killed left its own.
  ::RegDeleteTreeW(HKEY_CURRENT_USER, StandInPath().c_str());
  if (::RegCreateKeyExW(HKEY_CURRENT_USER, StandInPath().c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &stand_in,
                        nullptr) != ERROR_SUCCESS)
    return false;
  constexpr std::pair<const wchar_t*, const char*> kFolders[] = {{L"Personal", "Documents"},
                                                                 {L"AppData", "AppData/Roaming"},
                                                                 {L"Local AppData", "AppData/Local"},
                                                                 {L"SendTo", "AppData/Roaming/SendTo"}};
  for (const wchar_t* key : {L"User Shell Folders", L"Shell Folders"})
    for (const auto& [name, folder] : kFolders) {
      const QString path = QDir(home).filePath(QLatin1String(folder));
      QDir().mkpath(path);
      const std::wstring text = QDir::toNativeSeparators(path).toStdWString();
      ::RegSetKeyValueW(stand_in,
                        (std::wstring(LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\)") + key).c_str(), name,
                        REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
  send_to = QDir(home).filePath(QStringLiteral("AppData/Roaming/SendTo"));
  return ::RegOverridePredefKey(HKEY_CURRENT_USER, stand_in) == ERROR_SUCCESS;
}

QString SendToEntry() { return send_to + QStringLiteral("/Tamarind Editor.lnk"); }

QString NothingThere(Missing what) {
  return QString::fromStdString(
      tme::SystemMessage(what == Missing::File ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND));
}

void AwaitSystemTurn() {
  static const HANDLE turn = ::CreateMutexW(nullptr, FALSE, L"Local\\Tamarind Editor Tests");
  ::WaitForSingleObject(turn, INFINITE);
}

void LeaveSystem() {
  ::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
  ::RegCloseKey(stand_in);
  ::RegDeleteTreeW(HKEY_CURRENT_USER, StandInPath().c_str());
}
