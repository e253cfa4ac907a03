#pragma once

#include <string>

#include "documents/reg/RegWriter.h"

namespace tme {

/// Writes every key with the values that are shown for it, so that a reader makes the same document again: a registry
/// file would give values to every key of the name, and could not hold all that edits make (another name for a hive,
/// values of the root, quotes). The text looks like such a file, with a comment that tells it from one. Removed keys
/// and deleted values are left out. UTF-8, in parts. Returns false when the sink stopped it.
bool WriteRegAsShown(const RegDocument& document, const PartSink& sink);

/// Fills a fresh document from such a text, which is taken over. Returns false, with nothing done, for any other text.
bool ReadRegAsShown(RegDocument& document, std::string& text);

/// Takes out the line that tells such a text from a file's, for people who compare. Any other text stays as it is.
std::string WithoutAsShownMark(std::string text);

}  // namespace tme
