#pragma once

#include <string>
#include <string_view>

#include "console/ConsoleFile.h"
#include "documents/reg/RegDocument.h"

namespace tme::console {

/// Whether a value can have this name in a registry file.
bool IsValueName(std::string_view name);
/// Whether the text of a value begins in this line and goes on in the next one, which documents do not hold.
/// name: becomes the value's.
bool BeginsOpenText(std::string_view line, std::string& name);
/// Throws Trouble where the key of a path has such a value of this name. Linear.
void RequireNoOpenText(const ConsoleFile& file, std::string_view path, std::string_view name);
/// Returns the key of a path (FullKeyPath), with a header line of its own if it was not there; at the end of the file
/// where some line deletes it. Throws Trouble for a path that no import would take.
RegNode* AddKeyPath(ConsoleFile& file, const std::string& path);
/// Makes sure of the line that deletes a key which has no lines. Throws Trouble as AddKeyPath.
void AddKeyDeletion(ConsoleFile& file, const std::string& path);

}  // namespace tme::console
