#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/ini/IniTree.h"
#include "documents/reg/RegDocument.h"

// What names in arguments stand for. All are compared in any letter case.
namespace tme::console {

/// The sections of this name in the order of the file; the root for the empty name, which is that of what stands before
/// the first one. Empty when there is none.
std::vector<IniNode*> SectionsNamed(const IniTree& tree, std::string_view name);
/// The entries of this key in these sections, in the order of the file. Readers take the first one.
std::vector<IniNode*> EntriesNamed(const IniTree& tree, const std::vector<IniNode*>& sections, std::string_view key);

/// The first line below an entry that readers may take for more of its value (ContinuesEntry), comments and blank lines
/// passed over; kEnds without.
SourceLines::Piece ContinuationOf(const IniTree& tree, const IniNode& entry);

/// "HKLM\A" as "HKEY_LOCAL_MACHINE\A"; any other path as it is.
std::string FullKeyPath(std::string_view path);
/// The parts of a path. Empty ones are left out.
std::vector<std::string_view> PartsOfKeyPath(std::string_view path);
/// Null when there is none.
RegNode* KeyOfPath(const RegDocument& document, std::string_view path);
/// The last line that deletes the key of a path or one above it; kEnds without. Of a document as it was read, whose
/// pieces have numbers in the order of the file. Linear in the keys' lines.
SourceLines::Piece DeletionOf(const RegDocument& document, std::string_view path);
/// Whether the key or one below it has a line behind this one; for kEnds always.
bool StandsBehind(const RegDocument& document, const RegNode& key, SourceLines::Piece deletion);
/// "" and "@" are the default value.
std::string_view ValueNameOf(std::string_view argument);
/// The records of this name, deletions included, in the order of the file. An import leaves the last one.
std::vector<std::size_t> ValuesNamed(const RegDocument& document, const RegNode* key, std::string_view name);

}  // namespace tme::console
