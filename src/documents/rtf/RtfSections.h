#pragma once

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Whether something stands behind the break of a section in its paragraph, as text typed there does. No file says it
/// so: there the break ends its paragraph.
bool HasTextBehindSections(const RtfDocument& document);

/// Makes that a paragraph of its own.
RtfDocument WithSectionsApart(const RtfDocument& document);

}  // namespace tme::rtf
