#pragma once

#include <QTemporaryDir>

#include "history/History.h"
#include "shell/mdform_TMEditor.h"
#include "system/CommonDialog.h"
#include "system/Dialogs.h"
#include "system/InstanceLink.h"
#include "system/RegistryAccess.h"
#include "system/ShellUtilities.h"
#include "windows/ini/form_INI.h"
#include "windows/reg/form_REG.h"
#include "windows/rich/form_RTF.h"
#include "windows/text/form_TXT.h"

namespace tme {

/// The whole editor, with a history of its own.
struct Editor {
  RegistryAccess registry;
  ShellUtilities shell_utilities;
  Dialogs dialogs;
  CommonDialog common_dialog;
  InstanceLink link;
  const QTemporaryDir history_folder;
  History history{history_folder.path()};
  mdform_TMEditor frame{{registry, shell_utilities, dialogs, common_dialog, link, history},
                        [](Global& global, DocumentKind kind, int slot) -> DocumentWindow* {
                          if (kind == DocumentKind::Txt) return new form_TXT(global, slot);
                          if (kind == DocumentKind::Rtf) return new form_RTF(global, slot);
                          if (kind == DocumentKind::Reg) return new form_REG(global, slot);
                          return kind == DocumentKind::Ini ? new form_INI(global, slot) : nullptr;
                        }};
};

}  // namespace tme
