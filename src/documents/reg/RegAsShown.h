#pragma once

#include <string>

#include "documents/reg/RegWriter.h"

namespace tme {

/// Every key with the values that are shown for it, for a reader that shall make the same document again: a registry
/// file would give values to every key of the name, and could not hold all that edits make (another name for a hive,
/// values of the root, quotes). Looks like one, with a comment that tells it from one. Removed keys and deleted values
/// stay away. UTF-8, in parts; false when the sink stopped it.
bool WriteRegAsShown(const RegDocument& document, const PartSink& sink);

/// Fills a fresh document from such a text, which is taken over. Returns false, with nothing done, for any other text.
bool ReadRegAsShown(RegDocument& document, std::string& text);

/// For people who compare: without the line that tells such a text from a file's. Any other text stays as it is.
std::string WithoutAsShownMark(std::string text);

}  // namespace tme
