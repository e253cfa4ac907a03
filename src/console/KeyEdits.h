#pragma once

#include <string>
#include <string_view>

#include "console/ConsoleFile.h"
#include "documents/reg/RegDocument.h"

namespace tme::console {

/// Whether a value can have this name in a registry file.
bool IsValueName(std::string_view name);
/// Returns the key of a path (FullKeyPath), with a header line of its own if it was not there. Throws Trouble for a
/// path that no import would take.
RegNode* AddKeyPath(ConsoleFile& file, const std::string& path);
/// Makes sure of the line that deletes a key which has no lines. Throws Trouble as AddKeyPath.
void AddKeyDeletion(ConsoleFile& file, const std::string& path);

}  // namespace tme::console
