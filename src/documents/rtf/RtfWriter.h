#pragma once

#include "base/Parts.h"
#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Writes RTF 1.x in ASCII; characters outside it as \u with a fallback that readers without it show. What came from
/// another program and is not shown here is written back where it stood. False when the sink stopped.
bool WriteRtf(const RtfDocument& document, const PartSink& sink);

/// The text alone, lines ended by CR LF, cells parted by tabs; placeholders as their labels in brackets.
bool WriteRtfAsText(const RtfDocument& document, const PartSink& sink);

}  // namespace tme::rtf
