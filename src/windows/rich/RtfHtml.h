#pragma once

#include <QString>

#include "documents/rtf/RtfDocument.h"

class QFont;

namespace tme {

/// What a marked-up text says and looks like, as a document by itself; pictures that stand in it come along, and what
/// stands elsewhere is left out. font: of text that says nothing of its own.
rtf::RtfDocument RtfOfHtml(const QString& html, const QFont& font);

}  // namespace tme
