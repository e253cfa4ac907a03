#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "documents/reg/RegDocument.h"

namespace tme {

// By the rules a save gives the values of one key to all keys of its name, so none of these may have a value of one
// name twice (RegDocument::HasValueNamed). Linear in the table and in what is to come.

/// The name of a value below the keys of another document that stands in the way of copying them here; null where none
/// does.
std::optional<std::string> ValueInTheWay(const RegDocument& document, const RegDocument& from,
                                         std::span<RegNode* const> nodes);
/// The same for values, maybe of this document, that are to come into a key.
std::optional<std::string> ValueInTheWay(const RegDocument& document, const RegNode& key, const RegDocument& from,
                                         std::span<const std::size_t> records);

}  // namespace tme
