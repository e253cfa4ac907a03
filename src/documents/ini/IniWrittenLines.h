#pragma once

#include <cstdint>
#include <optional>

namespace tme {

class IniNode;
class IniTree;

// Where things stand in what WriteIni makes of a tree that is held by the rules. Lines count from 0.

/// Null for the root, and for nodes that are not written. Linear in the sections.
std::optional<std::uint64_t> WrittenLineOf(const IniTree& tree, const IniNode& node);
/// The line behind a section is its own. Null behind the last one.
IniNode* NodeAtWrittenLine(const IniTree& tree, std::uint64_t line);

}  // namespace tme
