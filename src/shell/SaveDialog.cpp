#include "shell/SaveDialog.h"

#include <QCoreApplication>

#include "shell/Global.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/ShellUtilities.h"

using namespace Qt::StringLiterals;

namespace tme {

QString AskForSavePath(Global& global, const SaveDialogTexts& texts) {
  CommonDialog& dialog = global.common_dialog;
  while (true) {
    dialog.title = texts.title;
    dialog.filter = texts.filter;
    dialog.filter_index = 1;
    dialog.default_ext = texts.default_ext;
    dialog.file_name = texts.file_name;
    dialog.init_dir = LastSaveFolder(global.registry);
    QString path = dialog.ShowSave();
    if (path.isEmpty() || !global.shell_utilities.FileExists(path)) return path;
    const MsgAnswer answer = global.dialogs.MsgBox(
        QCoreApplication::translate("SaveDialog", "Overwrite existing file?"), MsgButtons::YesNoCancel,
        MsgIcon::Question, QCoreApplication::translate("SaveDialog", "File Exists"));
    if (answer == MsgAnswer::Yes) return path;
    if (answer != MsgAnswer::No) return {};
  }
}

}  // namespace tme
