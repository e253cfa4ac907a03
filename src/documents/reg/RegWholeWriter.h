#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "base/Parts.h"
#include "documents/reg/RegWriter.h"

namespace tme {

class RegDocument;
class RegNode;

/// Writes a whole document: its lines as they stand. Expanded: also a header line for each branch that only the paths
/// of longer ones imply, before the first of these; not for hives, nor in a REGEDIT file. Returns false when the sink
/// stopped it.
bool WriteWholeReg(const RegDocument& document, RegLayout layout, const PartSink& sink);

/// Counts the bytes that WriteWholeReg would give, without writing them. Where paths are deep, those of the expanded
/// layout grow with the square of the depth.
std::uint64_t WholeRegBytes(const RegDocument& document, RegLayout layout);

/// The lines of a key and all below it, in the order of the file, as a registry file of the document's version.
/// Comments that touch a header come along. A key without lines of its own gets a header line. For a comment its line.
std::string ClipboardText(const RegDocument& document, const RegNode& node);
/// The same for several nodes, none below another one; comments that are nodes come first.
std::string ClipboardText(const RegDocument& document, std::span<RegNode* const> nodes);
/// The lines of values, below the first line of a registry file and no key.
std::string ClipboardText(const RegDocument& document, std::span<const std::size_t> records);

}  // namespace tme
