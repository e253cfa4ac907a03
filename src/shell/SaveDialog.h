#pragma once

#include <QString>

namespace tme {

struct Global;

/// What a save dialog says and proposes.
struct SaveDialogTexts {
  QString title;
  QString filter;       ///< as CommonDialog::filter
  QString default_ext;  ///< with its dot
  QString file_name{};  ///< proposed name; may be empty
};

/// Shows the shared save dialog, which begins in the folder of the last save with the filter's first entry, until the
/// user names a file that is not there, agrees to overwrite one, or cancels (empty).
QString AskForSavePath(Global& global, const SaveDialogTexts& texts);

}  // namespace tme
