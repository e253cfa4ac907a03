#include "shell/OpenDispatch.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <filesystem>

#include "shell/DocumentArea.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/KindTraits.h"
#include "shell/PathList.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/FilePath.h"
#include "system/RegistryAccess.h"
#include "system/ShellUtilities.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString Tr(const char* text) { return QCoreApplication::translate("OpenDispatch", text); }

/// The window of a free slot; null after the message that there is none.
DocumentWindow* FreeWindow(Global& global, DocumentKind kind) {
  if (!global.documents.Offers(kind)) {
    global.dialogs.MsgBox(Tr("This version of the editor has no window for a document of the kind \"%1\".")
                              .arg(KindText(TraitsOf(kind).message_name)),
                          MsgButtons::Ok, MsgIcon::Information, kProgramTitle);
    return nullptr;
  }
  const int slot = global.documents.FindFreeSlot(kind);
  if (slot >= 0) return global.documents.At(kind, slot);
  ShowNoFreeSlot(global, kind);
  return nullptr;
}

/// Whether both name one file on the disk, through links or not. What is not there is told apart by its name.
bool IsSameFile(const QString& path, const QString& other) {
  std::error_code error;
  return path == other || std::filesystem::equivalent(FilePath(path), FilePath(other), error);
}

struct OpenRequest {
  enum class SecondOpen : std::uint8_t { ShowsTheFirst, IsWanted };
  SecondOpen second = SecondOpen::ShowsTheFirst;
  DocumentFile::Recent recent = DocumentFile::Recent::Joins;
};

void OpenDocument(Global& global, const QString& path, DocumentKind kind, const OpenRequest& request = {});

/// The file is there already: its document comes to the front as it is, changed or not, and says so.
void ShowOpenDocument(Global& global, DocumentWindow& window, const QString& path, DocumentKind kind) {
  global.area.BringToFront(window);
  const QString said = path == window.File().Path() ? Tr("The file is open already: this is its document.")
                                                    : Tr("%1 is this very file, which is open already.").arg(path);
  window.AddNotice(said, {{Tr("Open Once More"), [&global, path, kind] {
                             OpenDocument(global, path, kind, {.second = OpenRequest::SecondOpen::IsWanted});
                             global.area.CascadeAfterOpening();
                           }}});
}

void OpenDocument(Global& global, const QString& path, DocumentKind kind, const OpenRequest& request) {
  DocumentWindow* const first = WindowOfFile(global, path, kind);
  // Of another kind, it is another view of the file.
  if (first && first->Kind() == kind && request.second == OpenRequest::SecondOpen::ShowsTheFirst)
    return ShowOpenDocument(global, *first, path, kind);
  DocumentWindow* window = FreeWindow(global, kind);
  if (!window) return;
  window->File().BecomeFileAt(path, request.recent);
  SendCommand(global, *window, TraitsOf(kind).open_command);
  if (first && window->IsOpen())
    window->AddNotice(Tr("The file is open in another document as well: the later save counts."));
}

void ShowNotAFile(Global& global, const QString& path) {
  global.dialogs.MsgBox(
      Tr("TME was unable to verify that your request was to open a file.\r( %1 )\rAs such, this action has been "
         "canceled.")
          .arg(path),
      MsgButtons::Ok, MsgIcon::Information, Tr("TME"));
}

QString FilterEntry(const Settings& settings, DocumentKind kind) {
  QString wildcards = u"*."_s + QLatin1StringView(NameOf(kind));
  if (kind == DocumentKind::Txt) wildcards = settings.txt_filter;
  if (kind == DocumentKind::Rtf) wildcards = settings.rtf_filter;
  return KindText(TraitsOf(kind).filter_name) + u'|' + wildcards + u'|';
}

/// The kind that a chosen entry of the filter list stands for; by extension for the "Other" entry.
DocumentKind KindOfFilterEntry(const Global& global, int filter_index, const QString& path) {
  const QString entry = global.common_dialog.filter.split(u'|').value(2 * (filter_index - 1));
  for (const DocumentKind kind : kKinds)
    if (entry == KindText(TraitsOf(kind).filter_name)) return kind;
  return KindOf(path, global.settings.txt_filter);
}

}  // namespace

