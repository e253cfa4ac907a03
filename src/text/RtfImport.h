#pragma once

#include "text/RtfLooks.h"

class QTextDocument;

namespace tme {

/// Fills an empty document with a read one, whose kept parts become the store's. No undo is recorded.
void ImportRtf(rtf::RtfDocument&& source, RtfStore& store, QTextDocument& target);

/// The same for a part that joins another document: fonts and colours find their like in the store or are added,
/// objects are added. What would name another document's style sheet or lists is dropped.
void ImportRtfPart(rtf::RtfDocument&& source, RtfStore& store, QTextDocument& target);

}  // namespace tme
