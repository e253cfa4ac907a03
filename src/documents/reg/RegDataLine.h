#pragma once

#include <string>

#include "documents/reg/RegData.h"

namespace tme {

/// Data decoded in one line that does not depend on the version, wrapping and letter case of a file: "text",
/// expand:"%A%", multi:"a","b", dword:0000001a, hex:01,02. Line ends within texts are \r and \n.
std::string RegDataLine(const RegData& data);

}  // namespace tme
