#pragma once

#include <string>

#include "documents/compare/Outline.h"

namespace tme {

/// A registry file that makes what one file leaves in a registry into what another one leaves there: keys and values
/// that the other one does not have are deleted ("[-path]", "name"=-), but for keys that have to be there for those
/// below them, which lose their values. Of values that come several times the last one counts. What the other one
/// deletes is deleted, too; what only the first one deletes cannot be known and is let be. CR LF; a REGEDIT4 file if
/// both are, else of version 5.00. Empty where nothing is to be done. before, after: with joined blocks.
std::string RegPatch(const Outline& before, const Outline& after);

}  // namespace tme
