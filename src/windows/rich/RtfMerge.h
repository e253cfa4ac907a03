#pragma once

#include "windows/rich/RtfStore.h"

namespace tme {

/// The text and its structure, out of a document that keeps the rest.
rtf::RtfDocument TakeRtfText(rtf::RtfDocument& from);

/// Adds what the text of a document names to the store: fonts and colours find their like there or are added, objects
/// and fields are added. What would name another document's style sheet or lists is dropped. The text, whose numbers
/// name parts of the store.
rtf::RtfDocument MergeRtf(rtf::RtfDocument&& source, RtfStore& store);

}  // namespace tme
