#pragma once

#include <QString>
#include <QStringList>

#include "documents/DocumentKind.h"
#include "shell/DocumentFile.h"

namespace tme {

class DocumentWindow;
struct Global;

/// Splits a text into paths (see TakePath) and opens each in a window of the right kind. A path that is not a file: a
/// message, and on with the next.
void OpenPathList(Global& global, const QString& text);

/// The same for a text that is one path, blanks and all, or whose end is lost: never split.
void OpenWholePath(Global& global, const QString& path, DocumentFile::Recent recent = DocumentFile::Recent::Joins);

/// Opens an existing file in a window of the kind that its name tells, whatever blanks stand in it; then cascades.
void OpenFileByName(Global& global, const QString& path);

/// A document that holds the file, through links or not; one of the kind before others, null for none.
DocumentWindow* WindowOfFile(Global& global, const QString& path, DocumentKind kind);

/// Shows the Open dialog and opens what was chosen; the windows are cascaded at the end.
void OpenFileDialog(Global& global);

/// A new document of the kind in its first free slot; null after the message that there is none.
DocumentWindow* NewDocument(Global& global, DocumentKind kind);

/// The clipboard as a new document of the kind.
void PasteToNewDocument(Global& global, DocumentKind kind);

/// The folder in which opening begins: the one that was last opened from, else the user's documents.
QString InitialOpenFolder(const Global& global);

/// The kind by the last three letters of the path: INI, REG, anything found in the text filter, else rich text.
DocumentKind KindOf(const QString& path, const QString& txt_filter);

/// The Open dialog's filter list with the given kind first; kinds without an editor are left out.
QString OpenFilter(const Global& global, DocumentKind first);

/// "There are no more ... documents available to open."
void ShowNoFreeSlot(Global& global, DocumentKind kind);

}  // namespace tme
