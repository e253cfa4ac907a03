#include <windows.h>
#include <shlobj.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <string>
#include <utility>

#include "files/SystemMessage_win.h"
#include "shell/Settings.h"
#include "system/RegistryAccess.h"
#include "windows/options/ShellIntegration.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

using Failures = std::vector<IntegrationFailure>;

/// The key of all users' classes, and of this user's where that one may not be written.
const QString kMenuKey = u"HKEY_CLASSES_ROOT\\*\\Shell\\Tamarind Editor"_s;
const QString kOwnMenuKey = u"HKEY_CURRENT_USER\\Software\\Classes\\*\\Shell\\Tamarind Editor"_s;
const QString kMenuText = u"Tamarind Editor"_s;

/// COM for as long as this lives; another kind of it that the thread uses already does as well.
class ComScope {
 public:
  ComScope() : result_(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;
  ~ComScope() {
    if (SUCCEEDED(result_)) ::CoUninitialize();
  }

 private:
  const HRESULT result_;
};

template <typename Interface>
class ComObject {
 public:
  ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;
  ~ComObject() {
    if (object_) object_->Release();
  }
  Interface* operator->() const { return object_; }
  /// For the call that makes the object.
  void** Out() { return reinterpret_cast<void**>(&object_); }

 private:
  Interface* object_ = nullptr;
};

/// A shell link, in memory and as a file.
struct ShellLink {
  ComScope com;
  ComObject<IShellLinkW> link;
  ComObject<IPersistFile> file;

  HRESULT Make() {
    const HRESULT result =
        ::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, link.Out());
    return FAILED(result) ? result : link->QueryInterface(IID_IPersistFile, file.Out());
  }
};

std::wstring NativePath(const QString& path) { return QDir::toNativeSeparators(path).toStdWString(); }

/// The link's whole path; empty when the system has no such folder. flag: whether the folder is made.
QString SendToLink(KNOWN_FOLDER_FLAG flag = KF_FLAG_DONT_VERIFY) {
  wchar_t* folder = nullptr;
  const HRESULT result = ::SHGetKnownFolderPath(FOLDERID_SendTo, flag, nullptr, &folder);
  const QString path = SUCCEEDED(result) ? QString::fromWCharArray(folder) + u"\\Tamarind Editor.lnk"_s : QString();
  ::CoTaskMemFree(folder);
  return path;
}

/// Not by QFileInfo, to which a link is what it leads to.
bool IsFile(const QString& path) {
  const DWORD attributes = ::GetFileAttributesW(path.toStdWString().c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

HRESULT WriteLink(const QString& link_path, const QString& program) {
  ShellLink shell_link;
  HRESULT result = shell_link.Make();
  if (SUCCEEDED(result)) result = shell_link.link->SetPath(NativePath(program).c_str());
  if (SUCCEEDED(result)) result = shell_link.link->SetWorkingDirectory(NativePath(QFileInfo(program).path()).c_str());
  if (SUCCEEDED(result)) result = shell_link.link->SetDescription(kMenuText.toStdWString().c_str());
  if (SUCCEEDED(result)) result = shell_link.file->Save(NativePath(link_path).c_str(), TRUE);
  return result;
}

void SetSendToLink(const QString& program, HookState state, Failures& failures) {
  const QString link = SendToLink(state == HookState::On ? KF_FLAG_CREATE : KF_FLAG_DONT_VERIFY);
  const auto failed = [&](unsigned long error) {
    failures.push_back({link.isEmpty() ? u"SendTo"_s : link, QString::fromStdString(SystemMessage(error))});
  };
  if (link.isEmpty()) return failed(ERROR_PATH_NOT_FOUND);
  if (state == HookState::On) {
    const HRESULT result = WriteLink(link, program);
    if (FAILED(result)) failed(static_cast<unsigned long>(result));
  } else if (::DeleteFileW(link.toStdWString().c_str()) == 0) {
    const DWORD error = ::GetLastError();
    if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) failed(error);
  }
}

QString MenuCommand(const QString& program) {
  return QDir::toNativeSeparators(QFileInfo(program).path()) + u"\\TME.EXE %1"_s;
}

QString CommandKey(const QString& menu_key) { return menu_key + u"\\Command"_s; }

/// False when the keys do not hold the command afterwards.
bool WriteMenu(RegistryAccess& registry, const QString& menu_key, const QString& command) {
  const QString command_key = CommandKey(menu_key);
  if (!registry.CreateKey(menu_key)) return false;
  registry.WriteValue(menu_key, QString(), kMenuText);
  if (!registry.CreateKey(command_key)) return false;
  registry.WriteValue(command_key, QString(), command);
  return registry.ReadValue(command_key, QString()) == command;
}

void SetContextMenu(RegistryAccess& registry, const QString& program, HookState state, Failures& failures) {
  if (state == HookState::On) {
    const QString command = MenuCommand(program);
    if (!WriteMenu(registry, kMenuKey, command) && !WriteMenu(registry, kOwnMenuKey, command))
      failures.push_back(
          {kOwnMenuKey, QCoreApplication::translate("ShellIntegration", "The key could not be written")});
    return;
  }
  for (const QString& key : {kMenuKey, kOwnMenuKey}) {
    registry.DeleteKey(key);
    if (!registry.ReadValue(CommandKey(key), QString()).isEmpty())
      failures.push_back({key, QCoreApplication::translate("ShellIntegration", "The key could not be removed")});
  }
}

}  // namespace

ShellIntegration::ShellIntegration(RegistryAccess& registry, QString program)
    : registry_(registry), program_(std::move(program)) {}

QString ShellIntegration::SendToPlace() { return QCoreApplication::translate("ShellIntegration", "S&end To"); }

HookState ShellIntegration::State(ShellHook hook) const {
  const bool on = hook == ShellHook::SendTo ? IsFile(SendToLink())
                                            : registry_.ReadValue(CommandKey(kMenuKey), QString()).toUpper() ==
                                                  MenuCommand(program_).toUpper();
  return on ? HookState::On : HookState::Off;
}

std::vector<IntegrationFailure> ShellIntegration::Set(ShellHook hook, HookState state) {
  Failures failures;
  if (hook == ShellHook::SendTo)
    SetSendToLink(program_, state, failures);
  else
    SetContextMenu(registry_, program_, state, failures);
  return failures;
}

}  // namespace tme
