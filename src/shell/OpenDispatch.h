#pragma once

#include <QString>
#include <QStringList>

#include "shell/DocumentKind.h"

namespace tme {

struct Global;

/// Splits a text at its blanks into paths and opens each in a window of the right kind. A remainder that names an
/// existing file as a whole is one path, so a path with blanks is found only as the last; quotation marks mean nothing.
/// A path that is not a file: a message, and on with the next.
void OpenPathList(Global& global, const QString& text);

/// Shows the Open dialog and opens what was chosen; the windows are cascaded at the end.
void OpenFileDialog(Global& global);

/// A new document of the kind in its first free slot, or the message that there is none.
void NewDocument(Global& global, SlotCode code);

/// The kind by the last three letters of the path: INI, REG, anything found in the text filter, else rich text.
OpenCode OpenCodeOf(const QString& path, const QString& txt_filter);

/// The Open dialog's filter list with the given type (0 to 3) first; kinds without an editor are left out.
QString OpenFilter(const Global& global, int first_type);

/// "There are no more ... documents available to open."
void ShowNoFreeSlot(Global& global, const QString& kind_name);

}  // namespace tme
