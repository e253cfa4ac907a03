#pragma once

#include <optional>
#include <string>

#include "documents/compare/MergeUnits.h"

namespace tme {

/// Their lines of an entry as our version of registry files has them; their line ends stay. Null where a text has no
/// form there.
std::optional<std::string> TheirMainFor(const MergeUnits& ours, const MergeUnits& theirs, MergeUnits::Index their_unit);

/// Our lines of an entry with their value, whose bytes alone change. Lines that we did not edit become theirs. Null as
/// TheirMainFor. base_unit: kNone where the base has no such entry.
std::optional<std::string> MainWithTheirs(const MergeUnits& base, MergeUnits::Index base_unit, const MergeUnits& ours,
                                          MergeUnits::Index our_unit, const MergeUnits& theirs,
                                          MergeUnits::Index their_unit);

}  // namespace tme
