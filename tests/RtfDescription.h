#pragma once

#include <string>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// All that a document holds, a line for each run and paragraph, with formats by value: what two documents that say the
/// same have in common, whatever the order of their tables of formats.
std::string Describe(const RtfDocument& document);

}  // namespace tme::rtf
