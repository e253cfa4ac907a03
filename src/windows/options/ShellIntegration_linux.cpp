#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <filesystem>
#include <system_error>

#include "files/FileBytes.h"
#include "shell/Settings.h"
#include "system/FilePath.h"
#include "system/RegistryAccess.h"
#include "windows/options/ShellIntegration.h"
#include "windows/options/ThunarActions_linux.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

namespace fs = std::filesystem;

enum class FileMode : std::uint8_t { Data, Executable };

struct HookFile {
  QString path;
  QByteArray bytes;
  FileMode mode = FileMode::Data;
};

using Failures = std::vector<IntegrationFailure>;

/// The folders that were made for our files, a line each, so that removing takes these and no others.
const QString kMadeFolders = u"Integration Folders"_s;

QString DataFolder() { return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation); }
QString ConfigFolder() { return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation); }

/// The program as an argument of an Exec line, quoted as freedesktop.org's desktop entries want it.
QByteArray ExecArgument(const QString& program) {
  QByteArray argument;
  for (const char character : QFile::encodeName(program)) {
    if (QByteArrayView("\"`$\\").contains(character)) argument += '\\';
    if (character == '%') argument += '%';
    argument += character;
  }
  return '"' + argument + '"';
}

/// "Exec=..." with a line end, for every file that has the form of a desktop entry. Such values escape backslashes once
/// more.
QByteArray ExecLine(const QString& program) {
  QByteArray argument = ExecArgument(program);
  argument.replace('\\', "\\\\").replace('\n', "\\n");
  return "Exec=" + argument + " %F\n";
}

/// The same for a shell script.
QByteArray ScriptLine(const QString& program) {
  QByteArray quoted = QFile::encodeName(program);
  quoted.replace('\'', "'\\''");
  return "exec '" + quoted + "' \"$@\"\n";
}

QByteArray ThunarCommand(const QString& program) {
  return "<command>" + QString::fromUtf8(ExecArgument(program) + " %F").toHtmlEscaped().toUtf8() + "</command>\n";
}

// What stands here and below in files for file managers is untranslated: they show their own translations, or none.
QByteArray ThunarAction(const QString& program) {
  return "<action>\n\t<icon>accessories-text-editor</icon>\n\t<name>Tamarind Editor</name>\n\t<submenu></submenu>\n"
         "\t<unique-id>" +
         QByteArray(kIntegrationId) + "</unique-id>\n\t" + ThunarCommand(program) +
         "\t<description>Open with the Tamarind Editor</description>\n\t<range>*</range>\n\t<patterns>*</patterns>\n"
         "\t<audio-files/>\n\t<image-files/>\n\t<other-files/>\n\t<text-files/>\n\t<video-files/>\n</action>\n";
}

