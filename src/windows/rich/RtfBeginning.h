#pragma once

#include "documents/rtf/RtfDocument.h"

namespace tme {

/// Whether a view is filled with a document for so long that the user would notice: a twentieth of a second.
bool TakesLongToShow(const rtf::RtfDocument& document);

/// The first pages of a document as one of their own, with what they name: more than the largest screen shows, and a
/// table up to the end of a row.
rtf::RtfDocument BeginningOf(const rtf::RtfDocument& document);

}  // namespace tme