DocumentWindow* WindowOfFile(Global& global, const QString& path, DocumentKind kind) {
  DocumentWindow* found = nullptr;
  global.documents.ForEachOpen([&](DocumentWindow& window) {
    const QString& other = window.File().Path();
    if (other.isEmpty() || (found && found->Kind() == kind)) return;
    if ((!found || window.Kind() == kind) && IsSameFile(path, other)) found = &window;
  });
  return found;
}

QString InitialOpenFolder(const Global& global) {
  for (const QString& folder :
       {global.registry.ReadValue(SettingsRoot, u"Last Open"_s), PersonalFolder(global.registry)})
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
  return global.shell_utilities.LastResortFolder();
}

DocumentKind KindOf(const QString& path, const QString& txt_filter) {
  const QString ending = path.toUpper().right(3);
  DocumentKind kind = DocumentKind::Rtf;
  if (ending == u"INI") kind = DocumentKind::Ini;
  if (ending == u"REG") kind = DocumentKind::Reg;
  if (txt_filter.toUpper().contains(ending)) kind = DocumentKind::Txt;
  return kind;
}

QString OpenFilter(const Global& global, DocumentKind first) {
  auto order = kOpenTypes;
  const auto chosen = std::find(order.begin(), order.end(), first);
  std::rotate(order.begin(), chosen, chosen + 1);
  QString filter;
  for (const DocumentKind kind : order)
    if (global.documents.Offers(kind)) filter += FilterEntry(global.settings, kind);
  return filter + Tr("Other (*.*)|*.*");
}

void OpenPathList(Global& global, const QString& text) {
  // A folder is no file, but one path, and one message.
  const auto exists = [](const QString& path) { return QFileInfo::exists(path); };
  QString remainder = text;
  while (!remainder.isEmpty())
    if (const QString path = TakePath(remainder, exists); !path.isEmpty()) OpenWholePath(global, path);
}

void OpenWholePath(Global& global, const QString& path, DocumentFile::Recent recent) {
  if (!global.shell_utilities.FileExists(path)) return ShowNotAFile(global, path);
  // A name without a drive or a root is taken for rich text whatever its ending; intended.
  const bool rooted = global.shell_utilities.IsRooted(path);
  OpenDocument(global, path, rooted ? KindOf(path, global.settings.txt_filter) : DocumentKind::Rtf, {.recent = recent});
  global.area.CascadeAfterOpening();
}

void OpenFileByName(Global& global, const QString& path) {
  OpenDocument(global, path, KindOf(path, global.settings.txt_filter));
  global.area.CascadeAfterOpening();
}

void OpenFileDialog(Global& global) {
  CommonDialog& dialog = global.common_dialog;
  const QString type = global.registry.ReadValue(SettingsRoot, u"Default Open Type"_s);
  dialog.title = Tr("Open File for Editing");
  dialog.filter = OpenFilter(global, ParseDefaultOpenType(type));
  dialog.filter_index = 1;
  dialog.file_name.clear();
  dialog.init_dir = InitialOpenFolder(global);
  dialog.multi_select = global.settings.multi_select;
  const QStringList paths = dialog.ShowOpen();
  if (paths.isEmpty()) return;

  global.registry.WriteValue(SettingsRoot, u"Last Open"_s,
                             QDir::toNativeSeparators(QFileInfo(paths.first()).absolutePath()));
  if (paths.size() == 1) {
    OpenDocument(global, paths.first(), KindOfFilterEntry(global, dialog.filter_index, paths.first()));
  } else {
    // Each by itself, so that blanks in a path do not split it.
    for (const QString& path : paths) OpenWholePath(global, path);
  }
  global.area.CascadeAfterOpening();
}

DocumentWindow* NewDocument(Global& global, DocumentKind kind) {
  DocumentWindow* window = FreeWindow(global, kind);
  if (!window) return nullptr;
  SendCommand(global, *window, TraitsOf(kind).new_command);
  return window;
}

void PasteToNewDocument(Global& global, DocumentKind kind) {
  if (DocumentWindow* window = NewDocument(global, kind)) SendCommand(global, *window, "EditPaste");
}

void ShowNoFreeSlot(Global& global, DocumentKind kind) {
  global.dialogs.MsgBox(
      Tr("There are no more %1 documents available to open.  Please close one before opening another.")
          .arg(KindText(TraitsOf(kind).message_name)),
      MsgButtons::Ok, MsgIcon::None, Tr("Reached the limit of 5 type max"));
}

}  // namespace tme