QByteArray Resource(const QString& name) {
  QFile file(name);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The first is the one that the state is read from: desktop entry ("Open With"), its icon, Thunar's Send To menu.
/// The entry says what the package's says (packaging/linux/tamarind-editor.desktop), whose place it takes.
/// Untranslated.
std::vector<HookFile> SendToFiles(const QString& program) {
  const QString id = QLatin1StringView(kIntegrationId), data = DataFolder();
  const QByteArray entry =
      "[Desktop Entry]\nType=Application\nVersion=1.0\nName=Tamarind Editor\nGenericName=Text Editor\n"
      "Comment=Edit INI, registry, text and rich-text files\n" +
      ExecLine(program) + "Icon=" + kIntegrationId + "\nTerminal=false\nStartupWMClass=TamarindEditor\n";
  // INI files have a type of their own where the package or Wine is; elsewhere they are plain text.
  const QByteArray types =
      "Categories=Qt;Utility;TextEditor;\nKeywords=INI;REG;RTF;registry;configuration;notes;\n"
      "MimeType=text/plain;text/x-ini-file;application/x-wine-extension-ini;text/x-ms-regedit;application/rtf;"
      "text/rtf;\n";
  return {{data + u"/applications/"_s + id + u".desktop"_s, entry + types},
          {data + u"/icons/hicolor/scalable/apps/"_s + id + u".svg"_s, Resource(u":/icons/tme.svg"_s)},
          {data + u"/Thunar/sendto/"_s + id + u".desktop"_s, entry}};
}

/// For Nautilus, Caja, Nemo and Dolphin. Thunar's action shares a file with others and is not among these.
/// Untranslated.
std::vector<HookFile> ContextMenuFiles(const QString& program) {
  const QString id = QLatin1StringView(kIntegrationId), data = DataFolder();
  const QByteArray script = "#!/bin/sh\n" + ScriptLine(program);
  const QByteArray nemo = "[Nemo Action]\nName=Tamarind Editor\nComment=Open with the Tamarind Editor\n" +
                          ExecLine(program) +
                          "Icon-Name=accessories-text-editor\nSelection=notnone\nExtensions=nodirs;\nQuote=double\n";
  const QByteArray service =
      "[Desktop Entry]\nType=Service\nName=Tamarind Editor\nX-KDE-ServiceTypes=KonqPopupMenu/Plugin\n"
      "MimeType=application/octet-stream;\nX-KDE-Protocols=file\nActions=open\n\n"
      "[Desktop Action open]\nName=Tamarind Editor\nIcon=accessories-text-editor\n" +
      ExecLine(program);
  return {{data + u"/nautilus/scripts/Tamarind Editor"_s, script, FileMode::Executable},
          {ConfigFolder() + u"/caja/scripts/Tamarind Editor"_s, script, FileMode::Executable},
          {data + u"/nemo/actions/"_s + id + u".nemo_action"_s, nemo},
          // Dolphin runs service menus from the home folder only when they may be executed.
          {data + u"/kio/servicemenus/"_s + id + u".desktop"_s, service, FileMode::Executable}};
}

std::vector<HookFile> FilesOf(ShellHook hook, const QString& program) {
  return hook == ShellHook::SendTo ? SendToFiles(program) : ContextMenuFiles(program);
}

std::optional<QByteArray> BytesOf(const QString& path) {
  std::string bytes;
  if (!QFileInfo(path).isFile() || ReadFileBytes(FilePath(path), bytes)) return std::nullopt;
  return QByteArray::fromStdString(bytes);
}

bool StartsProgram(const QString& path, const QString& program) {
  const QByteArray bytes = BytesOf(path).value_or(QByteArray());
  return bytes.contains(ExecLine(program)) || bytes.contains(ScriptLine(program)) ||
         bytes.contains(ThunarCommand(program));
}

/// Makes the folder of a file and remembers which were missing.
std::error_code MakeFolderOf(const QString& path, RegistryAccess& registry) {
  QStringList missing;
  QString folder = QFileInfo(path).path();
  for (; !QFileInfo::exists(folder) && folder != QFileInfo(folder).path(); folder = QFileInfo(folder).path())
    missing.append(folder);
  if (missing.isEmpty()) return {};
  std::error_code error;
  fs::create_directories(FilePath(missing.first()), error);
  QStringList made = registry.ReadValue(SettingsRoot, kMadeFolders).split(u'\n', Qt::SkipEmptyParts);
  for (const QString& each : missing)
    if (QFileInfo(each).isDir() && !made.contains(each)) made.append(each);
  registry.WriteValue(SettingsRoot, kMadeFolders, made.join(u'\n'));
  return error;
}

/// Those of our folders that are empty now.
void RemoveMadeFolders(RegistryAccess& registry) {
  const QString remembered = registry.ReadValue(SettingsRoot, kMadeFolders);
  if (remembered.isEmpty()) return;
  QStringList made = remembered.split(u'\n', Qt::SkipEmptyParts);
  std::sort(made.begin(), made.end(), [](const QString& a, const QString& b) { return a.size() > b.size(); });
  QStringList kept;
  for (const QString& folder : std::as_const(made)) {
    std::error_code error;
    if (QFileInfo(folder).isDir()) fs::remove(FilePath(folder), error);
    if (error) kept.append(folder);
  }
  registry.WriteValue(SettingsRoot, kMadeFolders, kept.join(u'\n'));
}

void Write(const HookFile& file, RegistryAccess& registry, Failures& failures) {
  if (const std::error_code error = MakeFolderOf(file.path, registry))
    return failures.push_back({file.path, QString::fromStdString(error.message())});
  if (BytesOf(file.path) != file.bytes) {
    const auto failure = WriteFileBytes(FilePath(file.path), file.bytes.toStdString());
    if (failure) return failures.push_back({file.path, QString::fromStdString(failure->reason)});
  }
  if (file.mode == FileMode::Data) return;
  std::error_code error;
  fs::permissions(FilePath(file.path), fs::perms::owner_exec, fs::perm_options::add, error);
  if (error) failures.push_back({file.path, QString::fromStdString(error.message())});
}

void Remove(const QString& path, Failures& failures) {
  std::error_code error;
  // A folder of that name is none of ours.
  if (!QFileInfo(path).isDir()) fs::remove(FilePath(path), error);
  if (error) failures.push_back({path, QString::fromStdString(error.message())});
}

QString ThunarFile() { return ConfigFolder() + u"/Thunar/uca.xml"_s; }

/// The list that Thunar shows to a user who has none; null where there is none, so no Thunar either.
std::optional<QByteArray> ThunarDefaults() {
  const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
  for (const QString& folder : folders.mid(1))
    if (const auto bytes = BytesOf(folder + u"/Thunar/uca.xml"_s)) return bytes;
  return std::nullopt;
}

void SetThunarAction(const QString& program, HookState state, RegistryAccess& registry, Failures& failures) {
  const QString path = ThunarFile();
  const std::optional<QByteArray> own = BytesOf(path), defaults = ThunarDefaults();
  const std::optional<QByteArray> before = own || state == HookState::Off ? own : defaults;
  if (!before) return;
  const QByteArray action = state == HookState::On ? ThunarAction(program) : QByteArray();
  const std::optional<QByteArray> after = MergeThunarAction(*before, action);
  if (!after) {
    if (state == HookState::On || before->contains(kIntegrationId))
      failures.push_back(
          {path, QCoreApplication::translate("ShellIntegration",
                                             "The list of actions has an unknown form; it was left as it is")});
  } else if (own == after) {
    return;
  } else if (state == HookState::Off && after == defaults) {
    Remove(path, failures);  // the copy of the defaults that was made for our action
  } else {
    Write({path, *after}, registry, failures);
  }
}

}  // namespace

