#pragma once

#include <cstdint>
#include <optional>

#include "documents/WrittenChange.h"

namespace tme {

class IniNode;
class IniTree;

// Where things stand in what WriteIni makes of a tree that is held by the rules. Lines count from 0.

/// Null for the root, and for nodes that are not written. Linear in the sections.
std::optional<std::uint64_t> WrittenLineOf(const IniTree& tree, const IniNode& node);
/// The line behind a section is its own. Null behind the last one.
IniNode* NodeAtWrittenLine(const IniTree& tree, std::uint64_t line);
/// What one step changed since a revision; null where that is not known, or not sooner. Linear in the sections.
std::optional<WrittenChange> WrittenChangeSince(const IniTree& tree, std::uint64_t revision);

}  // namespace tme
