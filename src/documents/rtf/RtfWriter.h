#pragma once

#include <functional>
#include <string_view>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Takes the next part of the file; false when it could not be written, and the writer should stop.
using RtfPart = std::function<bool(std::string_view)>;

/// Writes RTF 1.x in ASCII; characters outside it as \u with a fallback that readers without it show. What came from
/// another program and is not shown here is written back where it stood. False when `put` gave up.
bool WriteRtf(const RtfDocument& document, const RtfPart& put);

/// The text alone, lines ended by CR LF, cells parted by tabs; placeholders as their labels in brackets.
bool WriteRtfAsText(const RtfDocument& document, const RtfPart& put);

}  // namespace tme::rtf