ShellIntegration::ShellIntegration(RegistryAccess& registry, QString program)
    : registry_(registry), program_(std::move(program)) {}

QString ShellIntegration::SendToPlace() {
  return QCoreApplication::translate("ShellIntegration", "S&end To and Open With");
}

HookState ShellIntegration::State(ShellHook hook) const {
  const std::vector<HookFile> files = FilesOf(hook, program_);
  const auto starts_program = [this](const HookFile& file) { return StartsProgram(file.path, program_); };
  // One file manager that could not be served does not make the others' commands unknown.
  const bool on = hook == ShellHook::SendTo ? starts_program(files.front())
                                            : std::any_of(files.begin(), files.end(), starts_program) ||
                                                  StartsProgram(ThunarFile(), program_);
  return on ? HookState::On : HookState::Off;
}

std::vector<IntegrationFailure> ShellIntegration::Set(ShellHook hook, HookState state) {
  Failures failures;
  for (const HookFile& file : FilesOf(hook, program_)) {
    if (state == HookState::On)
      Write(file, registry_, failures);
    else
      Remove(file.path, failures);
  }
  if (hook == ShellHook::ContextMenu) SetThunarAction(program_, state, registry_, failures);
  if (state == HookState::Off) RemoveMadeFolders(registry_);
  return failures;
}

}  // namespace tme
